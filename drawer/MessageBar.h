#pragma once

#include "core/Messages.h"

#include <QFrame>
#include <QPointer>
#include <QVariantAnimation>
#include <memory>
#include <optional>

class Image;
class QLabel;
class QPushButton;
class QToolButton;

// Slides in above the lists with what the user is to be told: a sentence, at most two buttons and one that closes it.
// It never takes the keyboard; Tab leads to it, Escape closes it and gives the keyboard back. Screen readers are told
// when it comes or says something else. It is hidden while there is nothing to tell.
class MessageBar : public QFrame
{
    Q_OBJECT

public:
    // The messages may go before the bar; it says nothing more then.
    explicit MessageBar(Messages *messages, QWidget *parent = nullptr);

    // Time of one slide in milliseconds, 0 for none; the default follows the desktop's wish for animations.
    void setSlideDuration(int milliseconds) { _slideDuration = milliseconds; }

    // As far as it has slid in.
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct Places;

    void showCurrent();
    void fill(const Messages::Message &message);
    void fillButtons(const std::vector<Messages::Button> &buttons);
    void announce();
    void press(int button);
    void dismiss();

    bool isLeaving() const { return _goal == 0; } // or has left
    void slideTo(qreal goal);
    void slideEnded();
    int slideTime() const;

    void noteKeyboard(QWidget *before, QWidget *now);
    void giveKeyboardBack();

    Places placesIn(int width) const;
    void layOut();

    QPointer<Messages> _messages;
    std::optional<Messages::Message> _message; // shown now, or sliding away
    std::shared_ptr<Image> _icon;
    QLabel *_text = nullptr;
    QToolButton *_closeButton = nullptr;
    QList<QPushButton *> _buttons;
    QPointer<QWidget> _hadKeyboard; // before the bar
    bool _wasPressed = false;       // one of the buttons, and what comes of it is being told

    QVariantAnimation _slide;
    int _slideDuration = -1; // negative: the desktop's
    qreal _shown = 0;        // how far it is in, 0 to 1
    qreal _goal = 0;         // how far it is to be in
};
