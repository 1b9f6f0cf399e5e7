#pragma once

#include <QString>
#include <cstdint>

class clsKeywords;

// The checks a word passes before it goes on a keyword list, and the questions the
// keyword editor asks about words that fail them.
class KeywordCheck {
public:
    // Characters that can never stand in a keyword: they end a word for the lexer.
    static bool IsForbidden(QChar c);
    // The word without its forbidden characters. False when it had any; `name` then says
    // which, the last one found when there were several.
    static bool Check(const QString& word, QString& corrected, QString& name);
    // Characters the lexer may not read as part of a word: neither a letter, "_", "%",
    // a leading "@", nor one the table's words have made a word character. Each between
    // apostrophes, one blank between them; empty when there are none.
    static QString Suspects(const QString& word, const clsKeywords& table);

    static QString Refusal();
    static QString SuspectQuestion(const QString& word, const QString& suspects);
    static QString RepairQuestion(const QString& word, const QString& name,
                                  const QString& corrected);

    // A field of a list file: the word and the block value its last character stands for.
    static void SplitSuffix(const QString& field, QString& word, int32_t& block);
};
