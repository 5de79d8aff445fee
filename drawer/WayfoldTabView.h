#pragma once

#include <QTabWidget>
#include <functional>

// The tabs of a drawer. Each tab is found by the identifier of its page (the page's property "identifier"), and told by
// its label (the property "label", which stays the same in every language). While something is dragged over a tab's
// header that tab comes to the front, so that the drop can be made into its list; the header itself takes no drop.
class WayfoldTabView : public QTabWidget
{
    Q_OBJECT

public:
    explicit WayfoldTabView(QWidget *parent = nullptr);

    static const QStringList &acceptableDragTypes();
    // Run once, when the view comes from its interface file.
    void awakeFromNib();

    QString identifierOfTab(int index) const;
    QString labelOfTab(int index) const;
    // Null when there is no tab.
    QString currentLabel() const;
    // Nothing happens when no tab has the identifier.
    void selectTabWithIdentifier(const QString &identifier);
    // What takes the keyboard when the tab is shown, the widget that the page's property "initialFirstResponder" names;
    // null when there is none.
    QWidget *initialFirstResponderOfTab(int index) const;

    // Told the identifier of the tab that has come to the front, before anything of it is painted; told again when a
    // tab is selected that is in front already.
    std::function<void(const QString &identifier)> willSelectTab;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;

private:
    void tellSelection(int index);
};
