#pragma once

#include <QByteArray>
#include <QString>

// Turns the bytes of an item (or a local text file) into the text the connection layer
// delivers, and back, so that every byte comes back as it was:
// - a line end of the file (LF, or CR LF where every LF of the file has a CR before it)
//   is an attribute mark and reads as CR LF; other CRs stay CRs;
// - marks are either raw bytes 0xFE, 0xFD, 0xFC or the UTF-8 form of U+F8FE, U+F8FD,
//   U+F8FC; both read as those characters;
// - other bytes follow the character set: Latin-1, where each byte is one character, or
//   UTF-8; bytes that are not valid UTF-8 make the whole item read as Latin-1.
// Decode notes on the codec what the item looked like, and Encode writes it back alike.
class ItemTextCodec {
public:
    enum class Charset { Latin1, Utf8 };

    ItemTextCodec(bool rawMarks, Charset charset) : rawMarks_(rawMarks), charset_(charset) {}

    QString Decode(const QByteArray& bytes);
    // Raises a BrixError (ConnectionErrors::Unrepresentable) naming the first character
    // that the item's character set can't hold, with its line; `what` names the item.
    QByteArray Encode(const QString& text, const QString& what) const;

    bool CrLfLines() const { return crlf_; }
    // True when the last Decode fell back to Latin-1 on bytes that weren't UTF-8.
    bool FellBackToLatin1() const { return fallback_; }
    static Charset CharsetFromName(const QString& name, bool* known = nullptr);

private:
    bool decodeUtf8(const QByteArray& bytes, QString& out) const;
    void decodeLatin1(const QByteArray& bytes, QString& out) const;
    Charset effectiveCharset() const { return fallback_ ? Charset::Latin1 : charset_; }

    bool rawMarks_;
    Charset charset_;
    bool crlf_ = false;
    bool fallback_ = false;
};
