#include "documents/mvPath.h"

#include <QByteArray>
#include <QStringList>

namespace {

bool keptAsIs(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~' || c == '*' || c == '$' || c == '!' || c == '(' ||
           c == ')' || c == ',' || c == '+' || c == '=' || c == '@' || c == ':';
}

const QString kHostScheme = QStringLiteral("mvdb://");
const QString kFileScheme = QStringLiteral("file://");

} // namespace

QString mvPath::Encode(const QString& part) {
    static const char hex[] = "0123456789ABCDEF";
    const QByteArray utf8 = part.toUtf8();
    QString out;
    out.reserve(utf8.size());
    for (const char c : utf8) {
        if (keptAsIs(c)) {
            out += QLatin1Char(c);
        } else {
            const auto b = static_cast<unsigned char>(c);
            out += QLatin1Char('%');
            out += QLatin1Char(hex[b >> 4]);
            out += QLatin1Char(hex[b & 15]);
        }
    }
    return out;
}

QString mvPath::Decode(const QString& part) {
    if (!part.contains(QLatin1Char('%')))
        return part;
    return QString::fromUtf8(QByteArray::fromPercentEncoding(part.toUtf8()));
}

QString mvPath::ToString() const {
    if (Provider.compare(QLatin1String("file"), Qt::CaseInsensitive) == 0) {
        QString out = kFileScheme;
        QString folder = Folder;
        if (!folder.startsWith(QLatin1Char('/')))
            folder.prepend(QLatin1Char('/'));
        for (const QString& name : folder.split(QLatin1Char('/'), Qt::SkipEmptyParts))
            out += QLatin1Char('/') + Encode(name);
        return out + QLatin1Char('/') + Encode(ItemID);
    }
    const QString provider = Provider.isEmpty() ? QStringLiteral("mvdb") : Provider.toLower();
    return provider + QStringLiteral("://") + Encode(ServerName) + QLatin1Char('/') +
           Encode(Database) + QLatin1Char('/') + Encode(Folder) + QLatin1Char('/') + Encode(ItemID);
}

mvPath mvPath::Parse(const QString& path) {
    mvPath parts;
    if (path.startsWith(QLatin1Char('/')) || path.startsWith(kFileScheme, Qt::CaseInsensitive)) {
        parts.Provider = QStringLiteral("file");
        QString rest = path.startsWith(QLatin1Char('/')) ? path : path.mid(kFileScheme.size());
        const bool plain = path.startsWith(QLatin1Char('/'));
        if (!rest.startsWith(QLatin1Char('/')))
            rest.prepend(QLatin1Char('/'));
        const qsizetype cut = rest.lastIndexOf(QLatin1Char('/'));
        QStringList names = rest.left(cut).split(QLatin1Char('/'), Qt::SkipEmptyParts);
        QString folder;
        for (const QString& name : names)
            folder += QLatin1Char('/') + (plain ? name : Decode(name));
        parts.Folder = folder.isEmpty() ? QStringLiteral("/") : folder;
        const QString item = rest.mid(cut + 1);
        parts.ItemID = plain ? item : Decode(item);
        return parts;
    }
    const qsizetype scheme = path.indexOf(QStringLiteral("://"));
    if (scheme < 0) {
        parts.Provider = QStringLiteral("mvdb");
        parts.ItemID = path;
        return parts;
    }
    parts.Provider = path.left(scheme).toLower();
    const QStringList fields = path.mid(scheme + 3).split(QLatin1Char('/'));
    auto field = [&](int i) { return i < fields.size() ? Decode(fields.at(i)) : QString(); };
    parts.ServerName = field(0);
    parts.Database = field(1);
    parts.Folder = field(2);
    // Anything behind a fourth "/" belongs to the item id.
    QString item;
    for (int i = 3; i < fields.size(); ++i)
        item += (i > 3 ? QStringLiteral("/") : QString()) + Decode(fields.at(i));
    parts.ItemID = item;
    return parts;
}

bool mvPath::Same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}
