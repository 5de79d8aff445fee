// Measures Wayfold against what a user would run instead, on the same data in the same run.
//
//   wayfold-bench [--json FILE] [--entries N] [--no-peers] [--only NAME]
//   wayfold-bench --scale

#include "benchmarks/Benches.h"
#include "benchmarks/ChildParts.h"
#include "benchmarks/Figures.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/Scale.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QCommandLineParser>
#include <algorithm>
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
    const bool folder = measureContacts(figures);
    return reported(measureDesktopContacts(figures), "the desktop's contacts") && folder;
}

constexpr std::pair<const char *, bool (*)(Figures &)> ownBenches[] = {
    {"page load", measurePageLoad}, {"mail address", measureMail},        {"contacts", measureAllContacts},
    {"item file", measureItemFile}, {"item changes", measureItemChanges}, {"merge", measureMerge},
};

constexpr std::pair<const char *, bool (*)(Figures &, GeneratedFiles &, bool)> fileBenches[] = {
    {"reading", measureReading},        {"grouping", measureGrouping},
    {"filtering", measureFiltering},    {"selection", measureSelection},
    {"history tab", measureHistoryTab}, {"bookmark tab", measureBookmarkTab},
    {"memory", measureMemory},          {"start", measureStart},
};

QString names()
{
    QStringList names;
    for (const auto &[name, measure] : ownBenches)
        names.append(QLatin1String(name));
    for (const auto &[name, measure] : fileBenches)
        names.append(QLatin1String(name));
    return names.join(QStringLiteral(", "));
}

// `only`: the name of the one to measure; empty: all.
template <class Benches, class... Arguments>
bool measure(const Benches &benches, const QString &only, Arguments &&...arguments)
{
    bool complete = true;
    for (const auto &[name, bench] : benches) {
        if (only.isEmpty() || only == QLatin1String(name))
            complete = reported(bench(arguments...), name) && complete;
    }
    return complete;
}

bool isAmong(const auto &benches, const QString &name)
{
    return std::any_of(std::begin(benches), std::end(benches),
                       [&](const auto &bench) { return name == QLatin1String(bench.first); });
}

bool measureBrowserFiles(Figures &figures, int entries, bool peers, const QString &only)
{
    if (!only.isEmpty() && !isAmong(fileBenches, only))
        return true;
    const QTemporaryDir folder;
    GeneratedFiles files(folder.path(), entries);
    return reported(files.write(), "the browser's files") && measure(fileBenches, only, figures, files, peers);
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
    const QCommandLineOption onlyOne(QStringLiteral("only"), QStringLiteral("Only one of: %1.").arg(names()),
                                     QStringLiteral("NAME"));
    const QCommandLineOption scale(QStringLiteral("scale"),
                                   QStringLiteral("Only how each cost grows with the browser's files."));
    QCommandLineOption child(QStringLiteral("child"), QString(), QStringLiteral("NAME"));
    child.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({json, entries, noPeers, onlyOne, scale, child});
    parser.addHelpOption();
    parser.process(application);

    const int count = std::max(parser.value(entries).toInt(), 1);
    if (parser.isSet(child))
        return ChildParts::run(parser.value(child), {parser.positionalArguments().value(0), count});
    if (parser.isSet(scale))
        return Scale::print() ? 0 : 1;

    const QString only = parser.value(onlyOne);
    if (!only.isEmpty() && !isAmong(ownBenches, only) && !isAmong(fileBenches, only)) {
        std::fprintf(stderr, "no such figures: %s\n", qPrintable(only));
        return 1;
    }
    Figures figures;
    bool complete = parser.isSet(entries) || measure(ownBenches, only, figures);
    complete = measureBrowserFiles(figures, count, !parser.isSet(noPeers), only) && complete;
    figures.print();
    if (parser.isSet(json) && !figures.writeJson(parser.value(json))) {
        std::fprintf(stderr, "could not be written: %s\n", qPrintable(parser.value(json)));
        complete = false;
    }
    return complete ? 0 : 1;
}
