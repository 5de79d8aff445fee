#pragma once

#include <QIcon>
#include <QLineEdit>
#include <QPoint>
#include <QUrl>

class QAction;

// The address of the page, with its site's icon (which can be dragged away as a link) and a line that shows how far
// its loading has come. Return asks for the address that was typed, Escape takes the page's back.
class AddressField : public QLineEdit
{
    Q_OBJECT

public:
    explicit AddressField(QWidget *parent = nullptr);

    // What the page in front has. A text that the user is typing stays.
    void showPage(const QUrl &url, const QString &title, const QIcon &icon);
    // Of another page than before: whatever the user was typing goes.
    void showOtherPage(const QUrl &url, const QString &title, const QIcon &icon);
    // Per cent; 100 hides the line.
    void setProgress(int percent);

Q_SIGNALS:
    void addressEntered(const QUrl &url);
    // Return, with a text that is no address.
    void nonsenseEntered(const QString &text);
    void editingGivenUp();

protected:
    void focusInEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void enter();
    void dragPage();

    QUrl _url;
    QString _title;
    QIcon _icon;
    QAction *_iconAction;
    QWidget *_iconButton = nullptr;
    QPoint _dragStart;
    int _progress = 100;
    bool _selectOnRelease = false;
};
