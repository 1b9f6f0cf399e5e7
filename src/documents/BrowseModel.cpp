#include "documents/BrowseModel.h"

#include "documents/CatalogLookup.h"
#include "documents/mvConnection.h"
#include "documents/mvPath.h"
#include "support/BrixError.h"

#include <QDir>
#include <QFileInfo>

namespace {

template <typename T, typename Fn> T orEmpty(QString& error, Fn&& fn) {
    try {
        error.clear();
        return fn();
    } catch (const BrixError& e) {
        error = e.Description;
        return T();
    }
}

} // namespace

BrowseModel::BrowseModel(QString caption, const std::shared_ptr<mvResource>& start,
                         QString extension, bool multiple, bool recordLocking)
    : caption_(std::move(caption)), extension_(std::move(extension)), multiple_(multiple),
      recordLocking_(recordLocking) {
    localFolder_ = QDir::homePath();
    mvConnection& connection = mvConnection::Instance();
    server_ = connection.Profiles().DefaultName();
    if (const HostProfile* p = connection.Profiles().Find(server_))
        account_ = p->DefaultAccount;
    if (!extension_.isEmpty())
        mode_ = Mode::Local;
    if (!start)
        return;
    try {
        if (start->Provider() == QLatin1String("file")) {
            mode_ = Mode::Local;
            const QString folder = start->IsItem() || start->ItemID().isEmpty()
                                       ? start->Folder()
                                       : start->Folder() + QLatin1Char('/') + start->ItemID();
            if (QFileInfo(folder).isDir())
                localFolder_ = folder;
        } else {
            mode_ = Mode::Host;
            if (const HostProfile* p = connection.Profiles().Find(start->ServerName()))
                server_ = p->Name;
            if (!start->Database().isEmpty())
                account_ = start->Database();
            file_ = start->Folder();
        }
        // Open starts from an item only when it was asked to (the item at the cursor),
        // and then offers it even when it doesn't exist yet.
        if (caption_ == QLatin1String("Open") ? mode_ == Mode::Host : start->IsItem())
            initialName_ = start->ItemID();
        if (caption_ == QLatin1String("Open") && mode_ == Mode::Host && start->IsItem() &&
            !start->Exists())
            offerCatalogued(start);
    } catch (const BrixError& e) {
        LastError = e.Description;
    }
}

void BrowseModel::offerCatalogued(const std::shared_ptr<mvResource>& start) {
    const auto source = CatalogLookup(start->Host()).Find(start->ItemID());
    if (!source)
        return;
    file_ = source->File;
    initialName_ = source->Item;
    note_ =
        QStringLiteral("%1 is not in %2: the %3 has it from %4 %5.")
            .arg(start->ItemID(), start->Folder(), source->Catalogue, source->File, source->Item);
}

bool BrowseModel::OffersReadOnly() const {
    return caption_ == QLatin1String("Open");
}

QStringList BrowseModel::Servers() const {
    return mvConnection::Instance().Profiles().Names();
}

void BrowseModel::SetServer(const QString& server) {
    server_ = server;
    account_.clear();
    if (const HostProfile* p = mvConnection::Instance().Profiles().Find(server))
        account_ = p->DefaultAccount;
    file_.clear();
}

void BrowseModel::SetAccount(const QString& account) {
    account_ = account;
    file_.clear();
}

void BrowseModel::SetFile(const QString& file) {
    file_ = file;
}

std::shared_ptr<mvResource> BrowseModel::hostResource(const QString& folder) const {
    return mvConnection::Instance().GetResource(
        mvPath{QStringLiteral("mvdb"), server_, folder.isNull() ? QString() : account_, folder, {}}
            .ToString(),
        true, false);
}

QStringList BrowseModel::Accounts() const {
    return orEmpty<QStringList>(LastError, [&] {
        QStringList names;
        for (const auto& child : hostResource(QString())->Children())
            names << child.Name;
        return names;
    });
}

QStringList BrowseModel::Files() const {
    if (account_.isEmpty())
        return {};
    return orEmpty<QStringList>(LastError, [&] {
        QStringList names;
        for (const auto& child : hostResource(QStringLiteral(""))->Children()) {
            if (child.Container)
                names << child.Name;
        }
        return names;
    });
}

QStringList BrowseModel::Items() const {
    if (account_.isEmpty() || file_.isEmpty())
        return {};
    return orEmpty<QStringList>(LastError, [&] {
        QStringList names;
        for (const auto& child : hostResource(file_)->Children()) {
            if (child.Item)
                names << child.Name;
        }
        return names;
    });
}

void BrowseModel::SetLocalFolder(const QString& folder) {
    localFolder_ = QDir::cleanPath(QDir(localFolder_).absoluteFilePath(folder));
}

