#include "drawer/WayfoldBookmarkTextCell.h"

#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "platform/widgets/Image.h"
#include "tests/drawer/DrawerStage.h"
#include "tests/support/LoggedMessages.h"

#include <QLineEdit>
#include <QPainter>
#include <QStyleOptionViewItem>

namespace
{
std::shared_ptr<Image> square(const QColor &colour, int side = 32)
{
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(colour);
    return Image::imageWithPicture(picture);
}

// Where that colour is.
QRect areaOf(const QColor &colour, const QImage &image)
{
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == colour)
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}
} // namespace

class WayfoldBookmarkTextCellTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void menuIsThePluginsOwn();
    void imageIsNoneWhileIconsAreOff();
    void imageIsScaledFromThenOn();
    void settingTheSameImageTwiceKeepsIt();
    void letsGoOfItsImage();
    void copiesShareTheImage();
    void cellIsWiderByTheSlot();
    void dividesTheRectangle_data();
    void dividesTheRectangle();
    void imageFrameForCellFrame_data();
    void imageFrameForCellFrame();
    void imageFrameIsLoggedEveryTime();

    void drawsAnIconAsTallAsTheRow();
    void drawsTheTextBehindTheIcon();
    void drawsTheTextAloneWithoutAnIcon();
    void drawsTheLastSettingWithoutTouchingTheCell();
    void drawsBackgroundUnderIconAndText();
    void drawsMirroredFromRightToLeft();
    void drawsADisabledIconPale();
    void drawsOnWholePointsInAnUnevenRow();
    void editorOpensRightOfTheIcon();
    void editorOpensLeftOfTheIconFromRightToLeft();
    void listsLoseTheirIconsAtOnce();
    void titlesStandBelowEachOther_data();
    void titlesStandBelowEachOther();

private:
    static WayfoldDefaults &settings() { return WayfoldDefaults::sharedInstance(); }
    QImage drawn(const TextFieldCell &cell, const QRectF &frame = QRectF(40, 10, 150, 16)) const
    {
        QImage image(200, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        cell.drawWithFrameInView(frame, painter, _view);
        return image;
    }

    std::optional<DrawerStage> _stage;
    std::unique_ptr<WayfoldBookmarkTextCell> _cell;
    std::shared_ptr<Image> _red;
    QStyleOptionViewItem _view;
};

void WayfoldBookmarkTextCellTest::init()
{
    _stage.emplace();
    _cell = std::make_unique<WayfoldBookmarkTextCell>();
    _cell->setStringValue(QStringLiteral("HHHH"));
    _red = square(Qt::red);
    _view = QStyleOptionViewItem();
    _view.state = QStyle::State_Enabled | QStyle::State_Active;
    _view.direction = Qt::LeftToRight;
    _view.palette.setColor(QPalette::Text, Qt::black);
}

void WayfoldBookmarkTextCellTest::cleanup()
{
    _cell.reset();
    _red.reset();
    _stage.reset();
}

void WayfoldBookmarkTextCellTest::menuIsThePluginsOwn()
{
    QVERIFY(WayfoldBookmarkTextCell::defaultMenu());
    QCOMPARE(WayfoldBookmarkTextCell::defaultMenu(), DrawerStage::store().menu());
}

void WayfoldBookmarkTextCellTest::imageIsNoneWhileIconsAreOff()
{
    QVERIFY(!_cell->image());
    _cell->setImage(_red);
    QCOMPARE(_cell->image(), _red);
    settings().setShowBookmarkIcons(false);
    QVERIFY(!_cell->image());
    settings().setShowBookmarkIcons(true);
    QCOMPARE(_cell->image(), _red);
    _cell->setImage(nullptr);
    QVERIFY(!_cell->image());
}

void WayfoldBookmarkTextCellTest::imageIsScaledFromThenOn()
{
    QVERIFY(!_red->scalesWhenResized());
    _cell->setImage(_red);
    QVERIFY(_red->scalesWhenResized());
    QCOMPARE(_red->size(), QSizeF(32, 32)); // until it is drawn
}

