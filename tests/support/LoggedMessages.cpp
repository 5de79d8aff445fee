#include "tests/support/LoggedMessages.h"

#include <algorithm>

namespace
{
LoggedMessages *current = nullptr;
}

LoggedMessages::LoggedMessages()
{
    current = this;
    _oldHandler = qInstallMessageHandler(&LoggedMessages::take);
}

LoggedMessages::~LoggedMessages()
{
    qInstallMessageHandler(_oldHandler);
    current = nullptr;
}

bool LoggedMessages::contain(const QString &part) const
{
    return std::any_of(_texts.begin(), _texts.end(), [&](const QString &text) { return text.contains(part); });
}

void LoggedMessages::take(QtMsgType, const QMessageLogContext &, const QString &text)
{
    current->_texts.append(text);
}
