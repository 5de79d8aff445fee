#include "drawer/KDRShowNoteController.h"

#include "drawer/KDRShowNoteView.h"
#include "lists/NoteViewer.h"
#include "tests/drawer/DrawerStage.h"

class KDRShowNoteControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _stage.emplace(); }
    void cleanup()
    {
        for (QWidget *window : noteWindows())
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        _stage.reset();
    }

    void showsTheNote();
    void textIsReadAndCopiedOnly();
    void everyOpeningIsAnotherWindow();
    void closes_data();
    void closes();
    void holdsTheNote();
    void missingInterfaceFile();

private:
    static QList<QWidget *> noteWindows()
    {
        QList<QWidget *> windows;
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->findChild<KDRShowNoteView *>())
                windows.append(window);
        }
        return windows;
    }
    static QWidget *show(const WayfoldBookmarkNotePtr &note)
    {
        const QList<QWidget *> before = noteWindows();
        NoteViewer::showNote(note);
        for (QWidget *window : noteWindows()) {
            if (!before.contains(window))
                return window;
        }
        return nullptr;
    }

    std::optional<DrawerStage> _stage;
};

void KDRShowNoteControllerTest::showsTheNote()
{
    QWidget *window = show(DrawerStage::note(QStringLiteral("Hours"), QStringLiteral("Mon-Fri\n<b>9</b> to 5")));
    QVERIFY(window);
    QVERIFY(window->isVisible());
    QTRY_VERIFY(window->isActiveWindow());
    QCOMPARE(window->windowModality(), Qt::NonModal);
    QCOMPARE(window->windowTitle(), QStringLiteral("Hours"));
    QCOMPARE(window->findChild<KDRShowNoteView *>()->toPlainText(), QStringLiteral("Mon-Fri\n<b>9</b> to 5"));
}

void KDRShowNoteControllerTest::textIsReadAndCopiedOnly()
{
    QWidget *window = show(DrawerStage::note(QStringLiteral("Note"), QStringLiteral("text")));
    auto *view = window->findChild<KDRShowNoteView *>();
    QVERIFY(view->isReadOnly());
    QVERIFY(view->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    QVERIFY(view->textInteractionFlags().testFlag(Qt::TextSelectableByKeyboard));
    view->setFocus();
    QTest::keyClicks(view, QStringLiteral("abc"));
    QCOMPARE(view->toPlainText(), QStringLiteral("text"));
    QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(view->textCursor().selectedText(), QStringLiteral("text"));
}

void KDRShowNoteControllerTest::everyOpeningIsAnotherWindow()
{
    const auto note = DrawerStage::note(QStringLiteral("Note"));
    QVERIFY(show(note));
    QVERIFY(show(note));
    QCOMPARE(noteWindows().size(), 2);
}

void KDRShowNoteControllerTest::closes_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Escape") << int(Qt::Key_Escape) << int(Qt::NoModifier);
    QTest::newRow("Control and W") << int(Qt::Key_W) << int(Qt::ControlModifier);
}

void KDRShowNoteControllerTest::closes()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    const QPointer<QWidget> window = show(DrawerStage::note(QStringLiteral("Note")));
    QTRY_VERIFY(window->isActiveWindow());
    QTest::keyClick(window->findChild<KDRShowNoteView *>(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QTRY_VERIFY(!window);
}

void KDRShowNoteControllerTest::holdsTheNote()
{
    auto note = DrawerStage::note(QStringLiteral("Note"));
    const std::weak_ptr<WayfoldBookmarkNote> held = note;
    const QPointer<QWidget> window = show(note);
    note.reset();
    QVERIFY(!held.expired());
    window->close();
    QTRY_VERIFY(held.expired());
    QVERIFY(!window);
}

void KDRShowNoteControllerTest::missingInterfaceFile()
{
    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", "/nowhere");
    auto note = DrawerStage::note(QStringLiteral("Note"));
    const std::weak_ptr<WayfoldBookmarkNote> held = note;
    QVERIFY(!show(note));
    note.reset();
    qputenv("WAYFOLD_BUNDLE", bundle);
    QTRY_VERIFY(held.expired());
}

QTEST_MAIN(KDRShowNoteControllerTest)
#include "KDRShowNoteControllerTest.moc"
