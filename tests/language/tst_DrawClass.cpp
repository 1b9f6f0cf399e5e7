#include "TestEnv.h"

#include "language/BufferLexer.h"
#include "language/DrawClass.h"
#include "language/ISourceLex4.h"
#include "language/LexClass.h"
#include "language/LineNumberGutter.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "language/TokenStyleTable.h"
#include "settings/Moriox.h"
#include "settings/modColors.h"

#include <QImage>
#include <QPainter>
#include <functional>

namespace {

const QColor kGutter(0xC0, 0xFF, 0xC0);
const int32_t kGutterValue = modColors::FromQColor(kGutter);

// Pixels in a rectangle of the image that pass `test`.
int countPixels(const QImage& image, const QRect& rect,
                const std::function<bool(const QColor&)>& test) {
    int count = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            count += test(image.pixelColor(x, y)) ? 1 : 0;
    return count;
}
// Pixels that differ from `background`, and pixels of `color`.
int inkIn(const QImage& image, const QRect& rect, const QColor& background) {
    return countPixels(image, rect, [&](const QColor& c) { return c.rgb() != background.rgb(); });
}
int pixelsOf(const QImage& image, const QRect& rect, const QColor& color) {
    return countPixels(image, rect, [&](const QColor& c) { return c.rgb() == color.rgb(); });
}

} // namespace

class tst_DrawClass : public QObject {
    Q_OBJECT
    std::unique_ptr<SourceView> view;

private Q_SLOTS:
    void init() {
        view = std::make_unique<SourceView>();
        view->resize(500, 300);
    }
    void cleanup() { view.reset(); }

    void lineNumberText_data() {
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("digits");
        QTest::addColumn<int>("wrapRow");
        QTest::addColumn<bool>("lineWrap");
        QTest::addColumn<QString>("text");
        QTest::newRow("wider number") << 123455 << 5 << 0 << false << "23456";
        QTest::newRow("width 1 is 3") << 6 << 1 << 0 << false << "007";
        QTest::newRow("wrapped row") << 4 << 5 << 1 << true << "     ";
        QTest::newRow("row index without wrap") << 4 << 5 << 2 << false << "00005";
    }
    void lineNumberText() {
        QFETCH(int, line);
        QFETCH(int, digits);
        QFETCH(int, wrapRow);
        QFETCH(bool, lineWrap);
        QFETCH(QString, text);
        QCOMPARE(DrawClass::LineNumberText(line, digits, wrapRow, lineWrap), text);
    }

    // One row drawn by hand: the number's cell, and the separator in the text's colour of
    // paper at the gutter's last pixel column.
    void preDrawLine_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("textX");
        QTest::addColumn<int>("cellX");
        QTest::newRow("left edge") << 1 << 20 << 0;
        QTest::newRow("text position") << 2 << 20 << 20;
    }
    void preDrawLine() {
        QFETCH(int, mode);
        QFETCH(int, textX);
        QFETCH(int, cellX);
        LineNumberGutter& gutter = view->Gutter();
        gutter.SetMode(static_cast<int16_t>(mode));
        gutter.SetDigits(4);
        gutter.SetGutterColor(kGutterValue);
        DrawClass draw(*view);
        QImage image(200, 40, QImage::Format_RGB32);
        image.fill(Qt::black);
        {
            QPainter painter(&image);
            SourceDrawLine record;
            record.Painter = &painter;
            record.CharWidth = 8;
            record.LineHeight = 16;
            record.TextX = textX;
            record.LineY = 10;
            record.Line = 0;
            draw.ISourceDraw2_PreDrawLine(record);
        }
        const QColor back = gutter.TextBackColor();
        // The number's cell: four digits of eight pixels, in the gutter colour with ink.
        const QRect cell(cellX, 10, 8 * 4 - 1, 16);
        QVERIFY(pixelsOf(image, cell, kGutter) > 0 && inkIn(image, cell, kGutter) > 0);
        QCOMPARE(image.pixelColor(8 * 4 - 1, 12).rgb(), back.rgb());
    }

    // The view on screen: numbers in grey on the gutter, none below the last line or on
    // a wrapped row, and a keyword in the colour of the style it was given.
    void rendersGutterAndColours() {
        Moriox settings;
        settings.ReservedColor = 0x000000FF; // red
        settings.NormalColor = 0x00000000;
        settings.BackColor = 0x00FFFFFF;
        const TokenStyleTable table = TokenStyleTable::ForScreen(settings);
        table.ApplyTo(*view, view->Lexer().defaultFont(), settings.BackColor);

        view->Buffer().SetLex(std::make_shared<LexClass>());
        view->Gutter().SetDrawHook(std::make_shared<DrawClass>(*view));
        view->Gutter().SetGutterColor(kGutterValue);
        view->SetLineWrap(true);
        const QString longLine = QStringLiteral("X = ") + QString(300, QLatin1Char('A'));
        view->Buffer().SetAllText(QStringLiteral("IF X THEN\n* note\n") + longLine);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        QCoreApplication::processEvents();

        const QImage image = view->grab().toImage();
        const int frame = view->frameWidth();
        const int room = view->Gutter().Room();
        const int height =
            static_cast<int>(view->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0));
        const int port = view->viewport()->x();
        auto row = [&](int r) { return QRect(frame, frame + r * height, room - 1, height); };

        // Line 1's number on the gutter colour; the long line's second row has none.
        QVERIFY(pixelsOf(image, row(0), kGutter) > 0 && inkIn(image, row(0), kGutter) > 0);
        QCOMPARE(inkIn(image, row(3), kGutter), 0);

        // "IF" shows in red, and the comment line has no red at all.
        const int ifWidth =
            static_cast<int>(view->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0, 2L));
        const QRect ifRect(port, frame, ifWidth + 2, height);
        QVERIFY(pixelsOf(image, ifRect, Qt::red) > 0);
        QCOMPARE(pixelsOf(image, QRect(port, frame + height, 200, height), Qt::red), 0);
    }

    // A click in the gutter names the line of that row.
    void pressNamesTheLine() {
        view->Buffer().SetAllText(QStringLiteral("a\nb\nc\nd"));
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        QSignalSpy spy(&view->Gutter(), &LineNumberGutter::LinePressed);
        const int height =
            static_cast<int>(view->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0));
        QTest::mousePress(&view->Gutter(), Qt::LeftButton, {}, QPoint(2, height * 2 + 1));
        QCOMPARE(spy.value(0).value(0).toInt(), 2);
    }
};

BRIX_TEST_MAIN(tst_DrawClass)
#include "tst_DrawClass.moc"
