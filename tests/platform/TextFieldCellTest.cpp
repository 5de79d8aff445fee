#include "platform/widgets/TextFieldCell.h"

#include "platform/widgets/Image.h"

#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionViewItem>
#include <QtTest>

namespace
{
// Swallows what it filters and remembers the kinds of event.
class Filter : public QObject
{
public:
    QSet<QEvent::Type> seen;
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        seen.insert(event->type());
        return false;
    }
};

QImage paper(const QSize &size = QSize(200, 40))
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    return image;
}

// Where anything but white is.
QRect inkOn(const QImage &image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::white))
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}
} // namespace

class TextFieldCellTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void takesNoImage();
    void sizeIsThatOfTheText();
    void drawsTextInItsFrame_data();
    void drawsTextInItsFrame();
    void drawsTextInTheColourOfTheState_data();
    void drawsTextInTheColourOfTheState();
    void cutsOffWhatDoesNotFit();
    void ellipsisFollowsTextFromRightToLeft();
    void drawsNothingWithoutRoom();
    void drawsTheBackgroundIfAsked();
    void drawsTheFocusInItsFrame();
    void copies();
    void editorStandsInTheFrame();
    void pressPutsTheCursor();
    void selectsSomeOfTheText();

private:
    QImage drawn(const QRectF &frame) const
    {
        QImage image = paper();
        QPainter painter(&image);
        _cell->drawWithFrameInView(frame, painter, _view);
        return image;
    }

    std::unique_ptr<TextFieldCell> _cell;
    QStyleOptionViewItem _view;
};

void TextFieldCellTest::init()
{
    _cell = std::make_unique<TextFieldCell>();
    _cell->setStringValue(QStringLiteral("HHHH"));
    _view = QStyleOptionViewItem();
    _view.state = QStyle::State_Enabled | QStyle::State_Active;
    _view.direction = Qt::LeftToRight;
    _view.palette.setColor(QPalette::Active, QPalette::Text, Qt::red);
    _view.palette.setColor(QPalette::Active, QPalette::HighlightedText, Qt::green);
    _view.palette.setColor(QPalette::Inactive, QPalette::Text, Qt::blue);
    _view.palette.setColor(QPalette::Disabled, QPalette::Text, Qt::cyan);
}

void TextFieldCellTest::takesNoImage()
{
    _cell->setImage(Image::imageWithPicture(paper()));
    QVERIFY(!_cell->image());
}

void TextFieldCellTest::sizeIsThatOfTheText()
{
    QFont font;
    font.setPointSize(30);
    _cell->setFont(font);
    const QFontMetricsF metrics(font);
    QCOMPARE(_cell->cellSize(), QSizeF(metrics.horizontalAdvance(QStringLiteral("HHHH")) + 4, metrics.height()));
}

void TextFieldCellTest::drawsTextInItsFrame_data()
{
    QTest::addColumn<bool>("isRightToLeft");
    QTest::newRow("left to right") << false;
    QTest::newRow("right to left") << true;
}

void TextFieldCellTest::drawsTextInItsFrame()
{
    QFETCH(bool, isRightToLeft);
    _view.direction = isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight;
    const QRect frame(50, 10, 100, 20);
    const QRect ink = inkOn(drawn(frame));
    QVERIFY(frame.contains(ink));
    QVERIFY(qAbs(ink.center().y() - frame.center().y()) <= 2);
    const int space = isRightToLeft ? frame.right() - ink.right() : ink.left() - frame.left();
    QVERIFY2(space >= 2 && space <= 5, qPrintable(QString::number(space)));
}

void TextFieldCellTest::drawsTextInTheColourOfTheState_data()
{
    QTest::addColumn<QStyle::State>("state");
    QTest::addColumn<QColor>("colour");
    const QStyle::State front = QStyle::State_Enabled | QStyle::State_Active;
    QTest::newRow("as it is") << front << QColor(Qt::red);
    QTest::newRow("selected") << (front | QStyle::State_Selected) << QColor(Qt::green);
    QTest::newRow("behind") << QStyle::State(QStyle::State_Enabled) << QColor(Qt::blue);
    QTest::newRow("disabled") << QStyle::State(QStyle::State_Active) << QColor(Qt::cyan);
}

void TextFieldCellTest::drawsTextInTheColourOfTheState()
{
    QFETCH(QStyle::State, state);
    QFETCH(QColor, colour);
    _view.state = state;
    QFont font;
    font.setPixelSize(30); // with strokes wider than a pixel
    font.setBold(true);
    _cell->setFont(font);
    const QImage image = drawn(QRectF(0, 0, 200, 40));
    int pixels = 0;
    for (int x = 0; x < image.width(); ++x)
        pixels += image.pixelColor(x, 20) == colour;
    QVERIFY(pixels > 3);
}

void TextFieldCellTest::cutsOffWhatDoesNotFit()
{
    _cell->setStringValue(QString(5000, u'H'));
    _view.textElideMode = Qt::ElideRight;
    const QRect frame(20, 0, 100, 20);
    const QImage image = drawn(frame);
    QVERIFY(frame.contains(inkOn(image)));
    // An ellipsis leaves the upper half of the frame's end free, a letter cut off would not.
    QVERIFY(inkOn(image.copy(frame.right() - 4, 0, 5, 10)).isEmpty());
    QVERIFY(!inkOn(image.copy(20, 0, 50, 10)).isEmpty());
}

