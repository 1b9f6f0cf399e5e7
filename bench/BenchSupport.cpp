#include "BenchSupport.h"

#include "language/SourceView.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>
#include <cstdio>

namespace Bench {

QString Program(int lines) {
    // A block of 20 lines that repeats with changing numbers; every statement kind the
    // lexer and the formatter care about appears in it.
    static const char* const block[] = {
        "%1 * Section %1: totals of active customers by region and rate",
        "   OPEN 'CUSTOMERS' TO F.CUSTOMERS ELSE STOP 201, 'CUSTOMERS'",
        "   READ CUST.REC FROM F.CUSTOMERS, CUST.ID ELSE CUST.REC = '' ; * none",
        "   IF CUST.REC<1> = 'ACTIVE' AND CUST.REC<7> # '' THEN",
        "      FOR VALUE.NO = 1 TO DCOUNT(CUST.REC<2>, @VM) ; * each value",
        "         REGION.TOTAL = REGION.TOTAL + CUST.REC<2,VALUE.NO> * RATE",
        "      NEXT VALUE.NO ; * values",
        "   END ELSE ; * not active",
        "      MESSAGE.TEXT = \"Inactive\x1d"
        "customer\x1c"
        "flagged for review\" : CUST.ID",
        "      GOSUB L%1 ; * report it",
        "   END ; * of the status check",
        "   LOOP ; * over the list",
        "      READNEXT CUST.ID FROM CUSTOMER.LIST ELSE EXIT",
        "      CALL PROCESS.CUSTOMER.ITEM(CUST.ID, CUST.REC, ERROR.CODE)",
        "   REPEAT ; * list used up",
        "   BEGIN CASE ; * zones by region",
        "      CASE REGION.CODE = 'NORTH' ; SHIPPING.ZONE = 'Z1'",
        "      CASE 1 ; GOTO %1 ; * everything else goes round again",
        "   END CASE ; PRINT 'Region total: ' : OCONV(REGION.TOTAL, 'MD2')",
        "L%1: RETURN ; * back to the caller with the totals computed",
    };
    constexpr int blockLines = static_cast<int>(sizeof(block) / sizeof(block[0]));
    QString out;
    out.reserve(static_cast<qsizetype>(lines) * 56);
    for (int i = 0; i < lines; ++i) {
        const QString line = QString::fromLatin1(block[i % blockLines]);
        out += line.contains(QLatin1String("%1")) ? line.arg(i / blockLines + 1) : line;
        out += QLatin1String("\r\n");
    }
    return out;
}

void Report(const char* name, double value, const char* unit) {
    std::printf("BENCH name=%s value=%.3f unit=%s\n", name, value, unit);
    std::fflush(stdout);
}

double TypeKeys(SourceView& view, int line, int column, int count) {
    view.SetCursor(column, line);
    QCoreApplication::processEvents();
    std::vector<double> times;
    times.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        Stopwatch key;
        QCoreApplication::sendEvent(&view, &press);
        QCoreApplication::sendEvent(&view, &release);
        // The repaint the key asked for happens here, as it would after a real key.
        QCoreApplication::processEvents();
        times.push_back(key.Us());
    }
    return Median(times);
}

double Median(std::vector<double> values) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace Bench
