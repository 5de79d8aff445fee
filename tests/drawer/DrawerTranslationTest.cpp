#include "core/settings/WayfoldToolkit.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "tests/drawer/DrawerStage.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTabBar>
#include <QXmlStreamReader>

namespace
{
// What may stand there in both languages: the tabs' labels and the name of the product.
const QStringList sameInBoth = {QStringLiteral("Scratchpad"), QStringLiteral("Bookmarks"), QStringLiteral("History"),
                                QStringLiteral("Wayfold")};

// Every translation of the catalogue in the source tree, as a pattern with its values open.
QList<QRegularExpression> germanTexts()
{
    QFile file(qEnvironmentVariable("WAYFOLD_SOURCE") + QStringLiteral("/resources/translations/wayfold_de.ts"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QRegularExpression> texts;
    QXmlStreamReader xml(&file);
    static const QRegularExpression value(QStringLiteral(R"re(\\%(\d\\\$)?(\\@|u))re"));
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"translation")
            continue;
        QString pattern = QRegularExpression::escape(xml.readElementText());
        pattern.replace(value, QStringLiteral(".*"));
        texts.append(QRegularExpression(QRegularExpression::anchoredPattern(pattern)));
    }
    return texts;
}

// What a widget shows, or has read out.
QStringList textsOf(const QWidget &widget)
{
    QStringList texts = {widget.windowTitle(), widget.toolTip(), widget.statusTip(), widget.accessibleName(),
                         widget.accessibleDescription()};
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        texts.append(label->text());
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        texts.append(button->text());
    if (const auto *field = qobject_cast<const QLineEdit *>(&widget))
        texts.append(field->placeholderText());
    if (const auto *tabs = qobject_cast<const QTabBar *>(&widget)) {
        for (int i = 0; i < tabs->count(); ++i)
            texts += {tabs->tabText(i), tabs->tabToolTip(i), tabs->accessibleTabName(i)};
    }
    if (const auto *box = qobject_cast<const QComboBox *>(&widget)) {
        for (int i = 0; i < box->count(); ++i)
            texts += {box->itemText(i), box->itemData(i, Qt::ToolTipRole).toString()};
    }
    if (const auto *list = qobject_cast<const WayfoldOutlineView *>(&widget))
        texts += {list->placeholderText(), list->emptyListText()};
    texts.removeAll(QString());
    return texts;
}

QStringList textsOfMenu(QMenu *menu)
{
    QStringList texts;
    Q_EMIT menu->aboutToShow();
    for (const QAction *action : menu->actions()) {
        if (!action->isSeparator())
            texts.append(action->text());
    }
    Q_EMIT menu->aboutToHide();
    return texts;
}
} // namespace

// Walks through the drawer of a user whose desktop speaks German: no English is left over.
class DrawerTranslationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
        _stage.emplace();
        _window = _stage->openWindow(QRectF(100, 100, 800, 600), true);
        DrawerStage::drawer(*_window)->open();
    }
    void cleanup()
    {
        _window.reset();
        _stage.reset();
        QLocale::setDefault(QLocale::c());
    }

    void popupShowsItsTitleWhenItOpens();
    void everyTextOfTheDrawerIsGerman_data();
    void everyTextOfTheDrawerIsGerman();
    void menusAreGerman();
    void deleteItemHasNoEnglishPlural();
    void smartFoldersAreGerman();

private:
    KDRDrawerController *controller() const { return DrawerStage::controller(*_window); }
    KDRDrawer *drawer() const { return DrawerStage::drawer(*_window); }
    void verifyGerman(const QString &text, const QString &where) const
    {
        const bool isGerman = sameInBoth.contains(text) ||
                              std::any_of(_german.cbegin(), _german.cend(), [&](const QRegularExpression &pattern) {
                                  return pattern.match(text).hasMatch();
                              });
        QVERIFY2(isGerman, qPrintable(where + QStringLiteral(": ") + text));
    }

    const QList<QRegularExpression> _german = germanTexts();
    std::optional<DrawerStage> _stage;
    std::shared_ptr<FakeHostWindow> _window;
};

