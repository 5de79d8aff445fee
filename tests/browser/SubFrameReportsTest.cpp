#include "browser/SubFrameReports.h"

#include <QRegularExpression>
#include <QTest>

class SubFrameReportsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsItsOwnLines();
    void leavesOtherLinesAlone();
    void secretsDiffer();
    void scriptRunsInAWorldOfItsOwn();
    void loadingScript();
};

namespace
{
const QString line = QStringLiteral("{\"url\":\"http://a.example/x\",\"path\":[0,12]}");

QString secretOf(const SubFrameReports &reports)
{
    static const QRegularExpression secret("'([0-9a-f]{64})'");
    return secret.match(reports.script().sourceCode()).captured(1);
}
} // namespace

void SubFrameReportsTest::readsItsOwnLines()
{
    const SubFrameReports reports;
    QCOMPARE(secretOf(reports).size(), 64);
    const auto report = reports.reportFrom(secretOf(reports) + line);
    QVERIFY(report);
    QCOMPARE(report->url, QUrl("http://a.example/x"));
    QCOMPARE(report->path, QList<int>({0, 12}));
}

void SubFrameReportsTest::leavesOtherLinesAlone()
{
    const SubFrameReports reports;
    QVERIFY(!reports.reportFrom(""));
    QVERIFY(!reports.reportFrom(line));
    QVERIFY(!reports.reportFrom(" " + secretOf(reports) + line));
}

void SubFrameReportsTest::secretsDiffer()
{
    const SubFrameReports one;
    const SubFrameReports other;
    QVERIFY(secretOf(one) != secretOf(other));
    QVERIFY(!one.reportFrom(secretOf(other) + "{}"));
}

void SubFrameReportsTest::scriptRunsInAWorldOfItsOwn()
{
    const QWebEngineScript script = SubFrameReports().script();
    QVERIFY(script.worldId() != QWebEngineScript::MainWorld);
    QVERIFY(script.runsOnSubFrames());
    QCOMPARE(script.injectionPoint(), QWebEngineScript::DocumentCreation);
}

void SubFrameReportsTest::loadingScript()
{
    QCOMPARE(SubFrameReports::loadingScript({1, 0}, QUrl("http://a.example/?q=\"x\"")),
             QString("window.frames[1].frames[0].location.href = [\"http://a.example/?q=%22x%22\"][0];"));
}

QTEST_GUILESS_MAIN(SubFrameReportsTest)
#include "SubFrameReportsTest.moc"
