#pragma once

#include <QCoreApplication>
#include <QThread>
#include <QtTest>
#include <chrono>
#include <functional>
#include <type_traits>

// The two sides of an end-to-end test. The browser runs on the main thread, as it always does; its user is a thread of
// its own, so that dialogs, menus and drags, which run event loops inside a call, do not hold the user up. The user
// never touches a widget directly: he asks about them through `onMain` and works on them with Hands.
namespace Stage
{
// Lets the user play in a thread of his own while the application runs in this one, until he has finished; gives back
// what he returned. The application may quit and its last window may close meanwhile.
int perform(const std::function<int()> &play);

// Asks on the main thread and waits for the answer; on the main thread itself it just asks.
template <class Question>
auto onMain(Question question)
{
    using Answer = std::invoke_result_t<Question>;
    QCoreApplication *application = QCoreApplication::instance();
    if (QThread::currentThread() == application->thread())
        return question();
    if constexpr (std::is_void_v<Answer>) {
        QMetaObject::invokeMethod(application, question, Qt::BlockingQueuedConnection);
    } else {
        Answer answer{};
        QMetaObject::invokeMethod(
            application, [&] { answer = question(); }, Qt::BlockingQueuedConnection);
        return answer;
    }
}

// How long a condition is waited for: much longer than it takes on a machine that has other things to do as well.
constexpr std::chrono::seconds patience(60);

// Whether a condition, asked on the main thread, becomes true in good time.
bool eventually(const std::function<bool()> &condition);
// Waits until everything that the main thread had to do when this was called is done, and what followed from it: until
// its event loop has gone to sleep, more than once.
void settle();
} // namespace Stage

// Fails the test when the condition does not become true.
#define EVENTUALLY(condition) QVERIFY2(Stage::eventually([&] { return bool(condition); }), #condition)
// Fails the test when the condition is not true right now.
#define NOW(condition) QVERIFY2(Stage::onMain([&] { return bool(condition); }), #condition)
