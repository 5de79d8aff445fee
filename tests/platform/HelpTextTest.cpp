#include "platform/widgets/HelpText.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextDocument>
#include <QToolTip>
#include <QTreeView>

class HelpTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void longTextIsWrapped();
    void textStaysAsItIs_data();
    void textStaysAsItIs();
    void textIsShownOverAList();
    void textIsForScreenReadersToo();
    void widgetWithoutToolTipIsLeftAlone();

private:
    // What the pointer's rest on it shows.
    static QString toolTipOver(QWidget *widget);

    std::unique_ptr<QWidget> _window;
    QPushButton *_button = nullptr;
    QTreeView *_list = nullptr;
    QLabel *_label = nullptr;
};

void HelpTextTest::init()
{
    _window = std::make_unique<QWidget>();
    _button = new QPushButton(QStringLiteral("Press"), _window.get());
    _list = new QTreeView(_window.get());
    _label = new QLabel(QStringLiteral("Label"), _window.get());
    _window->show();
}

void HelpTextTest::cleanup()
{
    QToolTip::hideText();
    _window.reset();
}

QString HelpTextTest::toolTipOver(QWidget *widget)
{
    QHelpEvent event(QEvent::ToolTip, QPoint(2, 2), widget->mapToGlobal(QPoint(2, 2)));
    QCoreApplication::sendEvent(widget, &event);
    return QToolTip::text();
}

void HelpTextTest::longTextIsWrapped()
{
    _button->setToolTip(QStringLiteral("word ").repeated(60));
    HelpText::prepare(_window.get());
    toolTipOver(_button);
    const auto tips = QApplication::topLevelWidgets();
    const auto tip = std::find_if(tips.cbegin(), tips.cend(),
                                  [](const QWidget *each) { return each->isVisible() && each->inherits("QTipLabel"); });
    QVERIFY(tip != tips.cend());
    QVERIFY((*tip)->height() > 2 * (*tip)->fontMetrics().lineSpacing());
    QVERIFY((*tip)->width() < (*tip)->fontMetrics().horizontalAdvance(_button->toolTip()) / 2);
}

void HelpTextTest::textStaysAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one sentence") << "What it does.";
    QTest::newRow("two blanks") << "What it does.  And more.";
    QTest::newRow("two lines") << "What it does.\n\nAnd more.";
    QTest::newRow("signs") << "a < b & <b>c</b>";
}

void HelpTextTest::textStaysAsItIs()
{
    QFETCH(QString, text);
    _button->setToolTip(text);
    HelpText::prepare(_window.get());
    QTextDocument shown;
    shown.setHtml(toolTipOver(_button));
    QCOMPARE(shown.toPlainText(), text);
    QCOMPARE(_button->toolTip(), text);
}

void HelpTextTest::textIsShownOverAList()
{
    _list->setToolTip(QStringLiteral("The rows."));
    HelpText::prepare(_window.get());
    QVERIFY(toolTipOver(_list->viewport()).contains(QLatin1String("The rows.")));
}

void HelpTextTest::textIsForScreenReadersToo()
{
    for (QWidget *widget : std::initializer_list<QWidget *>{_button, _list}) {
        widget->setToolTip(QStringLiteral("What it does."));
        HelpText::prepare(_window.get());
        QCOMPARE(widget->whatsThis(), QStringLiteral("What it does."));
        QCOMPARE(QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Description),
                 QStringLiteral("What it does."));
    }
}

void HelpTextTest::widgetWithoutToolTipIsLeftAlone()
{
    HelpText::prepare(_window.get());
    QVERIFY(_label->whatsThis().isEmpty());
    QVERIFY(toolTipOver(_label).isEmpty());
}

QTEST_MAIN(HelpTextTest)
#include "HelpTextTest.moc"
