#pragma once

#include <QLabel>
#include <QTimer>

// A line of text over the lower left-hand corner of the page: where a link leads, or a passing remark.
class HoverLabel : public QLabel
{
    Q_OBJECT

public:
    explicit HoverLabel(QWidget *parent);

    // Stays until it is replaced; an empty text hides the label.
    void showText(const QString &text);
    // Goes by itself after a few seconds; an empty text takes the one before it away.
    void showMessage(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place();

    QString _fullText;
    QTimer _hideTimer;
};
