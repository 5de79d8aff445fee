#include "drawer/FontPanel.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QSignalSpy>
#include <QTest>

class FontPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void proposalIsNotTold();
    void choiceIsToldAtOnce();
    void nothingIsOfferedThatIsNotKept();
    void sampleIsSeen();
    void speaksGerman();

private:
    static QLineEdit *sample(const FontPanel &panel)
    {
        return panel.findChild<QLineEdit *>(QStringLiteral("qt_fontDialog_sampleEdit"));
    }
    const QFont _font{QStringLiteral("DejaVu Sans"), 14};
};

void FontPanelTest::proposalIsNotTold()
{
    FontPanel panel(nullptr);
    const QSignalSpy choices(&panel, &FontPanel::currentFontChanged);
    panel.setSelectedFont(_font);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QCOMPARE(panel.currentFont().family(), _font.family());
    QCOMPARE(panel.currentFont().pointSize(), 14);
    QVERIFY(choices.isEmpty());
}

void FontPanelTest::choiceIsToldAtOnce()
{
    FontPanel panel(nullptr);
    panel.setSelectedFont(_font);
    panel.show();
    const QSignalSpy choices(&panel, &FontPanel::currentFontChanged);
    const QListView *sizes = panel.findChildren<QListView *>().value(2);
    QTest::keyClick(const_cast<QListView *>(sizes), Qt::Key_Down);
    QVERIFY(!choices.isEmpty());
    QCOMPARE(choices.constLast()[0].value<QFont>().pointSize(), 16);
    QVERIFY(panel.isVisible());
}

void FontPanelTest::nothingIsOfferedThatIsNotKept()
{
    FontPanel panel(nullptr);
    panel.show();
    for (const QAbstractButton *button : panel.findChildren<QAbstractButton *>())
        QVERIFY2(!button->isVisible(), qPrintable(button->text()));
    QVERIFY(!panel.findChildren<QCheckBox *>().isEmpty());
}

void FontPanelTest::sampleIsSeen()
{
    FontPanel panel(nullptr);
    panel.setSelectedFont(QFont(_font.family(), 24));
    panel.show();
    QVERIFY(sample(panel)->isVisible());
    QVERIFY(sample(panel)->height() > QFontMetrics(panel.currentFont()).height());
}

void FontPanelTest::speaksGerman()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    FontPanel panel(nullptr);
    QCOMPARE(panel.windowTitle(), QStringLiteral("Schrift der Listen"));
    QStringList texts;
    for (const QLabel *label : panel.findChildren<QLabel *>())
        texts.append(label->text().remove(u'&'));
    QCOMPARE(texts, (QStringList{"Schriftart", "Schnitt", "Gr\u00f6\u00dfe", "Schriftsystem"}));
    const auto *systems = panel.findChild<QComboBox *>();
    QCOMPARE(systems->itemText(0), QStringLiteral("Alle"));
    QCOMPARE(systems->itemText(systems->findText(QStringLiteral("Griechisch"))), QStringLiteral("Griechisch"));
}

QTEST_MAIN(FontPanelTest)
#include "FontPanelTest.moc"
