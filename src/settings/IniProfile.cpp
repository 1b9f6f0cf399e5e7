#include "settings/IniProfile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool isUtf16(IniProfile::Encoding encoding) {
    return encoding == IniProfile::Encoding::Utf16LE || encoding == IniProfile::Encoding::Utf16BE;
}

} // namespace

IniProfile IniProfile::Load(const QString& path) {
    IniProfile profile;
    const QFileInfo info(path);
    if (!info.exists())
        return profile;
    QFile file(path);
    if (info.isDir() || info.size() > MaxFileSize || !file.open(QIODevice::ReadOnly)) {
        profile.readable_ = false;
        return profile;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError || bytes.size() > MaxFileSize) {
        profile.readable_ = false;
        return profile;
    }
    profile.parse(bytes);
    return profile;
}

IniProfile IniProfile::FromBytes(const QByteArray& bytes) {
    IniProfile profile;
    profile.parse(bytes);
    return profile;
}

void IniProfile::parse(const QByteArray& bytes) {
    qsizetype start = 0;
    if (bytes.startsWith("\xFF\xFE")) {
        encoding_ = Encoding::Utf16LE;
        start = 2;
    } else if (bytes.startsWith("\xFE\xFF")) {
        encoding_ = Encoding::Utf16BE;
        start = 2;
    } else if (bytes.startsWith("\xEF\xBB\xBF")) {
        encoding_ = Encoding::Utf8Bom;
        start = 3;
    } else {
        encoding_ = Encoding::Utf8;
    }
    bom_ = bytes.left(start);

    const qsizetype unit = isUtf16(encoding_) ? 2 : 1;
    qsizetype end = bytes.size();
    if (unit == 2 && (end - start) % 2 != 0) {
        tail_ = bytes.right(1);
        --end;
    }
    const int lowByte = encoding_ == Encoding::Utf16BE ? 1 : 0;
    qsizetype lineStart = start;
    for (qsizetype i = start; i < end; i += unit) {
        const bool lineFeed =
            bytes[i + lowByte] == '\n' && (unit == 1 || bytes[i + 1 - lowByte] == 0);
        if (lineFeed || i + unit >= end) {
            Line line;
            line.Raw = bytes.mid(lineStart, i + unit - lineStart);
            classify(line, lineText(line.Raw));
            lines_.push_back(std::move(line));
            lineStart = i + unit;
        }
    }
}

QString IniProfile::decode(const QByteArray& bytes) const {
    if (!isUtf16(encoding_))
        return QString::fromUtf8(bytes);
    // Code unit by code unit, so that even unpaired surrogates come back unchanged.
    QString text(bytes.size() / 2, Qt::Uninitialized);
    const bool big = encoding_ == Encoding::Utf16BE;
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
        const auto b0 = static_cast<uchar>(bytes[i]);
        const auto b1 = static_cast<uchar>(bytes[i + 1]);
        text[i / 2] =
            QChar(big ? static_cast<char16_t>(b0 << 8 | b1) : static_cast<char16_t>(b1 << 8 | b0));
    }
    return text;
}

QByteArray IniProfile::encode(const QString& text) const {
    if (!isUtf16(encoding_))
        return text.toUtf8();
    QByteArray bytes;
    bytes.reserve(text.size() * 2);
    const bool big = encoding_ == Encoding::Utf16BE;
    for (const QChar c : text) {
        const char low = static_cast<char>(c.unicode() & 0xFF);
        const char high = static_cast<char>(c.unicode() >> 8);
        bytes.append(big ? high : low);
        bytes.append(big ? low : high);
    }
    return bytes;
}

QString IniProfile::lineText(const QByteArray& raw) const {
    QString text = decode(raw);
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('\r')))
        text.chop(1);
    return text;
}

bool IniProfile::endsWithNewline(const QByteArray& raw) const {
    return decode(raw.right(isUtf16(encoding_) ? 2 : 1)) == QLatin1String("\n");
}

void IniProfile::classify(Line& line, const QString& text) {
    const QString trimmed = text.trimmed();
    line.LineKind = Kind::Other;
    line.Name.clear();
    line.Value.clear();
    if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char(';')))
        return;
    if (trimmed.startsWith(QLatin1Char('['))) {
        const qsizetype close = trimmed.indexOf(QLatin1Char(']'));
        line.LineKind = Kind::Section;
        line.Name = trimmed.mid(1, close < 0 ? -1 : close - 1).trimmed();
        return;
    }
    const qsizetype equals = trimmed.indexOf(QLatin1Char('='));
    line.LineKind = Kind::Key;
    line.Name = (equals < 0 ? trimmed : trimmed.left(equals)).trimmed();
    if (equals < 0)
        return;
    QString value = trimmed.mid(equals + 1).trimmed();
    if (value.size() >= 2 &&
        (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\'')) &&
        value.back() == value.front())
        value = value.mid(1, value.size() - 2);
    line.Value = value;
}

