#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <vector>

// An INI file read and changed the way the classic profile routines do it: sections and keys
// match without regard to case, values lose surrounding blanks and one pair of surrounding
// quotes on read, and an edit replaces only the lines it touches. Every other byte of the file
// stays as it was, so a damaged or oddly encoded file is never destroyed by a write.
// The file may be UTF-16 with a byte-order mark (little or big endian) or UTF-8.
class IniProfile {
public:
    enum class Encoding { Utf8, Utf8Bom, Utf16LE, Utf16BE };

    // A larger file is not read and not written: it can't be a settings file of ours.
    static constexpr qint64 MaxFileSize = 16 * 1024 * 1024;

    IniProfile() = default;
    // A missing file gives an empty profile; one that can't be read gives an empty profile
    // that refuses to be saved.
    static IniProfile Load(const QString& path);
    static IniProfile FromBytes(const QByteArray& bytes);

    bool IsReadable() const { return readable_; }
    bool IsChanged() const { return changed_; }
    Encoding FileEncoding() const { return encoding_; }

    // The value of the first matching key in the first matching section; a null string when
    // there is none.
    QString Value(const QString& section, const QString& key) const;
    // Writes "key=value", adding the section when missing. A value holding a line break
    // can't be written and is refused.
    bool SetValue(const QString& section, const QString& key, const QString& value);
    void RemoveKey(const QString& section, const QString& key);

    QByteArray ToBytes() const;
    // Replaces the file when something changed; false when that failed or was refused.
    bool Save(const QString& path) const;

    // The profile routines, each reading the file afresh. A read gives at most
    // bufferChars - 1 characters, and the default when the key is missing.
    static QString ReadString(const QString& path, const QString& section, const QString& key,
                              const QString& defaultValue, int bufferChars);
    static bool WriteString(const QString& path, const QString& section, const QString& key,
                            const QString& value);
    static bool DeleteKey(const QString& path, const QString& section, const QString& key);

private:
    enum class Kind { Other, Section, Key };
    struct Line {
        QByteArray Raw; // the line as it is in the file, terminator included
        Kind LineKind = Kind::Other;
        QString Name;
        QString Value;
    };

    void parse(const QByteArray& bytes);
    Line makeLine(const QString& text) const;
    static void classify(Line& line, const QString& text);
    QString decode(const QByteArray& bytes) const;
    QByteArray encode(const QString& text) const;
    QString lineText(const QByteArray& raw) const;
    bool endsWithNewline(const QByteArray& raw) const;
    QString newline() const;
    // First line of the section and the line after its last line, or -1 when missing.
    std::pair<int, int> findSection(const QString& section) const;
    int findKey(const QString& section, const QString& key) const;
    void insertLine(int index, const QString& text);

    Encoding encoding_ = Encoding::Utf8;
    QByteArray bom_;
    std::vector<Line> lines_;
    QByteArray tail_; // a lone byte after the last whole UTF-16 code unit
    bool readable_ = true;
    bool changed_ = false;
};