void WayfoldBookmarkTextCellTest::settingTheSameImageTwiceKeepsIt()
{
    _cell->setImage(_red);
    _red->setScalesWhenResized(false);
    _cell->setImage(_red);
    QVERIFY(!_red->scalesWhenResized()); // nothing was done
    QCOMPARE(_cell->image(), _red);
    const std::weak_ptr<Image> watched = _red;
    _red.reset();
    _cell->setImage(_cell->image());
    QVERIFY(!watched.expired());
}

void WayfoldBookmarkTextCellTest::letsGoOfItsImage()
{
    const std::weak_ptr<Image> watched = _red;
    _cell->setImage(std::exchange(_red, nullptr));
    _cell->setImage(square(Qt::blue));
    QVERIFY(watched.expired());
    const std::weak_ptr<Image> last = _cell->image();
    _cell.reset();
    QVERIFY(last.expired());
}

void WayfoldBookmarkTextCellTest::copiesShareTheImage()
{
    _cell->setImage(_red);
    const std::unique_ptr<TextFieldCell> copy = _cell->copy();
    QCOMPARE(copy->image(), _red);
    QCOMPARE(copy->stringValue(), QStringLiteral("HHHH"));
    copy->setImage(square(Qt::blue));
    QCOMPARE(_cell->image(), _red);
    _cell.reset();
    QVERIFY(copy->image());
    QVERIFY(copy->cellSize().width() > copy->TextFieldCell::cellSize().width()); // a cell with a slot too
}

void WayfoldBookmarkTextCellTest::cellIsWiderByTheSlot()
{
    TextFieldCell plain;
    plain.setStringValue(QStringLiteral("HHHH"));
    QCOMPARE(_cell->cellSize(), plain.cellSize());
    _cell->setImage(_red);
    QCOMPARE(_cell->cellSize(), plain.cellSize() + QSizeF(35, 0));
    _red->setSize(QSizeF(16, 20));
    QCOMPARE(_cell->cellSize(), plain.cellSize() + QSizeF(19, 0));
    settings().setShowBookmarkIcons(false);
    QCOMPARE(_cell->cellSize(), plain.cellSize());
}

void WayfoldBookmarkTextCellTest::dividesTheRectangle_data()
{
    QTest::addColumn<bool>("hasImage");
    QTest::addColumn<bool>("iconsAreOn");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<QRectF>("imageFrame");
    QTest::addColumn<QRectF>("textFrame");
    const QRectF rect(40, 32, 150, 16);
    QTest::newRow("icon") << true << true << rect << QRectF(40, 32, 19, 16) << QRectF(59, 32, 131, 16);
    QTest::newRow("no image") << false << true << rect << QRectF() << rect;
    QTest::newRow("icons off") << true << false << rect << QRectF() << rect;
    QTest::newRow("no room for text") << true << true << QRectF(40, 32, 10, 16) << QRectF(40, 32, 10, 16)
                                      << QRectF(50, 32, 0, 16);
}

void WayfoldBookmarkTextCellTest::dividesTheRectangle()
{
    QFETCH(bool, hasImage);
    QFETCH(bool, iconsAreOn);
    QFETCH(QRectF, rect);
    if (hasImage)
        _cell->setImage(_red);
    _red->setSize(QSizeF(16, 16));
    settings().setShowBookmarkIcons(iconsAreOn);
    QRectF imageFrame(1, 2, 3, 4);
    QRectF textFrame;
    _cell->divideRectIntoImageFrameAndTextFrame(rect, imageFrame, textFrame);
    QTEST(imageFrame, "imageFrame");
    QTEST(textFrame, "textFrame");
    QTEST(_cell->computeTextFrame(rect), "textFrame");
}