void DrawerTranslationTest::popupShowsItsTitleWhenItOpens()
{
    auto *popup = drawer()->findChild<WayfoldSitePopupButton *>();
    QCOMPARE(popup->currentText(), QStringLiteral("Websites"));
    QCOMPARE(controller()->currentScratchDrawerLabel(), QStringLiteral("Websites"));
    for (int i = 0; i < 2; ++i) {
        popup->showPopup();
        QCOMPARE(popup->itemTitles(), QStringList{QStringLiteral("Websites")});
        QCOMPARE(popup->currentText(), QStringLiteral("Websites"));
        QCOMPARE(popup->title(), QStringLiteral("Websites"));
        popup->hidePopup();
    }
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("example.com"), nullptr);
    popup->showPopup();
    QCOMPARE(popup->itemTitles(), QStringList({QStringLiteral("Websites"), QStringLiteral("example.com")}));
    QCOMPARE(popup->currentText(), QStringLiteral("example.com"));
    popup->hidePopup();
    popup->setCurrentIndex(0);
    Q_EMIT popup->siteChangeRequested();
    QVERIFY(controller()->isScratchDrawerShowingGlobalRoot());
}

void DrawerTranslationTest::everyTextOfTheDrawerIsGerman_data()
{
    QTest::addColumn<QString>("tab");
    QTest::addColumn<QString>("search");
    for (const char *search : {"", "zeppelin"}) {
        for (const char *tab : {"0", "1", "2"})
            QTest::addRow("tab %s, search \"%s\"", tab, search) << QString::fromLatin1(tab) << QString(search);
    }
}

void DrawerTranslationTest::everyTextOfTheDrawerIsGerman()
{
    QFETCH(QString, tab);
    QFETCH(QString, search);
    QVERIFY(_german.size() > 80);
    controller()->tabView()->selectTabWithIdentifier(tab);
    for (auto *field : drawer()->findChildren<QLineEdit *>())
        field->setText(search);
    QList<QWidget *> widgets = drawer()->findChildren<QWidget *>();
    widgets.append(drawer());
    int texts = 0;
    for (const QWidget *widget : std::as_const(widgets)) {
        if (qobject_cast<QTabBar *>(widget->parentWidget()))
            continue; // the toolkit's own, which speaks for itself
        for (const QString &text : textsOf(*widget)) {
            ++texts;
            verifyGerman(text, widget->objectName());
            if (QTest::currentTestFailed())
                return;
        }
    }
    QVERIFY(texts > 40);
}

// With nothing, one item and several selected.
void DrawerTranslationTest::menusAreGerman()
{
    const WayfoldBookmarkFolderPtr root = DrawerStage::store().bookmarkRoot();
    root->addChild(DrawerStage::link(QStringLiteral("A")));
    root->addChild(DrawerStage::link(QStringLiteral("B")));
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    WayfoldScratchOutlineView *list = controller()->scratchOutlineView();
    for (int selected = 0; selected < 3; ++selected) {
        if (selected > 0)
            list->selectRow(selected - 1);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
        QMenu *menu = list->menuForEvent(&event);
        for (const QString &text : textsOfMenu(menu) + textsOfMenu(DrawerStage::store().wayfoldMenu())) {
            verifyGerman(text, QStringLiteral("menu"));
            if (QTest::currentTestFailed())
                return;
        }
    }
}

void DrawerTranslationTest::deleteItemHasNoEnglishPlural()
{
    const WayfoldBookmarkFolderPtr root = DrawerStage::store().bookmarkRoot();
    root->addChild(DrawerStage::link(QStringLiteral("A")));
    root->addChild(DrawerStage::link(QStringLiteral("B")));
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    WayfoldScratchOutlineView *list = controller()->scratchOutlineView();
    list->selectRow(0);
    list->selectRow(1);
    QAction item;
    MenuItem::setAction(&item, QStringLiteral("handleDeleteItemRequest:"));
    DrawerStage::settings().setConfirmItemDelete(true);
    QVERIFY(list->validateMenuItem(&item));
    QCOMPARE(item.text(), QStringLiteral("L\u00f6schen..."));
    DrawerStage::settings().setConfirmItemDelete(false);
    QVERIFY(list->validateMenuItem(&item));
    QCOMPARE(item.text(), QStringLiteral("L\u00f6schen"));
}

void DrawerTranslationTest::smartFoldersAreGerman()
{
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("example.com"), nullptr);
    QVERIFY(!controller()->scratchOutlineView()->emptyListText().isEmpty());
    verifyGerman(controller()->scratchOutlineView()->emptyListText(), QStringLiteral("empty list of a site"));
    const QStringList rows = DrawerStage::rows(*controller()->scratchOutlineView());
    QCOMPARE(rows.size(), 2);
    for (const QString &row : rows)
        verifyGerman(row, QStringLiteral("smart folder"));
}

QTEST_MAIN(DrawerTranslationTest)
#include "DrawerTranslationTest.moc"
