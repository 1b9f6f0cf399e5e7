#include "language/KeywordCheck.h"

#include "language/clsKeyword.h"
#include "language/clsKeywords.h"

#include <QStringList>

namespace {

const QString kForbidden = QStringLiteral(" (),;");

bool isAsciiLetter(QChar c) {
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
           (c >= QLatin1Char('a') && c <= QLatin1Char('z'));
}

} // namespace

bool KeywordCheck::IsForbidden(QChar c) {
    return kForbidden.contains(c);
}

bool KeywordCheck::Check(const QString& word, QString& corrected, QString& name) {
    static const QStringList names =
        QStringLiteral("blank,parentheses,parentheses,comma,semicolon").split(QLatin1Char(','));
    corrected.clear();
    name.clear();
    bool valid = true;
    for (const QChar c : word) {
        const auto at = kForbidden.indexOf(c);
        if (at < 0) {
            corrected += c;
            continue;
        }
        valid = false;
        name = names.at(at);
    }
    return valid;
}

QString KeywordCheck::Suspects(const QString& word, const clsKeywords& table) {
    const QString first = table.KeywordFirstChars();
    const QString next = table.KeywordNextChars();
    QStringList found;
    for (qsizetype i = 0; i < word.size(); ++i) {
        const QChar c = word.at(i);
        if (isAsciiLetter(c) || c == QLatin1Char('_') || c == QLatin1Char('%'))
            continue;
        if (i == 0 && c == QLatin1Char('@'))
            continue;
        if (first.contains(c) || next.contains(c))
            continue;
        found << QLatin1Char('\'') + c + QLatin1Char('\'');
    }
    return found.join(QLatin1Char(' '));
}

QString KeywordCheck::Refusal() {
    return QStringLiteral("Keyword may not contain a blank, comma, semicolon or parenthesis!");
}

QString KeywordCheck::SuspectQuestion(const QString& word, const QString& suspects) {
    return QStringLiteral("Keyword '") + word +
           QStringLiteral("' may contain an invalid character: ") + suspects +
           QStringLiteral("\r\nAre you sure you want to add this keyword?");
}

QString KeywordCheck::RepairQuestion(const QString& word, const QString& name,
                                     const QString& corrected) {
    return QStringLiteral("Keyword '") + word +
           QStringLiteral("' contains an invalid character: ") + name +
           QStringLiteral(". Import as '") + corrected + QStringLiteral("'?\r\n") +
           QStringLiteral("Click 'Yes' to import corrected keyword, 'No' to skip this keyword, "
                          "or Cancel to cancel the import operation.");
}

void KeywordCheck::SplitSuffix(const QString& field, QString& word, int32_t& block) {
    word = field.trimmed();
    block = word.isEmpty() ? 0 : clsKeyword::BlockOfSuffix(word.back());
    if (block != 0)
        word.chop(1);
}
