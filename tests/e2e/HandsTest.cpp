#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Camera.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Stage.h"

#include <QApplication>
#include <QImage>
#include <QtWidgets>

// The means of the other end-to-end tests, tried on a plain window: that what the hands do arrives, also in dialogs
// that hold up the code that opened them, and that the eyes and the camera see it.
class HandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void click();
    void doubleClick();
    void typing();
    void typingLines();
    void shortcut();
    void drag();
    void dialogInsideAClick();
    void rows();
    void picture();
    void settleOutlastsIdleWork();

private:
    QMainWindow *_window = nullptr;
    QPushButton *_button = nullptr;
    QLineEdit *_field = nullptr;
    QSlider *_slider = nullptr;
    QTreeWidget *_list = nullptr;
};

void HandsTest::init()
{
    Stage::onMain([this] {
        _window = new QMainWindow;
        auto *page = new QWidget;
        auto *layout = new QVBoxLayout(page);
        _button = new QPushButton(QStringLiteral("Press"));
        _button->setObjectName(QStringLiteral("press"));
        _field = new QLineEdit;
        _slider = new QSlider(Qt::Horizontal);
        _slider->setRange(0, 1000);
        _list = new QTreeWidget;
        new QTreeWidgetItem(new QTreeWidgetItem(_list, {QStringLiteral("Folder")}), {QStringLiteral("Leaf")});
        for (QWidget *widget : std::initializer_list<QWidget *>{_button, _field, _slider, _list})
            layout->addWidget(widget);
        _window->setCentralWidget(page);
        _window->resize(400, 300);
        _window->show();
    });
    EVENTUALLY(_window->isActiveWindow());
}

void HandsTest::cleanup()
{
    Stage::onMain([this] { delete _window; });
}

void HandsTest::click()
{
    bool clicked = false;
    Stage::onMain([&] { connect(_button, &QPushButton::clicked, _window, [&] { clicked = true; }); });
    QVERIFY(Hands::clickOn(_button));
    EVENTUALLY(clicked);
}

void HandsTest::doubleClick()
{
    int doubleClicks = 0;
    Stage::onMain([&] { connect(_list, &QTreeWidget::itemDoubleClicked, _window, [&] { ++doubleClicks; }); });
    QVERIFY(Hands::doubleClickOnRow(_list, QStringLiteral("Folder")));
    EVENTUALLY(doubleClicks == 1);
}

void HandsTest::typing()
{
    QVERIFY(Hands::clickInto(_field));
    QVERIFY(Hands::type(QStringLiteral("http://News.site/?a=1&b \"x\"")));
    EVENTUALLY(_field->text() == QLatin1String("http://News.site/?a=1&b \"x\""));
}

void HandsTest::typingLines()
{
    QTextEdit *page = Stage::onMain([this] {
        auto *text = new QTextEdit(_window);
        _window->setCentralWidget(text);
        return text;
    });
    QVERIFY(Hands::clickInto(page));
    QVERIFY(Hands::type(QStringLiteral("Eight o'clock.\n\nBring shoes.")));
    EVENTUALLY(page->toPlainText() == QLatin1String("Eight o'clock.\n\nBring shoes."));
}

void HandsTest::shortcut()
{
    bool asked = false;
    Stage::onMain([&] {
        auto *shortcut = new QShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+J")), _window);
        connect(shortcut, &QShortcut::activated, _window, [&] { asked = true; });
    });
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+j")));
    EVENTUALLY(asked);
}

void HandsTest::drag()
{
    const QPoint left = Stage::onMain([this] { return _slider->mapToGlobal(QPoint(4, _slider->height() / 2)); });
    QVERIFY(Hands::drag(left, left + QPoint(200, 0)));
    EVENTUALLY(_slider->value() > 400);
}

void HandsTest::dialogInsideAClick()
{
    int answer = 0;
    Stage::onMain([&] {
        connect(_button, &QPushButton::clicked, _window,
                [&] { answer = QMessageBox::question(_window, QStringLiteral("Confirm"), QStringLiteral("Sure?")); });
    });
    QVERIFY(Hands::clickOn(_button));
    EVENTUALLY(QApplication::activeModalWidget());
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("Yes"))));
    EVENTUALLY(answer == QMessageBox::Yes);
    EVENTUALLY(!QApplication::activeModalWidget());
}

void HandsTest::rows()
{
    QVERIFY(Eyes::rowWithText(_list, QStringLiteral("Folder")));
    QVERIFY(!Eyes::rowWithText(_list, QStringLiteral("Leaf")));
    QCOMPARE(Eyes::rowTexts(_list), QStringList{QStringLiteral("Folder")});
    Stage::onMain([this] { _list->expandAll(); });
    QVERIFY(Eyes::rowWithText(_list, QStringLiteral("Leaf")));
    QCOMPARE(Eyes::rowTexts(_list), (QStringList{QStringLiteral("Folder"), QStringLiteral("Leaf")}));
    QCOMPARE(Eyes::widgetNamed<QPushButton>(_window, QStringLiteral("press")), _button);
}

void HandsTest::picture()
{
    const QColor red(200, 30, 20);
    const QPoint spot = Stage::onMain([&] {
        auto *patch = new QWidget(_window);
        patch->setPalette(red);
        patch->setAutoFillBackground(true);
        patch->setGeometry(_window->rect());
        patch->show();
        return _window->mapToGlobal(patch->geometry().center());
    });
    const QTemporaryDir directory;
    Camera camera(directory.path());
    QVERIFY(camera.shoot(QStringLiteral("window")));
    QVERIFY(camera.shoot(QStringLiteral("again")));
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), (QStringList{"01-window.png", "02-again.png"}));
    const QImage picture(directory.filePath(QStringLiteral("02-again.png")));
    QCOMPARE(picture.size(), QSize(1280, 800));
    QCOMPARE(picture.pixelColor(spot), red);
}

void HandsTest::settleOutlastsIdleWork()
{
    bool done = false;
    Stage::onMain([&] { QTimer::singleShot(0, [&] { QTimer::singleShot(0, [&] { done = true; }); }); });
    Stage::settle();
    NOW(done);
}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setCursorFlashTime(0); // or no picture would be like another
    return Stage::perform([&] {
        HandsTest test;
        return QTest::qExec(&test, argc, argv);
    });
}

#include "HandsTest.moc"
