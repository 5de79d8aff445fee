#pragma once

#include "tests/support/TemporaryHome.h"

#include <QProcess>
#include <QStandardPaths>

// Runs a script of Python in that home; its own reader and writer of property lists know nothing of ours. Null when
// nothing in it failed.
inline QString runPython(const TemporaryHome &home, const QByteArray &script)
{
    home.write("script.py", "import datetime, json, plistlib\n" + script);
    QProcess process;
    process.setWorkingDirectory(home.path());
    process.start(QStandardPaths::findExecutable("python3"), {home.path("script.py")});
    const bool hasSucceeded =
        process.waitForFinished() && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return hasSucceeded ? QString() : process.errorString() + process.readAllStandardError();
}
