#pragma once

#include <QComboBox>

// The pop-up above the Scratchpad, through which the user picks the site whose list is shown. It tells that it is about
// to open with NSPopUpButtonWillPopUpNotification, so that its entries can be made anew. A drag over it switches to the
// first entry, the whole tree.
class WayfoldSitePopupButton : public QComboBox
{
    Q_OBJECT

public:
    explicit WayfoldSitePopupButton(QWidget *parent = nullptr);

    // The title of the selected entry, null when none is selected. Allocates nothing.
    const QString &title() const { return _title; }
    // Selects the entry of that title, adding one when there is none.
    void setTitle(const QString &title);
    // Replaces all entries, a title given twice being added once, and selects the one titled `selected` (none when
    // there is no such entry). Nobody is told of a change.
    void setEntries(const QStringList &titles, const QString &selected);
    QStringList itemTitles() const;

    // The types that are looked at when something is dragged over the pop-up.
    void registerForDraggedTypes(const QStringList &types);

    void showPopup() override;

Q_SIGNALS:
    // The user has picked an entry, or a drag the first one.
    void siteChangeRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;

private:
    void takeTitle();
    void willPopUp();

    QString _title;
    QStringList _draggedTypes;
};
