#include "browser/CommandLine.h"

#include <QTest>

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothing();
    void addresses();
    void withoutPlugin();
    void platform();
    void printsAndGoes_data();
    void printsAndGoes();
};

namespace
{
CommandLine parse(const QList<QByteArray> &arguments)
{
    QList<QByteArray> all = QList<QByteArray>{"wayfold-browser"} + arguments;
    QList<char *> pointers;
    for (QByteArray &argument : all)
        pointers.append(argument.data());
    pointers.append(nullptr);
    return CommandLine::parse(static_cast<int>(all.size()), pointers.data());
}
} // namespace

void CommandLineTest::nothing()
{
    const CommandLine line = parse({});
    QVERIFY(line.text.isEmpty());
    QVERIFY(line.addresses.isEmpty());
    QVERIFY(line.loadsPlugin);
}

void CommandLineTest::addresses()
{
    QCOMPARE(parse({"a.example", "http://b.example/"}).addresses, QStringList({"a.example", "http://b.example/"}));
}

void CommandLineTest::withoutPlugin()
{
    const CommandLine line = parse({"--no-plugin", "a.example"});
    QVERIFY(!line.loadsPlugin);
    QVERIFY(line.text.isEmpty());
    QCOMPARE(line.addresses, QStringList("a.example"));
}

void CommandLineTest::platform()
{
    QCOMPARE(parse({"a.example"}).platform, QString());
    for (const QList<QByteArray> &arguments :
         {QList<QByteArray>{"-platform", "offscreen"}, {"--platform", "offscreen"}, {"--platform=offscreen"}}) {
        const CommandLine line = parse(arguments + QList<QByteArray>{"a.example"});
        QVERIFY2(line.text.isEmpty(), qPrintable(line.text));
        QCOMPARE(line.platform, QString("offscreen"));
        QCOMPARE(line.addresses, QStringList("a.example"));
    }
}

void CommandLineTest::printsAndGoes_data()
{
    QTest::addColumn<QByteArray>("argument");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isError");

    QTest::newRow("help") << QByteArray("--help") << "--no-plugin" << false;
    QTest::newRow("version") << QByteArray("--version") << "1.2.3" << false;
    QTest::newRow("unknown") << QByteArray("--bogus") << "bogus" << true;
}

void CommandLineTest::printsAndGoes()
{
    QFETCH(QByteArray, argument);
    QFETCH(QString, text);
    QFETCH(bool, isError);
    const CommandLine line = parse({argument});
    QVERIFY2(line.text.contains(text), qPrintable(line.text));
    QCOMPARE(line.isError, isError);
}

int main(int argc, char **argv)
{
    // No application object: the parser makes its own.
    QCoreApplication::setApplicationName("wayfold-browser");
    QCoreApplication::setApplicationVersion("1.2.3");
    CommandLineTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "CommandLineTest.moc"
