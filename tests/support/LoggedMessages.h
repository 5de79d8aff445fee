#pragma once

#include <QStringList>
#include <QtGlobal>

// Collects what is logged until this goes, instead of printing it. One at a time.
class LoggedMessages
{
public:
    LoggedMessages();
    ~LoggedMessages();

    QStringList texts() const { return _texts; }
    // Whether one of the messages holds this text.
    bool contain(const QString &part) const;
    void clear() { _texts.clear(); }

private:
    static void take(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QStringList _texts;
    QtMessageHandler _oldHandler;
};
