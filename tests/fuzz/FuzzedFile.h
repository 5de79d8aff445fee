#pragma once

#include <QByteArrayView>
#include <QString>
#include <QtGlobal>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

// A file that is in memory alone, for inputs by the thousand a second.
class FuzzedFile
{
public:
    FuzzedFile() : _descriptor(memfd_create("fuzzed", MFD_CLOEXEC)) {}
    FuzzedFile(const FuzzedFile &) = delete;
    FuzzedFile &operator=(const FuzzedFile &) = delete;
    ~FuzzedFile() { ::close(_descriptor); }

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(_descriptor); }
    void write(QByteArrayView contents) const
    {
        if (::ftruncate(_descriptor, 0) != 0 ||
            ::pwrite(_descriptor, contents.data(), size_t(contents.size()), 0) != contents.size())
            qFatal("cannot write the input");
    }

private:
    int _descriptor;
};

// Ends the program, so that the fuzzer keeps the input.
inline void require(bool holds, const char *what)
{
    if (!holds) {
        fprintf(stderr, "It does not hold that %s.\n", what);
        abort();
    }
}

// The refusals would fill the screen.
inline void beSilent()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}