void WayfoldBookmarkTextCellTest::imageFrameForCellFrame_data()
{
    QTest::addColumn<bool>("iconsAreOn");
    QTest::addColumn<QSizeF>("size");
    QTest::addColumn<QRectF>("expected");
    QTest::newRow("as tall as the cell") << true << QSizeF(16, 16) << QRectF(43, 32, 16, 16);
    QTest::newRow("smaller") << true << QSizeF(10, 12) << QRectF(43, 34, 10, 12);
    QTest::newRow("half a point goes down") << true << QSizeF(10, 11) << QRectF(43, 35, 10, 11);
    QTest::newRow("taller") << true << QSizeF(20, 21) << QRectF(43, 30, 20, 21);
    QTest::newRow("icons off") << false << QSizeF(16, 16) << QRectF();
}

void WayfoldBookmarkTextCellTest::imageFrameForCellFrame()
{
    QFETCH(bool, iconsAreOn);
    QFETCH(QSizeF, size);
    const LoggedMessages log;
    settings().setShowBookmarkIcons(iconsAreOn);
    _cell->setImage(_red);
    _red->setSize(size);
    QTEST(_cell->imageFrameForCellFrame(QRectF(40, 32, 150, 16)), "expected");
}

void WayfoldBookmarkTextCellTest::imageFrameIsLoggedEveryTime()
{
    const LoggedMessages log;
    const QString text = QStringLiteral("imageFrameForCellFrame was actually called");
    QCOMPARE(_cell->imageFrameForCellFrame(QRectF(40, 32, 150, 16)), QRectF());
    QCOMPARE(log.texts(), QStringList{text});
    settings().setShowBookmarkIcons(false);
    _cell->setImage(_red);
    _cell->imageFrameForCellFrame(QRectF(40, 32, 150, 16));
    QCOMPARE(log.texts(), QStringList({text, text}));
}

// --- Drawing and editing --------------------------------------------------------------------------------------------

void WayfoldBookmarkTextCellTest::drawsAnIconAsTallAsTheRow()
{
    _cell->setImage(_red);
    const QImage image = drawn(*_cell);
    QCOMPARE(areaOf(Qt::red, image), QRect(43, 10, 16, 16));
    QCOMPARE(_red->size(), QSizeF(16, 16));
}

// The same as a plain cell draws in what is left for it.
void WayfoldBookmarkTextCellTest::drawsTheTextBehindTheIcon()
{
    _cell->setImage(_red);
    _view.state |= QStyle::State_HasFocus;
    TextFieldCell plain;
    plain.setStringValue(QStringLiteral("HHHH"));
    const QRect text(59, 0, 141, 40);
    QCOMPARE(drawn(*_cell).copy(text), drawn(plain, QRectF(59, 10, 131, 16)).copy(text));
}

void WayfoldBookmarkTextCellTest::drawsTheTextAloneWithoutAnIcon()
{
    TextFieldCell plain;
    plain.setStringValue(QStringLiteral("HHHH"));
    QCOMPARE(drawn(*_cell), drawn(plain));
    _cell->setImage(_red);
    settings().setShowBookmarkIcons(false);
    QCOMPARE(drawn(*_cell), drawn(plain));
    QCOMPARE(_red->size(), QSizeF(32, 32));
}

void WayfoldBookmarkTextCellTest::drawsTheLastSettingWithoutTouchingTheCell()
{
    _cell->setImage(_red);
    const QImage with = drawn(*_cell);
    settings().setShowBookmarkIcons(false);
    QVERIFY(drawn(*_cell) != with);
    settings().setShowBookmarkIcons(true);
    QCOMPARE(drawn(*_cell), with);
}

void WayfoldBookmarkTextCellTest::drawsBackgroundUnderIconAndText()
{
    QImage frame(32, 32, QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::transparent); // what is under it shows
    _cell->setImage(Image::imageWithPicture(frame));
    _cell->setStringValue(QString());
    _cell->setBackgroundColor(Qt::yellow);
    QVERIFY(areaOf(Qt::yellow, drawn(*_cell)).isEmpty());
    _cell->setDrawsBackground(true);
    const QImage image = drawn(*_cell);
    QCOMPARE(areaOf(Qt::yellow, image), QRect(40, 10, 150, 16));
    for (const int x : {40, 43, 58, 59, 189})
        QCOMPARE(image.pixelColor(x, 15), QColor(Qt::yellow));
}