// In a window that is read from left to right.
void TextFieldCellTest::ellipsisFollowsTextFromRightToLeft()
{
    _cell->setStringValue(QString(5000, QChar(0x05d3))); // a letter with its roof at the top
    _view.textElideMode = Qt::ElideRight;
    QImage image = paper();
    QPainter painter(&image);
    painter.setLayoutDirection(Qt::LeftToRight); // as that of a widget has it
    _cell->drawWithFrameInView(QRectF(20, 0, 100, 20), painter, _view);
    painter.end();
    const QRect ink = inkOn(image);
    QVERIFY(inkOn(image.copy(ink.left(), 0, 5, 10)).isEmpty());
    QVERIFY(!inkOn(image.copy(ink.right() - 4, 0, 5, 10)).isEmpty());
}

void TextFieldCellTest::drawsNothingWithoutRoom()
{
    QVERIFY(inkOn(drawn(QRectF(50, 10, 4, 20))).isEmpty());
    _cell->setStringValue(QString());
    QVERIFY(inkOn(drawn(QRectF(50, 10, 100, 20))).isEmpty());
}

void TextFieldCellTest::drawsTheBackgroundIfAsked()
{
    _cell->setStringValue(QString());
    _cell->setBackgroundColor(Qt::yellow);
    QVERIFY(inkOn(drawn(QRectF(50, 10, 100, 20))).isEmpty());
    _cell->setDrawsBackground(true);
    const QImage image = drawn(QRectF(50, 10, 100, 20));
    QCOMPARE(inkOn(image), QRect(50, 10, 100, 20));
    QCOMPARE(image.pixelColor(60, 15), QColor(Qt::yellow));
}

void TextFieldCellTest::drawsTheFocusInItsFrame()
{
    _cell->setStringValue(QString());
    QVERIFY(inkOn(drawn(QRectF(50, 10, 100, 20))).isEmpty());
    _view.state |= QStyle::State_HasFocus;
    const QRect ink = inkOn(drawn(QRectF(50, 10, 100, 20)));
    QVERIFY(QRect(50, 10, 100, 20).contains(ink));
    QVERIFY(ink.width() >= 98 && ink.height() >= 18);
}

void TextFieldCellTest::copies()
{
    QFont font;
    font.setPointSize(30);
    _cell->setFont(font);
    _cell->setDrawsBackground(true);
    _cell->setBackgroundColor(Qt::yellow);
    const std::unique_ptr<TextFieldCell> copy = _cell->copy();
    _cell->setStringValue(QStringLiteral("Another"));
    QCOMPARE(copy->stringValue(), QStringLiteral("HHHH"));
    QCOMPARE(copy->font(), font);
    QVERIFY(copy->drawsBackground());
    QCOMPARE(copy->backgroundColor(), QColor(Qt::yellow));
}

void TextFieldCellTest::editorStandsInTheFrame()
{
    QWidget list;
    list.show();
    auto *editor = new QLineEdit;
    QFont font;
    font.setPointSize(17);
    _cell->setFont(font);
    Filter filter;
    _cell->editWithFrameInViewEditorDelegateEvent(QRectF(20, 30, 100, 22), list, *editor, &filter, nullptr);
    QCOMPARE(editor->parentWidget(), &list);
    QCOMPARE(editor->geometry(), QRect(20, 30, 100, 22));
    QCOMPARE(editor->text(), QStringLiteral("HHHH"));
    QCOMPARE(editor->font().pointSize(), 17);
    QVERIFY(editor->isVisible());
    list.activateWindow();
    QTRY_VERIFY(editor->hasFocus());
    QTest::keyClick(editor, Qt::Key_A);
    QVERIFY(filter.seen.contains(QEvent::KeyPress));

    auto *lonely = new QLineEdit;
    _cell->editWithFrameInViewEditorDelegateEvent(QRectF(20, 60, 100, 22), list, *lonely, nullptr, nullptr);
    QVERIFY(lonely->isVisible());
}

void TextFieldCellTest::pressPutsTheCursor()
{
    QWidget list;
    list.show();
    auto *editor = new QLineEdit;
    const auto pressAt = [&](const QPointF &point) {
        const QMouseEvent press(QEvent::MouseButtonPress, point, point, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        _cell->editWithFrameInViewEditorDelegateEvent(QRectF(20, 30, 100, 22), list, *editor, nullptr, &press);
    };
    pressAt(QPointF(22, 40));
    QCOMPARE(editor->cursorPosition(), 0);
    pressAt(QPointF(115, 40));
    QCOMPARE(editor->cursorPosition(), 4);
    pressAt(QPointF(22, 40));
    const QMouseEvent move(QEvent::MouseMove, QPointF(115, 40), QPointF(115, 40), Qt::NoButton, Qt::LeftButton,
                           Qt::NoModifier);
    _cell->setStringValue(QStringLiteral("HH"));
    _cell->editWithFrameInViewEditorDelegateEvent(QRectF(60, 30, 60, 22), list, *editor, nullptr, &move);
    QCOMPARE(editor->text(), QStringLiteral("HH"));
    QCOMPARE(editor->cursorPosition(), 2); // where a new text leaves it
}

void TextFieldCellTest::selectsSomeOfTheText()
{
    QWidget list;
    list.show();
    auto *editor = new QLineEdit;
    _cell->setStringValue(QStringLiteral("Opening hours"));
    _cell->selectWithFrameInViewEditorDelegateStartLength(QRectF(20, 30, 100, 22), list, *editor, nullptr, 8, 5);
    QCOMPARE(editor->geometry(), QRect(20, 30, 100, 22));
    QCOMPARE(editor->selectedText(), QStringLiteral("hours"));
}

QTEST_MAIN(TextFieldCellTest)
#include "TextFieldCellTest.moc"
