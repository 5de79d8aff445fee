#pragma once

#include "model/WayfoldABEntry.h"
#include "platform/widgets/InterfaceFile.h"

#include <QAbstractButton>
#include <QDialog>
#include <QItemSelection>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QSet>
#include <QStackedWidget>
#include <memory>
#include <vector>

class KDRBookmark;
class PeopleModel;

// The panel in which people and groups are chosen from the contacts. The keyboard stays in its search field: what is
// typed there searches, the keys that lead up and down, and those that select several, act on the list below it.
class KDRNewPersonController : public QObject
{
    Q_OBJECT

public:
    KDRNewPersonController();
    ~KDRNewPersonController() override;

    // Runs the panel; true exactly when somebody was chosen. False at once when its interface file is missing.
    bool doEdit();
    // Those who are selected, in the order of the list.
    std::vector<WayfoldABEntryPtr> chosenEntries() const;
    // New items for them.
    std::vector<std::shared_ptr<KDRBookmark>> newItems() const;

    // Null when the interface file is missing.
    QDialog *editWindow() const { return _editWindow; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool loadInterface();
    void connectPanel();
    void search(const QString &text);
    void showState();
    QString textWhenEmpty() const;
    void rememberSelection();
    void restoreSelection();
    void selectFirstMatch();
    QItemSelection rowsOf(const QSet<QString> &identifiers) const;
    void showPreferences();

    std::unique_ptr<InterfaceFile> _interface;
    QPointer<QDialog> _editWindow;
    QPointer<QLineEdit> _searchField;
    QPointer<QStackedWidget> _pages;
    QPointer<QListView> _peopleView;
    QPointer<QLabel> _emptyField;
    QPointer<QAbstractButton> _preferencesButton;
    QPointer<QAbstractButton> _addButton;
    PeopleModel *_people = nullptr;
    QStringList _remembered; // identifiers of who was selected
    QString _rememberedCurrent;
    bool _isSearching = false; // the search is what changes the list
    bool _isRestoring = false;
    bool _choseByHand = false;
    bool _wantsPreferences = false;
};
