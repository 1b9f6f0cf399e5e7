#include "BenchSupport.h"

#include <algorithm>
#include <cstdio>

namespace Bench {

QString Program(int lines) {
    // A block of 20 lines that repeats with changing numbers; every statement kind the
    // lexer and the formatter care about appears in it.
    static const char* const block[] = {
        "%1 * Section %1 of the generated program for timing runs",
        "   OPEN 'CUSTOMERS' TO F.CUST ELSE STOP 201, 'CUSTOMERS'",
        "   READ REC FROM F.CUST, ID ELSE REC = '' ; * missing",
        "   IF REC<1> = 'ACTIVE' THEN",
        "      FOR I = 1 TO DCOUNT(REC<2>, @VM) ; * each value",
        "         TOTAL = TOTAL + REC<2,I> * RATE",
        "      NEXT I",
        "   END ELSE",
        "      MSG = \"Inactive\x1d" "customer\x1c" "flag\" : ID",
        "      GOSUB L%1",
        "   END",
        "   LOOP",
        "      READNEXT ID ELSE EXIT",
        "      CALL PROCESS.ITEM(ID, REC, ERR)",
        "   REPEAT",
        "   BEGIN CASE",
        "      CASE X = 1 ; Y = 2",
        "      CASE 1 ; GOTO %1",
        "   END CASE",
        "L%1: RETURN",
    };
    constexpr int blockLines = static_cast<int>(sizeof(block) / sizeof(block[0]));
    QString out;
    out.reserve(static_cast<qsizetype>(lines) * 54);
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

double Median(std::vector<double> values) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace Bench
