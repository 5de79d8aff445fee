#pragma once

#include <QPointer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;
class QWebEngineFindTextResult;
class WebView;

// Finds text in the page in front. Slides in at the lower edge of the window; Escape sends it away.
class FindBar : public QWidget
{
    Q_OBJECT

public:
    explicit FindBar(QWidget *parent = nullptr);

    // The page to search from now on; null for none. Marks in the one before it go.
    void setView(WebView *view);
    // Shows the bar and gives it the keyboard.
    void open();
    void close();

public Q_SLOTS:
    void findNext();
    void findPrevious();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QToolButton *addButton(const QString &name, const QString &icon, const QString &text, const QString &toolTip);
    void find(bool backward);
    void showResult(const QWebEngineFindTextResult &result);

    QPointer<WebView> _view;
    QLineEdit *_text;
    QLabel *_matches;
};