void WayfoldBookmarkTextCellTest::drawsMirroredFromRightToLeft()
{
    _view.direction = Qt::RightToLeft;
    _cell->setImage(_red);
    _cell->setStringValue(QString());
    _cell->setDrawsBackground(true);
    _cell->setBackgroundColor(Qt::yellow);
    const QImage image = drawn(*_cell);
    QCOMPARE(areaOf(Qt::red, image), QRect(171, 10, 16, 16)); // 3 from the right end
    QCOMPARE(areaOf(Qt::yellow, image), QRect(40, 10, 150, 16));
    QCOMPARE(image.pixelColor(188, 15), QColor(Qt::yellow));
}

void WayfoldBookmarkTextCellTest::drawsADisabledIconPale()
{
    _cell->setImage(_red);
    _view.state.setFlag(QStyle::State_Enabled, false);
    const QColor pixel = drawn(*_cell).pixelColor(50, 15);
    QVERIFY(pixel != QColor(Qt::red) && pixel != QColor(Qt::white));
}

void WayfoldBookmarkTextCellTest::drawsOnWholePointsInAnUnevenRow()
{
    _cell->setImage(_red);
    _cell->setStringValue(QString());
    const QRect area = areaOf(Qt::red, drawn(*_cell, QRectF(40, 10, 150, 15.5)));
    QCOMPARE(area.bottom(), 25);
    QCOMPARE(_red->size(), QSizeF(15.5, 15.5));
}

void WayfoldBookmarkTextCellTest::editorOpensRightOfTheIcon()
{
    QWidget list;
    list.show();
    auto *editor = new QLineEdit;
    const QRectF cell(0, 32, 150, 16);
    const auto edit = [&] {
        _cell->editWithFrameInViewEditorDelegateEvent(cell, list, *editor, nullptr, nullptr);
        return editor->geometry();
    };
    const auto select = [&] {
        _cell->selectWithFrameInViewEditorDelegateStartLength(cell, list, *editor, nullptr, 1, 2);
        return editor->geometry();
    };
    _cell->setImage(_red);
    _red->setSize(QSizeF(16, 16));
    QCOMPARE(edit(), QRect(19, 32, 131, 16));
    settings().setShowBookmarkIcons(false);
    QCOMPARE(edit(), cell.toRect());
    QCOMPARE(select(), cell.toRect());
    settings().setShowBookmarkIcons(true);
    QCOMPARE(select(), QRect(19, 32, 131, 16));
    QCOMPARE(editor->text(), QStringLiteral("HHHH"));
    QCOMPARE(editor->selectedText(), QStringLiteral("HH"));
}

// Where the icon and the text are drawn.
void WayfoldBookmarkTextCellTest::editorOpensLeftOfTheIconFromRightToLeft()
{
    QWidget list;
    list.setLayoutDirection(Qt::RightToLeft);
    list.show();
    auto *editor = new QLineEdit;
    _cell->setImage(_red);
    _red->setSize(QSizeF(16, 16));
    const QRectF cell(10, 32, 150, 16);
    _cell->editWithFrameInViewEditorDelegateEvent(cell, list, *editor, nullptr, nullptr);
    QCOMPARE(editor->geometry(), QRect(10, 32, 131, 16));
    editor->setGeometry(0, 0, 1, 1);
    _cell->selectWithFrameInViewEditorDelegateStartLength(cell, list, *editor, nullptr, 1, 2);
    QCOMPARE(editor->geometry(), QRect(10, 32, 131, 16));
}

