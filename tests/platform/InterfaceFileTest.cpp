#include "platform/widgets/InterfaceFile.h"

#include "tests/support/LoggedMessages.h"
#include "tests/support/TemporaryHome.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

namespace
{
constexpr auto form = R"(<ui version="4.0"><class>TestForm</class>
<widget class="QWidget" name="TestForm">
 <property name="windowTitle"><string>Edit Note</string></property>
 <layout class="QVBoxLayout">
  <item><widget class="QLabel" name="label"><property name="text"><string>Title</string></property></widget></item>
  <item><widget class="QLineEdit" name="titleField">
   <property name="text"><string>Title</string></property>
   <property name="placeholderText"><string>Title</string></property>
   <property name="toolTip"><string>Edit Note</string></property>
  </widget></item>
  <item><widget class="FancyList" name="list"/></item>
  <item><widget class="QComboBox" name="pop">
   <property name="action" stdset="0"><string notr="true">popChanged:</string></property>
   <item><property name="text"><string>Title</string></property></item>
   <item><property name="text"><string>Other</string></property></item>
  </widget></item>
  <item><widget class="QTabWidget" name="tabs">
   <widget class="QWidget" name="page"><attribute name="title"><string>Title</string></attribute>
    <layout class="QVBoxLayout"><item><widget class="QPushButton" name="inner">
     <property name="action" stdset="0"><string notr="true">saveEdit:</string></property>
    </widget></item></layout></widget>
  </widget></item>
  <item><widget class="QPushButton" name="okButton">
   <property name="text"><string>OK</string></property>
   <property name="action" stdset="0"><string notr="true">saveEdit:</string></property>
  </widget></item>
  <item><widget class="QPushButton" name="cancelButton">
   <property name="text"><string>Cancel</string></property>
   <property name="action" stdset="0"><string notr="true">cancelEdit:</string></property>
  </widget></item>
 </layout>
 <action name="menuAction"><property name="text"><string>Title</string></property>
  <property name="action" stdset="0"><string notr="true">saveEdit:</string></property></action>
</widget>
<customwidgets><customwidget><class>FancyList</class><extends>QLabel</extends><header>FancyList.h</header>
</customwidget></customwidgets>
</ui>)";

class FancyList : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;
};
} // namespace

class InterfaceFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void loadsTheForm();
    void findsObjectsByNameAndClass();
    void makesRegisteredClasses();
    void connectsActions();
    void translatesItsTexts();
    void missingFileGivesNoObjects();
    void damagedFileGivesNoObjects_data();
    void damagedFileGivesNoObjects();
    void canBeLoadedTwice();
    void topWidgetMayGoFirst();
    void loadsNoDesignerPlugins();

private:
    TemporaryHome _home;
    QByteArray _oldBundle;
};

void InterfaceFileTest::initTestCase()
{
    _oldBundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", _home.path("Test.plugin").toUtf8());
    InterfaceFile::registerClass("FancyList", [](QWidget *parent) { return new FancyList(parent); });
    _home.write("Test.plugin/Contents/Resources/TestForm.ui", form);
}

void InterfaceFileTest::cleanup()
{
    qDeleteAll(QApplication::topLevelWidgets());
}

void InterfaceFileTest::loadsTheForm()
{
    InterfaceFile file("TestForm");
    QVERIFY(file.topLevelWidget());
    QCOMPARE(file.topLevelWidget()->objectName(), QString("TestForm"));
    QCOMPARE(file.topLevelWidget()->windowTitle(), QString("Edit Note"));
    QVERIFY(!file.topLevelWidget()->parentWidget());

    QWidget parent;
    InterfaceFile child("TestForm", &parent);
    QCOMPARE(child.topLevelWidget()->parentWidget(), &parent);
}

void InterfaceFileTest::findsObjectsByNameAndClass()
{
    InterfaceFile file("TestForm");
    QVERIFY(file.outlet<QLineEdit>("titleField"));
    QCOMPARE(file.outlet<QWidget>("TestForm"), file.topLevelWidget());
    QVERIFY(file.outlet<QAction>("menuAction"));
    QVERIFY(file.outlet<QWidget>("titleField"));
    QVERIFY(!file.outlet<QLabel>("titleField"));
    QVERIFY(!file.outlet<QWidget>("nothing"));
}

void InterfaceFileTest::makesRegisteredClasses()
{
    InterfaceFile file("TestForm");
    auto *list = file.outlet<FancyList>("list");
    QVERIFY(list);
    QCOMPARE(list->parentWidget(), file.topLevelWidget());
}

