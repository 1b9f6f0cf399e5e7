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
    QString pdfPath() const { return out.filePath(QStringLiteral("out.pdf")); }

    // The pages of the PDF as pdftotext lays them out.
    QStringList pages(const QString& pdf) {
        QProcess p;
        p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
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
        static const QRegularExpression row(QStringLiteral("^\\s*(\\d{4,})\\s\\s(.*)$"));
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
        doc->SetText(numbered(count, QStringLiteral("X = %1")).join(QStringLiteral("\r\n")));
        const QStringList printed = print();
        const auto numberedRows = rows(printed);
        QCOMPARE(numberedRows.size(), count);
        QCOMPARE(numberedRows.first().first, firstNumber);
        QCOMPARE(numberedRows.last().first, lastNumber);
        for (int i = 0; i < count; ++i)
            QCOMPARE(numberedRows[i].second, QStringLiteral("X = %1").arg(i + 1));
        const QString date = QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat);
        for (int page = 0; page < printed.size(); ++page) {
            const QString head = printed[page].trimmed().section(QLatin1Char('\n'), 0, 0);
            QVERIFY2(head.startsWith(QStringLiteral("Page %1 ").arg(page + 1)), qPrintable(head));
            QVERIFY2(head.contains(QStringLiteral("File: (untitled)")), qPrintable(head));
            QVERIFY2(head.endsWith(date), qPrintable(head));
        }
    }

    // Wrapped rows carry no number and start where the line's text starts.
    void wrapping_data() {
        QTest::addColumn<bool>("wrap");
        QTest::newRow("wrap") << true;
        QTest::newRow("clip") << false;
    }
    void wrapping() {
        QFETCH(bool, wrap);
        Settings().LineWrap = wrap;
        doc->EnsureView();
        doc->Editor()->SetLineWrap(wrap);
        doc->SetText(QStringLiteral("FIRST\r\n") + numbered(60, QStringLiteral("w%1")).join(' ') +
                     QStringLiteral("\r\nLAST"));
        const QStringList printed = print();
        QVERIFY(!printed.isEmpty());
        const QStringList lines = printed.first().split(QLatin1Char('\n'));
        const int numberRow =
            lines.indexOf(QRegularExpression(QStringLiteral("^\\s*0002\\s+w1 .*")));
        QVERIFY(numberRow > 0);
        QCOMPARE(printed.join(' ').contains(QStringLiteral("w60")), wrap);
        if (!wrap) {
            QVERIFY(
                lines[numberRow + 1].contains(QRegularExpression(QStringLiteral("0003\\s+LAST"))));
            return;
        }
        const int textColumn = lines[numberRow].indexOf(QStringLiteral("w1 "));
        const QString next = lines[numberRow + 1];
        QVERIFY2(qAbs(next.indexOf('w') - textColumn) <= 1,
                 qPrintable(lines[numberRow] + '\n' + next));
        QCOMPARE(rows(printed).size(), 3);
    }

    // A selection prints exactly its lines: Scintilla's range printing would add one.
    void selectionPrintsItsLines() {
        const int first = 9, last = 11;
        doc->SetText(numbered(12, QStringLiteral("L%1")).join(QStringLiteral("\r\n")));
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
            expected << QStringLiteral("%1").arg(line + 1, 4, 10, QLatin1Char('0'));
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
        QStringList lines = numbered(ScintillaBuffer::LazyStyleLines + 500, QStringLiteral("* %1"));
        lines << numbered(20, QStringLiteral("PRINT \"TEXT %1\""));
        doc->SetText(lines.join(QStringLiteral("\r\n")));
        const QStringList printed = print();
        QVERIFY(printed.last().contains(QStringLiteral("PRINT \"TEXT 20\"")));
        QProcess p;
        const QString png = out.filePath(QStringLiteral("last"));
        const QString page = QString::number(printed.size());
        p.start(QStringLiteral("pdftoppm"),
                {QStringLiteral("-png"), QStringLiteral("-r"), "60", "-f", page, "-l", page,
                 "-singlefile", pdfPath(), png});
        QVERIFY(p.waitForFinished(60000) && p.exitCode() == 0);
        const QImage image(png + QStringLiteral(".png"));
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