// Of every kind: links, which have none then anyway, and what keeps its icon once it is loaded.
void WayfoldBookmarkTextCellTest::listsLoseTheirIconsAtOnce()
{
    const std::shared_ptr<FakeHostWindow> window = _stage->openWindow(QRectF(100, 100, 800, 600), true);
    const KDRDrawerController *controller = DrawerStage::controller(*window);
    const WayfoldBookmarkFolderPtr tree = DrawerStage::store().bookmarkRoot();
    tree->addChild(WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("Folder")));
    tree->addChild(DrawerStage::note(QStringLiteral("Note")));
    tree->addChild(DrawerStage::link(QStringLiteral("Mail"), QStringLiteral("mailto:ann")));
    WayfoldOutlineViewDataSource *const source = controller->scratchDataSource();
    for (WayfoldOutlineView *list : std::initializer_list<WayfoldOutlineView *>{
             controller->scratchOutlineView(), controller->bookmarkOutlineView(), controller->historyOutlineView()}) {
        list->setOutlineDataSource(source); // all with the same rows
        list->reloadData();
        list->setStyleSheet(QStringLiteral("QTreeView { color: white; background: white }")); // so that icons are left
        QCOMPARE(list->numberOfRows(), 3);
        const auto iconOf = [list](int row) {
            const QRect rect = list->visualRect(list->model()->index(row, 0));
            const QImage shot = list->viewport()->grab(rect).toImage();
            QRect ink;
            for (int y = 0; y < shot.height(); ++y) {
                for (int x = 0; x < shot.width(); ++x) {
                    if (shot.pixelColor(x, y) != QColor(Qt::white))
                        ink |= QRect(x, y, 1, 1);
                }
            }
            return ink;
        };
        for (int row = 0; row < 3; ++row) {
            settings().setShowBookmarkIcons(true);
            QVERIFY2(!iconOf(row).isEmpty(), qPrintable(list->objectName()));
            settings().setShowBookmarkIcons(false);
            QVERIFY2(iconOf(row).isEmpty(), qPrintable(list->objectName()));
        }
        list->setOutlineDataSource(nullptr);
    }
}

void WayfoldBookmarkTextCellTest::titlesStandBelowEachOther_data()
{
    QTest::addColumn<bool>("icons");
    QTest::addColumn<bool>("siteIcons");
    QTest::newRow("with site icons") << true << true;
    QTest::newRow("without site icons") << true << false;
    QTest::newRow("without icons") << false << true;
}

// A link too whose site has no icon, in a host that has none for all links either.
void WayfoldBookmarkTextCellTest::titlesStandBelowEachOther()
{
    QFETCH(bool, icons);
    QFETCH(bool, siteIcons);
    settings().setShowBookmarkIcons(icons);
    settings().setShowFavicons(siteIcons);
    const std::shared_ptr<FakeHostWindow> window = _stage->openWindow(QRectF(100, 100, 800, 600), true);
    struct Cell : WayfoldBookmarkTextCell
    {
        QList<qreal> &lefts;
        explicit Cell(QList<qreal> &list) : lefts(list) {}
        void drawWithFrameInView(const QRectF &frame, QPainter &painter,
                                 const QStyleOptionViewItem &view) const override
        {
            WayfoldBookmarkTextCell::drawWithFrameInView(frame, painter, view);
            lefts.append(computeTextFrame(frame).left());
        }
    };
    QList<qreal> lefts;
    WayfoldScratchOutlineView *list = DrawerStage::controller(*window)->scratchOutlineView();
    list->setDataCell(std::make_unique<Cell>(lefts));
    const WayfoldBookmarkFolderPtr tree = DrawerStage::store().bookmarkRoot();
    tree->addChild(WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("Folder")));
    tree->addChild(DrawerStage::note(QStringLiteral("Note")));
    tree->addChild(DrawerStage::link(QStringLiteral("Link")));
    list->reloadData();
    lefts.clear();
    list->grab();
    QCOMPARE(lefts.size(), 3);
    QCOMPARE(lefts, QList<qreal>(3, lefts.constFirst()));
}

QTEST_MAIN(WayfoldBookmarkTextCellTest)
#include "WayfoldBookmarkTextCellTest.moc"
