#pragma once

#include <QString>
#include <QStringList>

// What the program was started with.
struct CommandLine
{
    QStringList addresses;
    bool loadsPlugin = true;
    // The platform plug-in of Qt that was asked for; empty for none.
    QString platform;
    // What to print in place of starting; empty to start.
    QString text;
    bool isError = false;

    // Works before any application object is made.
    static CommandLine parse(int argc, char **argv);
};
