#include "documents/ItemIdCodec.h"

#include "documents/ConnectionErrors.h"

namespace {

constexpr int kMaxNameBytes = 255;

struct Escape {
    char16_t character;
    char letter;
};
constexpr Escape kEscapes[] = {{'*', 'A'}, {'\\', 'B'}, {',', 'C'}, {'=', 'E'}, {'>', 'G'},
                               {'<', 'L'}, {'%', 'P'},  {'"', 'Q'}, {'/', 'S'}, {'+', 'V'},
                               {':', 'X'}, {';', 'Y'},  {'?', 'Z'}};
// Only as the first character.
constexpr Escape kLeading[] = {{'.', 'd'}, {'~', 't'}};

bool isLowerHex(QChar c) {
    return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) ||
           (c >= QLatin1Char('a') && c <= QLatin1Char('f'));
}

[[noreturn]] void refuse(const QString& id, const QString& why) {
    throw BrixError(
        ConnectionErrors::BadItemId,
        QStringLiteral("The name \"%1\" can't be used for an item here: %2.").arg(id, why));
}

} // namespace

ItemIdCodec::Mode ItemIdCodec::ModeFromName(const QString& name, bool* known) {
    const QString n = name.trimmed().toLower();
    if (known)
        *known = n.isEmpty() || n == QLatin1String("plain") || n == QLatin1String("qm");
    return n == QLatin1String("qm") ? Mode::Qm : Mode::Plain;
}

QString ItemIdCodec::ToFileName(const QString& id) const {
    if (id.isEmpty())
        refuse(id, QStringLiteral("it is empty"));
    QString name;
    if (mode_ == Mode::Plain) {
        if (id.contains(QLatin1Char('/')) || id.contains(QChar(0)))
            refuse(id, QStringLiteral("a file name can't hold \"/\" or a NUL character"));
        if (id == QLatin1String(".") || id == QLatin1String(".."))
            refuse(id, QStringLiteral("it names a folder"));
        name = id;
    } else {
        name.reserve(id.size());
        for (qsizetype i = 0; i < id.size(); ++i) {
            const QChar c = id.at(i);
            char letter = 0;
            for (const Escape& e : kLeading) {
                if (i == 0 && c.unicode() == e.character)
                    letter = e.letter;
            }
            for (const Escape& e : kEscapes) {
                if (c.unicode() == e.character)
                    letter = e.letter;
            }
            if (letter) {
                name += QLatin1Char('%');
                name += QLatin1Char(letter);
                continue;
            }
            if (c.unicode() < 0x20 || c.unicode() == 0x7F)
                name += QStringLiteral("%%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
            else
                name += c;
        }
    }
    if (name.toUtf8().size() > kMaxNameBytes)
        refuse(id, QStringLiteral("it is too long for a file name"));
    return name;
}

QString ItemIdCodec::FromFileName(const QString& name) const {
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return {};
    if (mode_ == Mode::Plain)
        return name;
    QString id;
    id.reserve(name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar c = name.at(i);
        if (c != QLatin1Char('%')) {
            id += c;
            continue;
        }
        if (i + 1 >= name.size())
            return {};
        const QChar next = name.at(i + 1);
        bool found = false;
        for (const Escape& e : kLeading) {
            // QM writes the lower-case letter and lists the upper-case one.
            if (i == 0 && next.toLower() == QLatin1Char(e.letter)) {
                id += QChar(e.character);
                found = true;
            }
        }
        for (const Escape& e : kEscapes) {
            if (next == QLatin1Char(e.letter)) {
                id += QChar(e.character);
                found = true;
                break;
            }
        }
        if (found) {
            ++i;
            continue;
        }
        if (i + 2 < name.size() && isLowerHex(next) && isLowerHex(name.at(i + 2))) {
            id += QChar(static_cast<char16_t>(name.mid(i + 1, 2).toUInt(nullptr, 16)));
            i += 2;
            continue;
        }
        return {};
    }
    return id;
}
