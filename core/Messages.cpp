#include "core/Messages.h"

Messages::Messages()
{
    _timer.setSingleShot(true);
    connect(&_timer, &QTimer::timeout, this, [this] {
        if (const Message *message = current())
            clear(message->subject);
    });
}

void Messages::say(const Message &message)
{
    const bool isCurrent = !current() || current()->subject >= message.subject;
    _messages[message.subject] = message;
    if (isCurrent)
        startTime();
    Q_EMIT changed();
}

void Messages::clear(Subject subject)
{
    if (!about(subject))
        return;
    const bool isCurrent = current()->subject == subject;
    _messages.erase(subject);
    if (isCurrent)
        startTime();
    Q_EMIT changed();
}

const Messages::Message *Messages::current() const
{
    return _messages.empty() ? nullptr : &_messages.begin()->second;
}

const Messages::Message *Messages::about(Subject subject) const
{
    const auto found = _messages.find(subject);
    return found == _messages.end() ? nullptr : &found->second;
}

// Of a message that waits behind another no time passes.
void Messages::startTime()
{
    _timer.stop();
    if (current() && current()->time.count() > 0)
        _timer.start(current()->time);
}
