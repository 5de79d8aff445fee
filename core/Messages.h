#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <vector>

// What the user is to be told without being asked anything, one message a subject. Every window's drawer shows the same
// one, the most important.
class Messages : public QObject
{
    Q_OBJECT

public:
    // The most important first.
    enum Subject { NotSaved, KeptAside, NoBackup, Merged, SavedAgain };
    enum Kind { Information, Warning, Error };

    struct Button
    {
        QString title;
        QString toolTip;
        std::function<void()> act;
    };
    // Texts in the user's language.
    struct Message
    {
        Subject subject = NotSaved;
        Kind kind = Information;
        QString text;                      // one sentence
        std::vector<Button> buttons;       // at most two
        std::chrono::milliseconds time{0}; // for which it is shown, then it goes by itself; 0: until it is cleared
    };

    Messages();

    // Takes the place of what was said of the same subject.
    void say(const Message &message);
    // It is no longer so, or the user has read it.
    void clear(Subject subject);
    // Null when there is nothing to tell; good until the next change.
    const Message *current() const;
    // Of that subject; null when there is none.
    const Message *about(Subject subject) const;

Q_SIGNALS:
    // Something was said, even if it was the same again, or cleared.
    void changed();

private:
    void startTime();

    std::map<Subject, Message> _messages;
    QTimer _timer; // of the current message
};