QString IniProfile::newline() const {
    for (const Line& line : lines_)
        if (endsWithNewline(line.Raw))
            return decode(line.Raw).endsWith(QLatin1String("\r\n")) ? QStringLiteral("\r\n")
                                                                    : QStringLiteral("\n");
    return QStringLiteral("\n");
}

IniProfile::Line IniProfile::makeLine(const QString& text) const {
    Line line;
    line.Raw = encode(text + newline());
    classify(line, text);
    return line;
}

std::pair<int, int> IniProfile::findSection(const QString& section) const {
    const int count = static_cast<int>(lines_.size());
    for (int i = 0; i < count; ++i) {
        if (lines_[i].LineKind != Kind::Section || !sameName(lines_[i].Name, section))
            continue;
        int end = i + 1;
        while (end < count && lines_[end].LineKind != Kind::Section)
            ++end;
        return {i, end};
    }
    return {-1, -1};
}

int IniProfile::findKey(const QString& section, const QString& key) const {
    const auto [first, end] = findSection(section);
    for (int i = first + 1; first >= 0 && i < end; ++i)
        if (lines_[i].LineKind == Kind::Key && sameName(lines_[i].Name, key))
            return i;
    return -1;
}

QString IniProfile::Value(const QString& section, const QString& key) const {
    const int index = findKey(section, key);
    if (index < 0)
        return {};
    // A key that is present reads as a string, never as absent.
    const QString& value = lines_[index].Value;
    return value.isNull() ? QStringLiteral("") : value;
}

void IniProfile::insertLine(int index, const QString& text) {
    // The line before the new one must end, or the two would run together.
    if (index > 0 && !endsWithNewline(lines_[index - 1].Raw))
        lines_[index - 1].Raw += encode(newline());
    lines_.insert(lines_.begin() + index, makeLine(text));
}

bool IniProfile::SetValue(const QString& section, const QString& key, const QString& value) {
    if (value.contains(QLatin1Char('\n')) || value.contains(QLatin1Char('\r')))
        return false;
    const QString text = key + QLatin1Char('=') + value;
    const int index = findKey(section, key);
    if (index >= 0) {
        Line& line = lines_[index];
        // The same text again leaves the bytes alone, even ones that did not decode.
        const QString current = lineText(line.Raw);
        if (current == text)
            return true;
        line.Raw = encode(text + decode(line.Raw).mid(current.size()));
        classify(line, text);
        changed_ = true;
        return true;
    }
    auto [first, end] = findSection(section);
    if (first < 0) {
        insertLine(static_cast<int>(lines_.size()), QLatin1Char('[') + section + QLatin1Char(']'));
        insertLine(static_cast<int>(lines_.size()), text);
    } else {
        // After the section's last line that holds anything, before its trailing blank lines.
        int at = end;
        while (at - 1 > first && lines_[at - 1].LineKind == Kind::Other &&
               lineText(lines_[at - 1].Raw).trimmed().isEmpty())
            --at;
        insertLine(at, text);
    }
    changed_ = true;
    return true;
}

void IniProfile::RemoveKey(const QString& section, const QString& key) {
    const int index = findKey(section, key);
    if (index < 0)
        return;
    lines_.erase(lines_.begin() + index);
    changed_ = true;
}

QByteArray IniProfile::ToBytes() const {
    QByteArray bytes = bom_;
    for (const Line& line : lines_)
        bytes += line.Raw;
    return bytes + tail_;
}

bool IniProfile::Save(const QString& path) const {
    if (!readable_)
        return false;
    if (!changed_)
        return true;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = ToBytes();
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

QString IniProfile::ReadString(const QString& path, const QString& section, const QString& key,
                               const QString& defaultValue, int bufferChars) {
    const QString value = Load(path).Value(section, key);
    return (value.isNull() ? defaultValue : value).left(std::max(0, bufferChars - 1));
}

bool IniProfile::WriteString(const QString& path, const QString& section, const QString& key,
                             const QString& value) {
    IniProfile profile = Load(path);
    return profile.SetValue(section, key, value) && profile.Save(path);
}

bool IniProfile::DeleteKey(const QString& path, const QString& section, const QString& key) {
    IniProfile profile = Load(path);
    profile.RemoveKey(section, key);
    return profile.Save(path);
}
