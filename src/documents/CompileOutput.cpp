#include "documents/CompileOutput.h"

#include <QStringList>

QString CompileOutput::Command(const QString& compiler, const QString& folder, const QString& item,
                               const QString& options) {
    return compiler + QLatin1Char(' ') + folder + QLatin1Char(' ') + item + QLatin1Char(' ') +
           options;
}

bool CompileOutput::IsRule(const QString& trimmedLine) {
    if (trimmedLine.size() < 2 || trimmedLine[0] != trimmedLine[1])
        return false;
    const char16_t code = trimmedLine[0].unicode();
    return code < 48 || (code >= 58 && code <= 64);
}

QString CompileOutput::Clean(const QString& output) {
    const QString lineEnd = QStringLiteral("\r\n");
    QStringList lines = output.split(lineEnd);
    lines.removeIf([](const QString& line) {
        const QString trimmed = line.trimmed();
        return trimmed.isEmpty() || IsRule(trimmed);
    });
    if (lines.isEmpty())
        return lineEnd;
    return lines.join(lineEnd);
}
