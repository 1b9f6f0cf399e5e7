#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

class LexClass;
class Moriox;
class clsKeywords;

// Formats a program held as bytes, without an editor: the lines go into a buffer in memory,
// the lexer leaves its flags on them and the Format operation runs over them. Nothing but
// spaces changes. A line that is valid UTF-8 is read as such; any other line byte for byte,
// with the raw value and subvalue marks 0xFD and 0xFC seen as marks. Every other byte and
// every line end comes back as it was.
class TextFormatter {
public:
    // The settings must outlive the formatter; their keyword lists are read once, here.
    explicit TextFormatter(const Moriox& settings);
    ~TextFormatter();
    TextFormatter(const TextFormatter&) = delete;
    TextFormatter& operator=(const TextFormatter&) = delete;

    QByteArray Format(const QByteArray& bytes) const;

    // The keyword table the settings describe, with their case rule.
    static std::shared_ptr<clsKeywords> KeywordsOf(const Moriox& settings);

    // One line's bytes as the lexer should see them, and back. `bytewise` says which way the
    // line was read and must be given back to Encode.
    static QString Decode(QByteArrayView line, bool& bytewise);
    static QByteArray Encode(const QString& line, bool bytewise);

private:
    const Moriox& settings_;
    std::shared_ptr<LexClass> lex_;
};
