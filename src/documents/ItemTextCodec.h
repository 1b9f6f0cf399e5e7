#pragma once

#include <QByteArray>
#include <QString>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// Turns the bytes of an item (or a local text file) into the text the connection layer
// delivers, and back, so that every byte comes back as it was:
// - a line end of the file (LF, or CR LF where every LF of the file has a CR before it)
//   is an attribute mark and reads as CR LF; other CRs stay CRs;
// - marks are either raw bytes 0xFE, 0xFD, 0xFC or the UTF-8 form of U+F8FE, U+F8FD,
//   U+F8FC; both read as those characters;
// - other bytes follow the character set: Latin-1, where each byte is one character, or
//   UTF-8, where each stretch of bytes that are not valid UTF-8 reads as Latin-1.
// Decode notes on the codec what the item looked like, and Encode writes it back alike.
//
// The editor form goes straight between the bytes and the editor's UTF-8 in one pass: LF
// lines, value and subvalue marks as codes 29 and 28, tabs as blanks, and a CR that is no
// part of a line end as U+F80D (shown as a sign, written back as the CR). A line that held
// bytes the editor's form can't give back (tabs, bytes 28 and 29, Latin-1 stretches inside
// UTF-8) is written back byte for byte while it is unchanged.
class ItemTextCodec {
public:
    enum class Charset { Latin1, Utf8 };

    ItemTextCodec(bool rawMarks, Charset charset) : rawMarks_(rawMarks), charset_(charset) {}

    // Local files: marks of either form are read, and written back in the form the file
    // had; a file with no marks gets raw bytes, or the UTF-8 form with `rawForUnmarked` off.
    void AcceptBothMarkForms(bool rawForUnmarked);

    // A CR that is no line end, as the editor holds it.
    static constexpr char16_t LoneCr = 0xF80D;

    QByteArray DecodeForEditor(const QByteArray& bytes, int tabBlanks);
    // Raises as Encode does.
    QByteArray EncodeFromEditor(std::string_view text, const QString& what) const;

    QString Decode(const QByteArray& bytes);
    // Raises a BrixError (ConnectionErrors::Unrepresentable) naming the first character
    // that the item's character set can't hold, with its line; `what` names the item.
    QByteArray Encode(const QString& text, const QString& what) const;

    bool CrLfLines() const { return crlf_; }
    // True when the last Decode read bytes that weren't UTF-8 as Latin-1.
    bool FellBackToLatin1() const { return fallback_; }
    static Charset CharsetFromName(const QString& name, bool* known = nullptr);

private:
    void decodeUtf8(const QByteArray& bytes, QString& out);
    void decodeLatin1(const QByteArray& bytes, QString& out) const;
    // With both forms read, the form to write: the one the item had.
    void settleMarkForm(bool sawRaw, bool sawUtf8);
    // Latin-1 when so set, or when UTF-8 found no character of more than one byte but
    // bytes that weren't UTF-8.
    Charset effectiveCharset() const {
        return fallback_ && !multiByte_ ? Charset::Latin1 : charset_;
    }
    bool writeRawMarks() const { return rawMarks_; }
    void forgetAmbiguousLines(const QByteArray& text, const std::vector<bool>& kept,
                              std::unordered_set<std::string>& ambiguous);
    // Raises the error of a character at byte `at` of the editor's text.
    [[noreturn]] void failAt(std::string_view text, size_t at, char32_t cp,
                             const QString& what, const QString& why) const;

    bool rawMarks_;
    Charset charset_;
    bool bothMarkForms_ = false;
    bool rawForUnmarked_ = true;
    bool crlf_ = false;
    bool fallback_ = false;
    bool multiByte_ = false;
    // Editor lines whose bytes the editor's form can't give back, and those bytes.
    std::unordered_map<std::string, std::string> singleByteLines_;
};
