#pragma once

#include "model/KDRBookmark.h"
#include "platform/widgets/InterfaceFile.h"

#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QTextEdit>
#include <optional>

// What the dialogs of all kinds of items have in common: a title field above the kind's own fields, OK and Cancel. A
// dialog runs application-modal; OK writes the fields into the item, anything else leaves it alone.
//
//     KDREditNoteController controller;
//     controller.initEditingNote(note);
//     const bool changed = controller.doEdit();
class KDREditController
{
public:
    KDREditController(const KDREditController &) = delete;
    KDREditController &operator=(const KDREditController &) = delete;
    // Closes the dialog.
    virtual ~KDREditController();

    // Runs the dialog; true exactly when the user accepted. False at once when its interface file is missing.
    bool doEdit();
    // Writes the fields into the item and ends the dialog.
    void saveEdit(QObject *sender);
    void cancelEdit(QObject *sender);

    // Null when the interface file is missing.
    QDialog *editWindow() const { return _editWindow; }

protected:
    // `defaultTitle`: for an item whose title was left empty, in English.
    explicit KDREditController(const char *defaultTitle) : _defaultTitle(defaultTitle) {}

    // Loads the interface file and fills the title field.
    void loadInterface(const QString &name, const KDRBookmarkPtr &bookmark);
    void setWindowTitle(const char *title);
    template <class Widget>
    Widget *outlet(const char *name) const
    {
        return _interface ? _interface->outlet<Widget>(QString::fromLatin1(name)) : nullptr;
    }
    void connectAction(const char *name, const std::function<void(QObject *sender)> &handler) const;
    virtual void writeValue() = 0;

private:
    void connectButtons();

    const char *_defaultTitle;
    std::optional<InterfaceFile> _interface;
    QPointer<QDialog> _editWindow;
    QPointer<QLineEdit> _titleField;
    KDRBookmarkPtr _bookmark;
};
