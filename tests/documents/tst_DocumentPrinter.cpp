#include "DocumentSession.h"
#include "FileTestSupport.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/DocumentPrinter.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourcePrinter.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

#include <QImage>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

// Documents printed to PDF and read back: headers, line numbers, wrapping, colours.
class tst_DocumentPrinter : public QObject {
    Q_OBJECT
    DocumentSession session;
    QTemporaryDir out;
    std::shared_ptr<mvDocument> doc;

    static QStringList numbered(int count, const QString& text) {
        QStringList lines;
        for (int i = 1; i <= count; ++i)
            lines << text.arg(i);
        return lines;
    }
    QString pdfPath() const { return out.filePath(u"out.pdf"_s); }

    // The pages of the PDF as pdftotext lays them out.
    QStringList pages(const QString& pdf) {
        QProcess p;
        p.start(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
        if (!p.waitForFinished(120000) || p.exitCode() != 0)
            return {};
        QStringList result = QString::fromUtf8(p.readAllStandardOutput()).split(QLatin1Char('\f'));
        while (!result.isEmpty() && result.last().trimmed().isEmpty())
            result.removeLast();
        return result;
    }
    QStringList print(SourcePrinter* printer = nullptr) {
        const bool printed = printer ? DocumentPrinter::Print(*doc, *printer)
                                     : DocumentPrinter::PrintToPdf(*doc, pdfPath());
        return printed ? pages(pdfPath()) : QStringList();
    }
    // The numbered rows of all pages: number and the rest of the row.
    static QList<QPair<QString, QString>> rows(const QStringList& pages) {
        // Layout may widen the two blanks of the prefix.
        static const QRegularExpression row(u"^\\s*(\\d{4,})\\s\\s(.*)$"_s);
        QList<QPair<QString, QString>> result;
        for (const QString& page : pages)
            for (const QString& line : page.split(QLatin1Char('\n')))
                if (const auto m = row.match(line); m.hasMatch())
                    result << qMakePair(m.captured(1), m.captured(2).trimmed());
        return result;
    }

private Q_SLOTS:
    void initTestCase() { session.StartCase(); }
    void cleanupTestCase() { session.EndCase(); }
    void init() {
        session.StartTest();
        Settings().LineWrap = false;
        Settings().ColorPrinting = false;
        doc = mvDocument::Create();
        QVERIFY(doc->FileNew());
    }
    void cleanup() {
        doc->FileClose(false);
        doc.reset();
        session.EndTest(true);
    }

    void numbersAndHeaders_data() {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("firstNumber");
        QTest::addColumn<QString>("lastNumber");
        QTest::newRow("12 lines") << 12 << "0001"
                                  << "0012";
        QTest::newRow("12345 lines") << 12345 << "00001"
                                     << "12345";
    }
    void numbersAndHeaders() {
        QFETCH(int, count);
        QFETCH(QString, firstNumber);
        QFETCH(QString, lastNumber);
        doc->SetText(numbered(count, u"X = %1"_s).join(u"\r\n"_s));
        const QStringList printed = print();
        const auto numberedRows = rows(printed);
        QCOMPARE(numberedRows.size(), count);
        QCOMPARE(numberedRows.first().first + numberedRows.last().first, firstNumber + lastNumber);
        for (int i = 0; i < count; ++i)
            QCOMPARE(numberedRows[i].second, u"X = %1"_s.arg(i + 1));
        const QString date = QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat);
        for (int page = 0; page < printed.size(); ++page) {
            const QString head = printed[page].trimmed().section(QLatin1Char('\n'), 0, 0);
            QVERIFY2(head.startsWith(u"Page %1 "_s.arg(page + 1)) &&
                         head.contains(u"File: (untitled)"_s) && head.endsWith(date),
                     qPrintable(head));
        }
    }

    // Wrapped rows carry no number and start where the line's text starts.
    void wrapping() {
        Settings().LineWrap = true;
        doc->EnsureView();
        doc->Editor()->SetLineWrap(true);
        doc->SetText(u"FIRST\r\n"_s + numbered(60, u"w%1"_s).join(' ') + u"\r\nLAST"_s);
        const QStringList printed = print();
        QVERIFY(!printed.isEmpty());
        const QStringList lines = printed.first().split(QLatin1Char('\n'));
        const int numberRow = lines.indexOf(QRegularExpression(u"^\\s*0002\\s+w1 .*"_s));
        QVERIFY(numberRow > 0);
        QVERIFY(printed.join(' ').contains(u"w60"_s));
        const int textColumn = lines[numberRow].indexOf(u"w1 "_s);
        const QString next = lines[numberRow + 1];
        QVERIFY2(qAbs(next.indexOf('w') - textColumn) <= 1,
                 qPrintable(lines[numberRow] + '\n' + next));
        QCOMPARE(rows(printed).size(), 3);
    }

    // A selection prints exactly its lines: Scintilla's range printing would add one.
    void selectionPrintsItsLines() {
        const int first = 9, last = 11;
        doc->SetText(numbered(12, u"L%1"_s).join(u"\r\n"_s));
        doc->Editor()->SetSelection(0, first, 2, last);
        SourcePrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdfPath());
        printer.setPrintRange(QPrinter::Selection);
        QStringList numbers;
        for (const auto& row : rows(print(&printer)))
            numbers << row.first;
        QStringList expected;
        for (int line = first; line <= last; ++line)
            expected << u"%1"_s.arg(line + 1, 4, 10, QLatin1Char('0'));
        QCOMPARE(numbers, expected);
    }

    // Keywords at the end of a long program, whose colours wait until shown, print in
    // colour only with ColorPrinting; the text is there either way.
    void colourOfTheText_data() {
        QTest::addColumn<bool>("color");
        QTest::newRow("colour") << true;
        QTest::newRow("black") << false;
    }
    void colourOfTheText() {
        QFETCH(bool, color);
        Settings().ColorPrinting = color;
        QStringList lines = numbered(ScintillaBuffer::LazyStyleLines + 500, u"* %1"_s);
        lines << numbered(20, u"PRINT \"TEXT %1\""_s);
        doc->SetText(lines.join(u"\r\n"_s));
        const QStringList printed = print();
        QVERIFY(printed.last().contains(u"PRINT \"TEXT 20\""_s));
        QProcess p;
        const QString png = out.filePath(u"last"_s);
        const QString page = QString::number(printed.size());
        p.start(u"pdftoppm"_s,
                {u"-png"_s, u"-r"_s, "60", "-f", page, "-l", page, "-singlefile", pdfPath(), png});
        QVERIFY(p.waitForFinished(60000) && p.exitCode() == 0);
        const QImage image(png + u".png"_s);
        QVERIFY(!image.isNull());
        int coloured = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                coloured += image.pixelColor(x, y).hsvSaturation() > 80 ? 1 : 0;
        QCOMPARE(coloured > 0, color);
    }
};

BRIX_TEST_MAIN(tst_DocumentPrinter)
#include "tst_DocumentPrinter.moc"
