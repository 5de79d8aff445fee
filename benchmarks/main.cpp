// Measures Wayfold against what a user would run instead, on the same data in the same run.
//
//   wayfold-bench [--json FILE]

#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

int main(int argc, char **argv)
{
    const TemporaryHome home;
    QApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Write the figures to FILE as well."),
                                  QStringLiteral("FILE"));
    parser.addOption(json);
    parser.addHelpOption();
    parser.process(application);

    Figures figures;
    const std::pair<const char *, bool (*)(Figures &)> benches[] = {
        {"page load", measurePageLoad},
        {"item file", measureItemFile},
    };
    bool complete = true;
    for (const auto &[name, measure] : benches) {
        if (!measure(figures)) {
            std::fprintf(stderr, "could not be measured: %s\n", name);
            complete = false;
        }
    }
    figures.print();
    if (parser.isSet(json) && !figures.writeJson(parser.value(json))) {
        std::fprintf(stderr, "could not be written: %s\n", qPrintable(parser.value(json)));
        complete = false;
    }
    return complete ? 0 : 1;
}
