#include "browser/Browser.h"
#include "browser/CommandLine.h"
#include "browser/RunningInstance.h"
#include "browser/TerminationSignals.h"

#include <QApplication>
#include <cstdio>

int main(int argc, char **argv)
{
    Browser::prepareProcess();
    const CommandLine commandLine = CommandLine::parse(argc, argv);
    if (!commandLine.text.isEmpty()) {
        std::fputs(qPrintable(commandLine.text), commandLine.isError ? stderr : stdout);
        return commandLine.isError ? 2 : 0;
    }
    QApplication application(argc, argv);
    // Two processes would write over each other's files.
    RunningInstance instance;
    if (!instance.isFirst() && instance.sendAddresses(commandLine.addresses))
        return 0;
    Browser browser;
    QObject::connect(&instance, &RunningInstance::addressesReceived, &browser, &Browser::openAddresses);
    const TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &browser, &Browser::quitAtOnce);
    browser.start(QApplication::arguments().mid(1));
    return QApplication::exec();
}
