// Measures Wayfold against what a user would run instead, on the same data in the same run.
//
//   wayfold-bench [--json FILE] [--entries N] [--no-peers] [--only NAME]
//   wayfold-bench --scale

#include "benchmarks/Benches.h"
#include "benchmarks/ChildProcess.h"
#include "benchmarks/Figures.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/Scale.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

namespace
{
bool reported(bool complete, const char *name)
{
    if (!complete)
        std::fprintf(stderr, "could not be measured: %s\n", name);
    return complete;
}

bool measureAllContacts(Figures &figures)
{
    const bool folder = reported(measureContacts(figures), "contacts");
    return reported(measureDesktopContacts(figures), "the desktop's contacts") && folder;
}

bool measureOwnFile(Figures &figures)
{
    const bool pageLoad = reported(measurePageLoad(figures), "page load");
    const bool mail = reported(measureMail(figures), "mail address");
    const bool contacts = measureAllContacts(figures);
    return reported(measureItemFile(figures), "item file") && pageLoad && mail && contacts;
}

// `only`: the name of the one to measure; empty: all.
bool measureBrowserFiles(Figures &figures, int entries, bool peers, const QString &only)
{
    const std::pair<const char *, bool (*)(Figures &, GeneratedFiles &, bool)> benches[] = {
        {"reading", measureReading},
        {"grouping", measureGrouping},
        {"filtering", measureFiltering},
        {"history tab", measureHistoryTab},
        {"bookmark tab", measureBookmarkTab},
        {"memory", measureMemory},
        {"start", measureStart},
    };
    const QTemporaryDir folder;
    GeneratedFiles files(folder.path(), entries);
    if (!reported(files.write(), "the browser's files"))
        return false;
    bool complete = true;
    for (const auto &[name, measure] : benches) {
        if (only.isEmpty() || only == QLatin1String(name))
            complete = reported(measure(figures, files, peers), name) && complete;
    }
    return complete;
}
} // namespace

int main(int argc, char **argv)
{
    const TemporaryHome home;
    QApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Write the figures to FILE as well."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption entries(QStringLiteral("entries"),
                                     QStringLiteral("Only what depends on the browser's files, with N visits in them."),
                                     QStringLiteral("N"), QStringLiteral("100000"));
    const QCommandLineOption noPeers(QStringLiteral("no-peers"), QStringLiteral("Leave others out."));
    const QCommandLineOption only(
        QStringLiteral("only"),
        QStringLiteral("Only one of: reading, grouping, filtering, history tab, bookmark tab, memory, "
                       "start, contacts."),
        QStringLiteral("NAME"));
    const QCommandLineOption scale(QStringLiteral("scale"),
                                   QStringLiteral("Only how each cost grows with the browser's files."));
    QCommandLineOption child(QStringLiteral("child"), QString(), QStringLiteral("NAME"));
    child.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({json, entries, noPeers, only, scale, child});
    parser.addHelpOption();
    parser.process(application);

    const int count = std::max(parser.value(entries).toInt(), 1);
    if (parser.isSet(child))
        return ChildProcess::run(parser.value(child), {parser.positionalArguments().value(0), count});
    if (parser.isSet(scale))
        return Scale::print() ? 0 : 1;

    Figures figures;
    bool complete = true;
    if (parser.value(only) == QLatin1String("contacts")) {
        complete = measureAllContacts(figures);
    } else {
        complete = parser.isSet(entries) || parser.isSet(only) || measureOwnFile(figures);
        complete = measureBrowserFiles(figures, count, !parser.isSet(noPeers), parser.value(only)) && complete;
    }
    figures.print();
    if (parser.isSet(json) && !figures.writeJson(parser.value(json))) {
        std::fprintf(stderr, "could not be written: %s\n", qPrintable(parser.value(json)));
        complete = false;
    }
    return complete ? 0 : 1;
}
