#include "documents/CatalogLookup.h"

#include "documents/HostTransport.h"
#include "documents/ItemIdCodec.h"
#include "documents/mvHost.h"

#include <QDir>
#include <QRegularExpression>

namespace {

// Where the compiled object keeps the name it is called by (the rest of the header and
// the code are the same in every copy).
constexpr qsizetype kNameOffset = 36;
constexpr qsizetype kNameEnd = 165;
// Objects looked at while looking for the one a private copy was made from (each may be a
// round trip to the host).
constexpr int kMostObjectsRead = 200;
constexpr QLatin1StringView kObjectSuffix(".OUT");

// Names CATALOG accepts; others (a leading "*" and the like go to the global catalogue)
// are never looked up, so the name also goes into a command as it stands.
bool catalogueName(const QString& name) {
    static const QRegularExpression valid(QStringLiteral("^[A-Z0-9][A-Z0-9.%$_-]{0,62}$"));
    return valid.match(name).hasMatch();
}

QString parentOf(const QString& path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash > 0 ? path.left(slash) : QString();
}

QString lastPart(const QString& path) {
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

} // namespace

CatalogLookup::CatalogLookup(std::shared_ptr<mvHost> host) : host_(std::move(host)) {}

bool CatalogLookup::SameObject(const QByteArray& catalogued, const QByteArray& compiled) {
    if (catalogued.size() != compiled.size() || catalogued.size() < kNameEnd)
        return false;
    return catalogued.first(kNameOffset) == compiled.first(kNameOffset) &&
           catalogued.sliced(kNameEnd) == compiled.sliced(kNameEnd);
}

std::optional<CatalogLookup::Source> CatalogLookup::Find(const QString& name) {
    const QString callName = name.trimmed().toUpper();
    if (!host_ || !host_->Transport() || !catalogueName(callName))
        return std::nullopt;
    try {
        accountFolder_ = host_->AccountFolder(host_->Session().AccountName);
        VocRecord entry;
        VocRecord privateCatalogue;
        readVoc(callName, entry, privateCatalogue);
        if (auto local = fromLocal(entry))
            return local;
        QString folder = QStringLiteral("cat");
        if (privateCatalogue.Type.startsWith(QLatin1Char('X'), Qt::CaseInsensitive) &&
            !privateCatalogue.Field2.isEmpty())
            folder = privateCatalogue.Field2;
        if (!folder.startsWith(QLatin1Char('/')))
            folder = accountFolder_ + QLatin1Char('/') + folder;
        return fromPrivate(callName, folder);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void CatalogLookup::readVoc(const QString& name, VocRecord& entry, VocRecord& privateCatalogue) {
    // Only a QM host knows CT; on another the command would run something else or nothing.
    if (!host_->AllowsCommands() || host_->Profile()->ItemNames != ItemIdCodec::Mode::Qm)
        return;
    QString output;
    try {
        output = host_->Execute(QStringLiteral("CT VOC %1 $PRIVATE.CATALOGUE").arg(name));
    } catch (const std::exception&) {
        return;
    }
    // CT shows each record as "VOC <id>" and then "<field number>: <text>" lines.
    static const QRegularExpression head(QStringLiteral("^VOC (\\S+)\\s*$"));
    static const QRegularExpression field(QStringLiteral("^\\s*(\\d+): ?(.*)$"));
    VocRecord* current = nullptr;
    for (const QString& line : output.split(QStringLiteral("\r\n"))) {
        if (const auto m = head.match(line); m.hasMatch()) {
            const QString id = m.captured(1);
            current = id == name ? &entry
                      : id.compare(QLatin1String("$PRIVATE.CATALOGUE"), Qt::CaseInsensitive) == 0
                          ? &privateCatalogue
                          : nullptr;
            if (current)
                current->Found = true;
            continue;
        }
        const auto m = field.match(line);
        if (!m.hasMatch())
            current = nullptr;
        if (!current)
            continue;
        const QString text = m.captured(2).trimmed();
        switch (m.captured(1).toInt()) {
        case 1:
            current->Type = text;
            break;
        case 2:
            current->Field2 = text;
            break;
        case 3:
            current->Field3 = text;
            break;
        default:
            break;
        }
    }
}

std::optional<CatalogLookup::Source> CatalogLookup::fromLocal(const VocRecord& entry) {
    if (!entry.Found || !entry.Type.startsWith(QLatin1Char('V'), Qt::CaseInsensitive) ||
        entry.Field2.compare(QLatin1String("CS"), Qt::CaseInsensitive) != 0 ||
        !entry.Field3.startsWith(QLatin1Char('/')))
        return std::nullopt;
    return sourceOf(parentOf(entry.Field3), lastPart(entry.Field3),
                    QStringLiteral("local catalogue"));
}

std::optional<CatalogLookup::Source> CatalogLookup::fromPrivate(const QString& name,
                                                                const QString& folder) {
    HostTransport& files = *host_->Transport();
    const ItemIdCodec names(host_->Profile()->ItemNames);
    const QString copyName = names.ToFileName(name);
    const HostTransport::FileInfo copyInfo = files.Stat(folder + QLatin1Char('/') + copyName);
    if (!copyInfo.IsFile)
        return std::nullopt;
    const QByteArray copy = files.ReadFile(folder + QLatin1Char('/') + copyName);

    // The ".OUT" files of the account whose source file is there too.
    std::vector<QString> objectFolders;
    for (const auto& entry : files.List(accountFolder_)) {
        if (!entry.IsFolder || !entry.Name.endsWith(kObjectSuffix, Qt::CaseInsensitive))
            continue;
        const QString source = entry.Name.chopped(kObjectSuffix.size());
        if (files.Stat(accountFolder_ + QLatin1Char('/') + source).IsFolder)
            objectFolders.push_back(accountFolder_ + QLatin1Char('/') + entry.Name);
    }
    // Most programs are catalogued under their own name: those objects first.
    for (const QString& objects : objectFolders) {
        const QString path = objects + QLatin1Char('/') + copyName;
        if (files.Stat(path).IsFile && SameObject(copy, files.ReadFile(path))) {
            if (auto found = sourceOf(objects, copyName, QStringLiteral("private catalogue")))
                return found;
        }
    }
    int read = 0;
    for (const QString& objects : objectFolders) {
        for (const auto& entry : files.List(objects)) {
            if (entry.IsFolder || entry.Name == copyName)
                continue;
            if (++read > kMostObjectsRead)
                return std::nullopt;
            const QString path = objects + QLatin1Char('/') + entry.Name;
            if (files.Stat(path).Size != copyInfo.Size || !SameObject(copy, files.ReadFile(path)))
                continue;
            if (auto found = sourceOf(objects, entry.Name, QStringLiteral("private catalogue")))
                return found;
        }
    }
    return std::nullopt;
}

std::optional<CatalogLookup::Source> CatalogLookup::sourceOf(const QString& objectFolder,
                                                             const QString& objectName,
                                                             const QString& catalogue) {
    if (!objectFolder.endsWith(kObjectSuffix, Qt::CaseInsensitive))
        return std::nullopt;
    const QString sourceFolder = objectFolder.chopped(kObjectSuffix.size());
    // Only a source file of this account can be offered by name.
    if (QDir::cleanPath(parentOf(sourceFolder)) != QDir::cleanPath(accountFolder_))
        return std::nullopt;
    if (!host_->Transport()->Stat(sourceFolder + QLatin1Char('/') + objectName).IsFile)
        return std::nullopt;
    const ItemIdCodec names(host_->Profile()->ItemNames);
    Source source{names.FromFileName(lastPart(sourceFolder)), names.FromFileName(objectName),
                  catalogue};
    if (source.File.isEmpty() || source.Item.isEmpty())
        return std::nullopt;
    return source;
}
