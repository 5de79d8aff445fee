#include "tests/e2e/support/Stage.h"

#include "tests/e2e/support/Tool.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QSemaphore>
#include <QThread>
#include <memory>

namespace
{
// Of what did not come about, into the folder $WAYFOLD_PICTURES, for whoever looks into a failure.
void takePicture()
{
    const QString folder = qEnvironmentVariable("WAYFOLD_PICTURES");
    const char *function = QTest::currentTestFunction();
    if (folder.isEmpty() || !function)
        return;
    const QString file = QStringLiteral("%1/%2.png").arg(folder, QString::fromLatin1(function));
    Tool::run(QStringLiteral("import"),
              {QStringLiteral("-silent"), QStringLiteral("-window"), QStringLiteral("root"), file});
}
} // namespace

int Stage::perform(const std::function<int()> &play)
{
    int result = -1;
    const std::unique_ptr<QThread> user(QThread::create([&] { result = play(); }));
    QObject::connect(user.get(), &QThread::finished, QCoreApplication::instance(), [] { QCoreApplication::exit(); });
    user->start();
    while (!user->isFinished())
        QCoreApplication::exec();
    user->wait();
    return result;
}

bool Stage::eventually(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(patience);
    while (!onMain(condition)) {
        if (deadline.hasExpired()) {
            takePicture();
            return false;
        }
        QThread::msleep(20);
    }
    return true;
}

void Stage::settle()
{
    for (int sleeps = 0; sleeps < 3; ++sleeps) {
        QSemaphore asleep;
        const auto connection = onMain([&asleep] {
            return QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                                    QCoreApplication::instance(), [&asleep] { asleep.release(); });
        });
        asleep.acquire();
        onMain([&connection] { QObject::disconnect(connection); });
    }
}
