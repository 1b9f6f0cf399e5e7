#include "documents/QmLockKeeper.h"

#include "documents/ConnectionErrors.h"
#include "documents/HostCallWaiter.h"
#include "documents/HostTransport.h"
#include "documents/QmClientSession.h"

namespace {

// QM's client server reads at most this many bytes of an id in a read or a release.
constexpr qsizetype kLongestId = 99;

} // namespace

QmLockKeeper::QmLockKeeper(std::shared_ptr<HostTransport> transport, QStringList qmCommand,
                           ItemTextCodec::Charset charset)
    : transport_(std::move(transport)), command_(std::move(qmCommand)), charset_(charset) {}

QmLockKeeper::~QmLockKeeper() = default;

QString QmLockKeeper::key(const Item& item) const {
    return item.AccountFolder + QChar(0) + item.File + QChar(0) + item.Id;
}

QByteArray QmLockKeeper::bytes(const QString& text, const Item& item) const {
    bool fits = true;
    QByteArray out;
    if (charset_ == ItemTextCodec::Charset::Utf8) {
        out = text.toUtf8();
    } else {
        for (QChar c : text)
            fits = fits && c.unicode() < 256;
        out = text.toLatin1();
    }
    if (!fits || out.isEmpty() || out.size() > kLongestId || out.contains('\xfe') ||
        out.contains('\0'))
        throw BrixError(ConnectionErrors::BadItemId,
                        QStringLiteral("%1 can't be named to QM's record locks.").arg(item.Label));
    return out;
}

QmClientSession& QmLockKeeper::session(const QString& accountFolder) {
    auto& s = sessions_[accountFolder];
    if (!s || !s->Alive()) {
        s.reset();
        s = std::make_unique<QmClientSession>(*transport_, command_, accountFolder,
                                              transport_->CommandTimeout());
        ++generations_[accountFolder];
    }
    return *s;
}

QString QmLockKeeper::holder(QmClientSession& s, int userNumber) {
    QString who = QStringLiteral("QM user %1").arg(userNumber);
    QmClientSession::Reply users;
    try {
        users = s.Execute("LISTU");
    } catch (const BrixError&) {
        return who;
    }
    // "*   15  22                 24 Nov 18:59  QMVbSrvr : root": user, process, ..., name.
    for (const QByteArray& line : users.Data.split('\xfe')) {
        const QList<QByteArray> words =
            line.mid(line.startsWith('*') ? 1 : 0).simplified().split(' ');
        if (words.size() < 2 || words.first().toInt() != userNumber)
            continue;
        const qsizetype colon = line.lastIndexOf(" : ");
        const QString name =
            colon < 0 ? QString() : QString::fromLocal8Bit(line.mid(colon + 3)).trimmed();
        return name.isEmpty() ? who + QStringLiteral(" (process %1)").arg(words.at(1))
                              : who + QStringLiteral(" (%1, process %2)").arg(name, words.at(1));
    }
    return who;
}

void QmLockKeeper::readU(const Item& item) {
    const QByteArray id = bytes(item.Id, item);
    const QByteArray file = bytes(item.File, item);
    // A QM process that went away while idle is found out by the first call: once more anew.
    for (int attempt = 0;; ++attempt) {
        const bool fresh =
            !sessions_[item.AccountFolder] || !sessions_[item.AccountFolder]->Alive();
        try {
            QmClientSession& s = session(item.AccountFolder);
            const QmClientSession::Reply r = s.ReadU(s.File(file), id);
            if (r.Outcome == QmClientSession::Locked)
                throw BrixError(
                    BrixErrors::LockedByOther,
                    QStringLiteral("%1 is locked by %2.").arg(item.Label, holder(s, r.Status)));
            if (r.Outcome != QmClientSession::Ok && r.Outcome != QmClientSession::Else)
                throw BrixError(ConnectionErrors::LockFailed,
                                QStringLiteral("QM could not lock %1 (status %2).")
                                    .arg(item.Label)
                                    .arg(r.Status));
            return;
        } catch (const BrixError& e) {
            if (fresh || attempt > 0 || e.Number != ConnectionErrors::ReadFailed ||
                sessions_[item.AccountFolder]->Alive())
                throw;
        }
    }
}

void QmLockKeeper::Lock(const Item& item) {
    HostCallWaiter::Run([&] {
        const QMutexLocker lock(&mutex_);
        // A QM process that has ended is replaced first, so a lost lock is seen as lost.
        session(item.AccountFolder);
        Held& h = held_[key(item)];
        try {
            if (h.Count == 0 || h.Generation != generations_[item.AccountFolder])
                readU(item);
        } catch (...) {
            if (h.Count == 0)
                held_.erase(key(item));
            throw;
        }
        ++h.Count;
        h.Generation = generations_[item.AccountFolder];
    });
}

void QmLockKeeper::Unlock(const Item& item) {
    try {
        HostCallWaiter::Run([&] {
            const QMutexLocker lock(&mutex_);
            const auto it = held_.find(key(item));
            if (it == held_.end() || --it->second.Count > 0)
                return;
            const bool current = it->second.Generation == generations_[item.AccountFolder];
            held_.erase(it);
            auto& s = sessions_[item.AccountFolder];
            if (current && s && s->Alive())
                s->Release(s->File(bytes(item.File, item)), bytes(item.Id, item));
        });
    } catch (...) {
        // A session that failed has ended, and QM freed its locks with it.
    }
}

QByteArray QmLockKeeper::Read(const Item& item) {
    QByteArray record;
    HostCallWaiter::Run([&] {
        const QMutexLocker lock(&mutex_);
        QmClientSession& s = session(item.AccountFolder);
        const QmClientSession::Reply r =
            s.Read(s.File(bytes(item.File, item)), bytes(item.Id, item));
        if (r.Outcome != QmClientSession::Ok)
            throw BrixError(ConnectionErrors::ReadFailed,
                            r.Outcome == QmClientSession::Else
                                ? QStringLiteral("%1 is not there.").arg(item.Label)
                                : QStringLiteral("QM could not read %1 (status %2).")
                                      .arg(item.Label)
                                      .arg(r.Status));
        record = r.Data;
    });
    return record;
}

void QmLockKeeper::Write(const Item& item, const QByteArray& record) {
    HostCallWaiter::Run([&] {
        const QMutexLocker lock(&mutex_);
        session(item.AccountFolder);
        const auto it = held_.find(key(item));
        const bool keep = it != held_.end() && it->second.Count > 0;
        if (keep && it->second.Generation != generations_[item.AccountFolder]) {
            // The QM process was restarted, and its locks went with the old one.
            readU(item);
            it->second.Generation = generations_[item.AccountFolder];
        }
        QmClientSession& s = session(item.AccountFolder);
        const QmClientSession::Reply r =
            s.Write(s.File(bytes(item.File, item)), bytes(item.Id, item), record, keep);
        if (r.Outcome != QmClientSession::Ok)
            throw BrixError(
                ConnectionErrors::WriteFailed,
                QStringLiteral("QM did not write %1 (status %2).").arg(item.Label).arg(r.Status));
    });
}

int QmLockKeeper::UserNumber(const QString& accountFolder) {
    int number = 0;
    HostCallWaiter::Run([&] {
        const QMutexLocker lock(&mutex_);
        number = session(accountFolder).UserNumber();
    });
    return number;
}
