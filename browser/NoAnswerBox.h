#pragma once

#include <QMessageBox>

// Says that the browser is open already but does not answer, and which pages could not be handed to it.
class NoAnswerBox : public QMessageBox
{
    Q_OBJECT

public:
    explicit NoAnswerBox(const QStringList &addresses);

    // Whether the user asked to try again.
    bool triesAgain() const { return clickedButton() == _tryAgain; }

private:
    QAbstractButton *_tryAgain;
};