void InterfaceFileTest::connectsActions()
{
    InterfaceFile file("TestForm");
    QStringList sent;
    for (const char *name : {"saveEdit:", "cancelEdit:", "popChanged:"})
        file.connectAction(name, [&sent, name](QObject *sender) { sent.append(name + sender->objectName()); });
    file.connectAction("nobody:", [&sent](QObject *) { sent.append("nobody"); });

    file.outlet<QPushButton>("okButton")->click();
    file.outlet<QPushButton>("cancelButton")->click();
    file.outlet<QPushButton>("inner")->click();
    file.outlet<QAction>("menuAction")->trigger();
    QCOMPARE(sent,
             QStringList({"saveEdit:okButton", "cancelEdit:cancelButton", "saveEdit:inner", "saveEdit:menuAction"}));
    sent.clear();
    auto *pop = file.outlet<QComboBox>("pop");
    pop->setCurrentIndex(1); // by the program, not by the user
    QVERIFY(sent.isEmpty());
    QTest::keyClick(pop, Qt::Key_Up);
    QCOMPARE(sent, QStringList({"popChanged:pop"}));
}

void InterfaceFileTest::translatesItsTexts()
{
    QFile catalogue(QFile::decodeName(_oldBundle) + "/Contents/Resources/wayfold_de.qm");
    QVERIFY(catalogue.open(QIODevice::ReadOnly));
    _home.write("Test.plugin/Contents/Resources/wayfold_de.qm", catalogue.readAll());
    const QLocale before;
    QLocale::setDefault(QLocale("de_DE"));
    InterfaceFile file("TestForm");
    QLocale::setDefault(before);
    QCOMPARE(file.outlet<QLabel>("label")->text(), QString("Titel"));
    QCOMPARE(file.outlet<QLineEdit>("titleField")->placeholderText(), QString("Titel"));
    QCOMPARE(file.outlet<QComboBox>("pop")->itemText(0), QString("Titel"));
    QCOMPARE(file.outlet<QTabWidget>("tabs")->tabText(0), QString("Titel"));
    QCOMPARE(file.outlet<QAction>("menuAction")->text(), QString("Titel"));
    QCOMPARE(file.topLevelWidget()->windowTitle(), QString("Notiz bearbeiten"));
    // What the user edits.
    QCOMPARE(file.outlet<QLineEdit>("titleField")->text(), QString("Title"));
}

void InterfaceFileTest::missingFileGivesNoObjects()
{
    LoggedMessages log;
    InterfaceFile file("Nothing");
    QVERIFY(!file.topLevelWidget());
    QVERIFY(!file.outlet<QWidget>("label"));
    file.connectAction("saveEdit:", [](QObject *) {});
    QVERIFY(log.contain("Nothing"));
}

void InterfaceFileTest::damagedFileGivesNoObjects_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("text") << QByteArray("no form");
    QTest::newRow("cut off") << QByteArray(form).left(300);
}

void InterfaceFileTest::damagedFileGivesNoObjects()
{
    QFETCH(QByteArray, contents);
    _home.write("Test.plugin/Contents/Resources/Damaged.ui", contents);
    LoggedMessages log;
    InterfaceFile file("Damaged");
    QVERIFY(!file.topLevelWidget());
    QVERIFY(log.contain("Damaged.ui"));
}

void InterfaceFileTest::canBeLoadedTwice()
{
    InterfaceFile first("TestForm");
    InterfaceFile second("TestForm");
    QVERIFY(first.topLevelWidget() != second.topLevelWidget());
    int sent = 0;
    first.connectAction("saveEdit:", [&sent](QObject *) { ++sent; });
    second.outlet<QPushButton>("okButton")->click();
    QCOMPARE(sent, 0);
}

void InterfaceFileTest::topWidgetMayGoFirst()
{
    InterfaceFile file("TestForm");
    delete file.topLevelWidget();
    QVERIFY(!file.topLevelWidget());
    QVERIFY(!file.outlet<QWidget>("label"));
}

// They would pull libraries into the host that nothing here needs.
void InterfaceFileTest::loadsNoDesignerPlugins()
{
    InterfaceFile file("TestForm");
    QVERIFY(file.topLevelWidget());
    QFile maps("/proc/self/maps");
    QVERIFY(maps.open(QIODevice::ReadOnly));
    QVERIFY(!maps.readAll().contains("/plugins/designer/"));
    QVERIFY(!QCoreApplication::libraryPaths().isEmpty());
}

QTEST_MAIN(InterfaceFileTest)
#include "InterfaceFileTest.moc"
