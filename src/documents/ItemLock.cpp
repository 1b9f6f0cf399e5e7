#include "documents/ItemLock.h"

#include "documents/ConnectionErrors.h"
#include "documents/HostTransport.h"
#include "documents/mvPath.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QRandomGenerator>
#include <QSysInfo>
#include <cerrno>
#include <csignal>
#include <map>
#include <pwd.h>
#include <unistd.h>

namespace {

// Locks this process holds, by place and entry path, with the number of resources that
// hold each.
std::map<QString, int>& heldByThisProcess() {
    static std::map<QString, int> held;
    return held;
}

QString ownProgramName() {
    QFile comm(QStringLiteral("/proc/self/comm"));
    if (comm.open(QIODevice::ReadOnly))
        return QString::fromUtf8(comm.readAll()).trimmed();
    return {};
}

QString programOf(qint64 pid) {
    QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
    if (comm.open(QIODevice::ReadOnly))
        return QString::fromUtf8(comm.readAll()).trimmed();
    return {};
}

// The path form of a name, which holds no "/", with a leading "." encoded as well, so that
// an entry is never hidden or "..".
QString escapeName(const QString& part) {
    QString name = mvPath::Encode(part);
    if (name.startsWith(QLatin1Char('.')))
        name.replace(0, 1, QStringLiteral("%2E"));
    return name;
}

} // namespace

ItemLock::Holder ItemLock::Holder::Self() {
    Holder self;
    if (const passwd* pw = ::getpwuid(::geteuid()))
        self.User = QString::fromLocal8Bit(pw->pw_name);
    if (self.User.isEmpty())
        self.User = qEnvironmentVariable("USER", QStringLiteral("unknown"));
    self.Machine = QSysInfo::machineHostName();
    self.Pid = ::getpid();
    self.Program = ownProgramName();
    self.Time = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    return self;
}

ItemLock::Holder ItemLock::Holder::Parse(const QByteArray& bytes) {
    Holder holder;
    for (const QByteArray& line : bytes.split('\n')) {
        const qsizetype eq = line.indexOf('=');
        if (eq <= 0)
            continue;
        const QByteArray key = line.left(eq).trimmed();
        const QString value = QString::fromUtf8(line.mid(eq + 1)).trimmed();
        if (key == "user")
            holder.User = value;
        else if (key == "machine")
            holder.Machine = value;
        else if (key == "pid")
            holder.Pid = value.toLongLong();
        else if (key == "program")
            holder.Program = value;
        else if (key == "time")
            holder.Time = value;
    }
    return holder;
}

QByteArray ItemLock::Holder::ToBytes() const {
    return QStringLiteral("user=%1\nmachine=%2\npid=%3\nprogram=%4\ntime=%5\n")
        .arg(User, Machine, QString::number(Pid), Program, Time)
        .toUtf8();
}

QString ItemLock::Holder::Describe() const {
    if (User.isEmpty() && Machine.isEmpty())
        return QStringLiteral("an unknown holder");
    QString text = User.isEmpty() ? QStringLiteral("an unknown user") : User;
    if (!Machine.isEmpty())
        text += QStringLiteral(" on ") + Machine;
    if (Pid > 0) {
        text += QStringLiteral(" (process ") + QString::number(Pid);
        if (!Program.isEmpty())
            text += QStringLiteral(", ") + Program;
        text += QLatin1Char(')');
    }
    const QDateTime since = QDateTime::fromString(Time, Qt::ISODate);
    if (since.isValid())
        text += QStringLiteral(" since ") +
                since.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return text;
}

ItemLock::ItemLock(std::shared_ptr<HostTransport> transport, QString lockFolder, QString entryName,
                   QString label)
    : transport_(std::move(transport)), folder_(std::move(lockFolder)),
      entry_(std::move(entryName)), label_(std::move(label)) {}

ItemLock::~ItemLock() {
    try {
        Release();
    } catch (...) {
    }
}

QString ItemLock::EntryPath() const {
    return folder_ + QLatin1Char('/') + entry_;
}

QString ItemLock::registryKey() const {
    return transport_->Place() + QLatin1Char('|') + EntryPath();
}

QString ItemLock::EntryName(const QString& fileName, const QString& itemId) {
    QString name = escapeName(fileName) + QLatin1Char('#') + escapeName(itemId);
    if (name.size() > 200) {
        const QByteArray key = (fileName + QLatin1Char('/') + itemId).toUtf8();
        name = QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex());
    }
    return name + QStringLiteral(".lock");
}

bool ItemLock::IsStale(const Holder& holder) {
    // Only a process of this machine can be seen to be gone.
    if (holder.Pid <= 0 || holder.Machine != QSysInfo::machineHostName())
        return false;
    if (holder.Pid == ::getpid())
        return true; // not in this process's list: left by an earlier process with our id
    if (::kill(static_cast<pid_t>(holder.Pid), 0) != 0 && errno == ESRCH)
        return true;
    // The id may have been given to another program since.
    const QString running = programOf(holder.Pid);
    return !holder.Program.isEmpty() && !running.isEmpty() && running != holder.Program;
}

void ItemLock::Acquire() {
    if (held_)
        return;
    auto& held = heldByThisProcess();
    const QString key = registryKey();
    if (auto it = held.find(key); it != held.end()) {
        ++it->second;
        held_ = true;
        return;
    }
    transport_->MakeFolder(folder_);
    const QString path = EntryPath();
    const QByteArray mine = Holder::Self().ToBytes();
    for (int attempt = 0; attempt < 5; ++attempt) {
        if (transport_->CreateExclusive(path, mine)) {
            held[key] = 1;
            held_ = true;
            return;
        }
        QByteArray existing;
        try {
            existing = transport_->ReadFile(path);
        } catch (const BrixError&) {
            continue; // let go of in the meantime
        }
        const Holder holder = Holder::Parse(existing);
        if (!IsStale(holder))
            throw BrixError(BrixErrors::LockedByOther,
                            QStringLiteral("%1 is locked by %2.").arg(label_, holder.Describe()));
        // Move the stale entry aside first: of two editors taking it over, one wins.
        const QString aside = path + QStringLiteral(".stale-") +
                              QString::number(QRandomGenerator::global()->generate64(), 36);
        if (!transport_->Rename(path, aside))
            continue;
        QByteArray moved;
        try {
            moved = transport_->ReadFile(aside);
        } catch (const BrixError&) {
        }
        if (moved != existing)
            transport_->CreateExclusive(path, moved); // a fresh lock got in between: put it back
        transport_->Remove(aside);
    }
    throw BrixError(ConnectionErrors::LockFailed,
                    QStringLiteral("The lock on %1 could not be taken; try again.").arg(label_));
}

void ItemLock::Release() {
    if (!held_)
        return;
    held_ = false;
    auto& held = heldByThisProcess();
    const QString key = registryKey();
    auto it = held.find(key);
    if (it == held.end() || --it->second > 0)
        return;
    held.erase(it);
    // Someone may have taken the entry over meanwhile; only ours goes.
    const QString path = EntryPath();
    QByteArray bytes;
    try {
        bytes = transport_->ReadFile(path);
    } catch (const BrixError&) {
        return;
    }
    const Holder holder = Holder::Parse(bytes);
    if (holder.Pid == ::getpid() && holder.Machine == QSysInfo::machineHostName())
        transport_->Remove(path);
}
