#pragma once

#include <QTabBar>

// The tabs of a window: can be dragged to another place, closed with the middle button, and take dropped links.
class TabBar : public QTabBar
{
    Q_OBJECT

public:
    explicit TabBar(QWidget *parent = nullptr);

    void setTab(int index, const QString &title, const QIcon &icon);

Q_SIGNALS:
    void newTabWanted();
    void duplicateWanted(int index);
    void reloadWanted(int index);
    void linkDropped(const QUrl &url);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    QSize tabSizeHint(int index) const override;
    void tabInserted(int index) override;

private:
    void closeOthers(int index);

    int _middlePressed = -1;
};
