#include "browser/Browser.h"
#include "browser/CommandLine.h"
#include "browser/DisplayPlatform.h"
#include "browser/Language.h"
#include "browser/NoAnswerBox.h"
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
    DisplayPlatform::choose(commandLine.platform);
    QApplication application(argc, argv);
    const Language language;
    RunningInstance instance;
    RunningInstance::Outcome outcome = instance.settle(commandLine.addresses);
    while (outcome == RunningInstance::NoAnswer) {
        NoAnswerBox box(commandLine.addresses);
        box.exec();
        if (!box.triesAgain())
            return 1;
        outcome = instance.settle(commandLine.addresses);
    }
    if (outcome == RunningInstance::HandedOver)
        return 0;
    Browser browser;
    instance.setReceiver([&browser](const QStringList &addresses) { return browser.openAddresses(addresses); });
    const TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &browser, &Browser::quitAtOnce);
    browser.start(QApplication::arguments().mid(1));
    return QApplication::exec();
}
