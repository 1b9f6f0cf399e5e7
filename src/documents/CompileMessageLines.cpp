#include "documents/CompileMessageLines.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

// "12: msg", or "12.3: msg" (and deeper) for a line of an included record: the first number
// is the line of the include statement in this program, the line the user can fix it from.
const QRegularExpression& qmForm() {
    static const QRegularExpression re(QStringLiteral(R"(^\s*(\d+)((?:\.\d+)+)?:(?:\s+(.*))?$)"));
    return re;
}

// "0012 source text": at least four digits with leading zeros, then a blank or nothing.
const QRegularExpression& paddedForm() {
    static const QRegularExpression re(QStringLiteral(R"(^\s*(0\d{3,})(?:\s+(.*))?$)"));
    return re;
}

const QRegularExpression& lineWordForm() {
    static const QRegularExpression re(QStringLiteral(R"((?:^|[^\w])line\s+(\d+)\b)"),
                                       QRegularExpression::CaseInsensitiveOption);
    return re;
}

// A caret under the column at fault, as UniVerse-style compilers print below the source.
bool isCaretLine(const QString& line) {
    const QString trimmed = line.trimmed();
    return !trimmed.isEmpty() && trimmed.count(QLatin1Char('^')) == trimmed.size();
}

int32_t toLine(const QString& digits) {
    bool ok = false;
    const int value = digits.toInt(&ok);
    return ok ? value : 0;
}

} // namespace

std::vector<CompileMessageLines::Entry> CompileMessageLines::Parse(const QString& output) {
    QStringList lines = output.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    }
    std::vector<Entry> entries;
    // The UniVerse-style entry whose complaint may follow on the next line.
    qsizetype openPadded = -1;
    for (const QString& line : std::as_const(lines)) {
        Entry entry;
        bool padded = false;
        if (const auto m = qmForm().match(line); m.hasMatch()) {
            entry.Line = toLine(m.captured(1));
            entry.Message = m.captured(3).trimmed();
            if (m.hasCaptured(2))
                entry.Message = QStringLiteral("In the record included here, line %1: %2")
                                    .arg(m.captured(2).mid(1), entry.Message);
        } else if (const auto p = paddedForm().match(line); p.hasMatch()) {
            entry.Line = toLine(p.captured(1));
            entry.Message = p.captured(2).trimmed();
            padded = true;
        } else if (const auto w = lineWordForm().match(line); w.hasMatch()) {
            entry.Line = toLine(w.captured(1));
            entry.Message = line.trimmed();
        } else {
            if (openPadded >= 0 && !isCaretLine(line) && !line.trimmed().isEmpty()) {
                Entry& open = entries[static_cast<size_t>(openPadded)];
                open.Message +=
                    (open.Message.isEmpty() ? QString() : QStringLiteral("\n")) + line.trimmed();
                openPadded = -1;
            }
            continue;
        }
        openPadded = -1;
        if (entry.Line <= 0)
            continue;
        if (padded)
            openPadded = static_cast<qsizetype>(entries.size());
        entries.push_back(std::move(entry));
    }
    return entries;
}
