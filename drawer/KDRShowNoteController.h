#pragma once

#include "model/WayfoldBookmarkNote.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

class KDRShowNoteView;

// A window in which a note is read. Any number may be open; each controller owns itself while its window is open.
class KDRShowNoteController : public QObject
{
    Q_OBJECT

public:
    // Opens a window for the note, in front.
    static void showNote(const WayfoldBookmarkNotePtr &note);
    ~KDRShowNoteController() override;

    // Null when the interface file is missing.
    QWidget *window() const { return _window; }
    QString getValueFieldText() const;
    void makeKeyAndOrderFront();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    KDRShowNoteController() = default;

    void initShowNote(const WayfoldBookmarkNotePtr &note);
    void windowDidLoad();
    void windowWillClose();

    QPointer<QWidget> _window;
    QPointer<KDRShowNoteView> _valueField;
    WayfoldBookmarkNotePtr _bookmark;
};