void BrowseModel::LocalUp() {
    if (localFolder_ != QLatin1String("/"))
        SetLocalFolder(QStringLiteral(".."));
}

std::vector<mvResource::Child> BrowseModel::LocalEntries() const {
    return orEmpty<std::vector<mvResource::Child>>(LastError, [&] {
        auto entries =
            mvConnection::Instance()
                .GetResource(mvPath{QStringLiteral("file"), {}, {}, localFolder_, {}}.ToString(),
                             true, false)
                ->Children();
        if (FilterByExtension && !extension_.isEmpty()) {
            const QString suffix = QLatin1Char('.') + extension_;
            std::erase_if(entries, [&](const mvResource::Child& c) {
                return !c.Container && !c.Name.endsWith(suffix, Qt::CaseInsensitive);
            });
        }
        return entries;
    });
}

QStringList BrowseModel::SplitNames(const QString& typed) const {
    const QString text = typed.trimmed();
    if (!multiple_ || !text.startsWith(QLatin1Char('"')))
        return text.isEmpty() ? QStringList() : QStringList{text};
    QStringList names;
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype open = text.indexOf(QLatin1Char('"'), i);
        if (open < 0)
            break;
        qsizetype close = text.indexOf(QLatin1Char('"'), open + 1);
        if (close < 0)
            close = text.size();
        const QString name = text.mid(open + 1, close - open - 1);
        if (!name.isEmpty())
            names << name;
        i = close + 1;
    }
    return names;
}

QString BrowseModel::JoinNames(const QStringList& names) const {
    if (names.size() == 1 || !multiple_)
        return names.value(0);
    QStringList quoted;
    for (const QString& name : names)
        quoted << QLatin1Char('"') + name + QLatin1Char('"');
    return quoted.join(QLatin1Char(' '));
}

QString BrowseModel::PathFor(const QString& name) const {
    if (name.contains(QStringLiteral("://")))
        return name;
    if (mode_ == Mode::Local || name.startsWith(QLatin1Char('/'))) {
        QString local = name;
        if (local == QLatin1String("~") || local.startsWith(QLatin1String("~/")))
            local = QDir::homePath() + local.mid(1);
        QString absolute = QDir::cleanPath(QDir(localFolder_).absoluteFilePath(local));
        const bool saving =
            caption_ == QLatin1String("Save") || caption_ == QLatin1String("Export");
        if (saving && FilterByExtension && !extension_.isEmpty() &&
            !QFileInfo(absolute).fileName().contains(QLatin1Char('.')) &&
            !QFileInfo(absolute).isDir())
            absolute += QLatin1Char('.') + extension_;
        return mvConnection::Instance().MakeFilePath({}, {}, absolute);
    }
    return mvPath{QStringLiteral("mvdb"), server_, account_, file_, name}.ToString();
}

bool BrowseModel::Enter(const QString& name) {
    if (mode_ != Mode::Local || name.contains(QStringLiteral("://")))
        return false;
    QString local = name;
    if (local == QLatin1String("~") || local.startsWith(QLatin1String("~/")))
        local = QDir::homePath() + local.mid(1);
    const QString absolute = QDir(localFolder_).absoluteFilePath(local);
    if (!QFileInfo(absolute).isDir())
        return false;
    SetLocalFolder(absolute);
    return true;
}

std::vector<std::shared_ptr<mvResource>>
BrowseModel::Take(const QStringList& names, bool readOnly,
                  const std::function<bool(const QString&)>& ask,
                  const std::function<void(const QString&)>& report) const {
    mvConnection& connection = mvConnection::Instance();
    std::vector<std::shared_ptr<mvResource>> taken;
    auto giveBack = [&] {
        for (const auto& r : taken) {
            try {
                r->Release();
            } catch (...) {
            }
        }
        taken.clear();
    };
    for (const QString& name : names) {
        const QString path = PathFor(name);
        std::shared_ptr<mvResource> resource;
        try {
            try {
                resource = connection.GetResource(path, readOnly, recordLocking_);
            } catch (const BrixError& e) {
                if (e.Number == BrixErrors::CannotWrite) {
                    // It can't be written at all: it opens read only, without a question.
                    resource = connection.GetResource(path, true, false);
                } else if (e.Number == BrixErrors::LockedByOther && OffersReadOnly()) {
                    const auto plain = connection.GetResource(path, false, false);
                    const QString question =
                        QStringLiteral("%1 is locked by another user or process. Open in \"read "
                                       "only\" mode instead?\n\n%2")
                            .arg(plain->ShortName(), e.Description);
                    if (!ask(question))
                        continue;
                    resource = connection.GetResource(path, true, false);
                } else {
                    throw;
                }
            }
        } catch (const BrixError& e) {
            report(e.Description);
            giveBack();
            return {};
        }
        taken.push_back(std::move(resource));
    }
    return taken;
}
