#include "documents/QmClientSession.h"

#include "documents/ConnectionErrors.h"
#include "documents/HostTransport.h"
#include "documents/PipeProcess.h"

#include <QtEndian>

namespace {

// Request types of QM's client protocol.
enum : int16_t {
    kQuit = 1,
    kOpen = 4,
    kRead = 6,
    kReadU = 9,
    kRelease = 15,
    kWrite = 16,
    kWriteU = 17,
    kExecute = 21,
    kEndCommand = 23,
    kLocalLogin = 25,
    kMarkMapping = 46,
};

// Request: total length (32 bits), type (16 bits). Answer: total length, server status
// (16 bits), STATUS() (32 bits). All low byte first.
constexpr int kRequestHeader = 6;
constexpr int kAnswerHeader = 10;

QByteArray shortInt(int16_t value) {
    QByteArray bytes(2, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// A TCL word for the command parser: quoted, with a quote it doesn't hold.
QByteArray tclWord(const QByteArray& text) {
    const char quote = text.contains('"') ? '\'' : '"';
    return quote + text + quote;
}

} // namespace

QmClientSession::QmClientSession(HostTransport& transport, QStringList qmCommand,
                                 const QString& accountFolder, int timeoutMs)
    : account_(accountFolder), timeout_(timeoutMs) {
    qmCommand << QStringLiteral("-Q") << QStringLiteral("-C1!0");
    process_ = transport.Start(qmCommand, accountFolder);
    Reply r = call(kLocalLogin, {});
    if (r.Outcome != Ok)
        broken(QStringLiteral("QM refused the session: %1").arg(QString::fromLocal8Bit(r.Data)));
    // By its folder, so that an account QM doesn't list by name is reached too.
    const QByteArray folder = accountFolder.toLocal8Bit();
    if (folder.contains('"') && folder.contains('\''))
        broken(QStringLiteral("QM can't name the folder of the account."));
    r = Execute("LOGTO " + tclWord(folder));
    if (r.Status != 0)
        broken(QStringLiteral("QM could not enter the account: %1")
                   .arg(QString::fromLocal8Bit(r.Data).trimmed()));
    // "12 DEMO from 0": the user number first.
    r = Execute("WHO");
    userNumber_ = r.Data.trimmed().split(' ').value(0).toInt();
}

QmClientSession::~QmClientSession() {
    if (process_) {
        // A polite goodbye; closing the channel ends it anyway.
        const QByteArray quit = [] {
            QByteArray bytes(kRequestHeader, '\0');
            qToLittleEndian<int32_t>(kRequestHeader, bytes.data());
            qToLittleEndian<int16_t>(kQuit, bytes.data() + 4);
            return bytes;
        }();
        process_->Write(quit, 1000);
    }
}

void QmClientSession::broken(const QString& why) {
    const bool timedOut = process_ && process_->TimedOut();
    process_.reset();
    files_.clear();
    throw BrixError(timedOut ? ConnectionErrors::CommandTimedOut : ConnectionErrors::ReadFailed,
                    QStringLiteral("The QM session for %1 failed: %2").arg(account_, why));
}

QmClientSession::Reply QmClientSession::call(int16_t type, const QByteArray& data) {
    if (!process_)
        broken(QStringLiteral("it has ended."));
    QByteArray request(kRequestHeader, '\0');
    qToLittleEndian<int32_t>(static_cast<int32_t>(data.size() + kRequestHeader), request.data());
    qToLittleEndian<int16_t>(type, request.data() + 4);
    request += data;
    char header[kAnswerHeader];
    if (!process_->Write(request, timeout_) || !process_->Read(header, kAnswerHeader, timeout_))
        broken(process_->Failure());
    const int32_t length = qFromLittleEndian<int32_t>(header);
    if (length < kAnswerHeader)
        broken(QStringLiteral("it answered something that is no QM client answer."));
    Reply reply;
    reply.Outcome = qFromLittleEndian<int16_t>(header + 4);
    reply.Status = qFromLittleEndian<int32_t>(header + 6);
    reply.Data.resize(length - kAnswerHeader);
    if (!process_->Read(reply.Data.data(), reply.Data.size(), timeout_))
        broken(process_->Failure());
    return reply;
}

int16_t QmClientSession::File(const QByteArray& name) {
    const auto known = files_.constFind(name);
    if (known != files_.constEnd())
        return *known;
    const Reply r = call(kOpen, name);
    if (r.Outcome != Ok || r.Data.size() < 2)
        throw BrixError(ConnectionErrors::ReadFailed,
                        QStringLiteral("QM could not open the file %1 (status %2).")
                            .arg(QString::fromLocal8Bit(name))
                            .arg(r.Status));
    const int16_t number = qFromLittleEndian<int16_t>(r.Data.constData());
    // Items as their OS files hold them: no line ends turned into marks and back.
    call(kMarkMapping, shortInt(number) + shortInt(0));
    files_.insert(name, number);
    return number;
}

QmClientSession::Reply QmClientSession::ReadU(int16_t file, const QByteArray& id) {
    return call(kReadU, shortInt(file) + id);
}

QmClientSession::Reply QmClientSession::Read(int16_t file, const QByteArray& id) {
    return call(kRead, shortInt(file) + id);
}

QmClientSession::Reply QmClientSession::Write(int16_t file, const QByteArray& id,
                                              const QByteArray& record, bool keepLock) {
    return call(keepLock ? kWriteU : kWrite,
                shortInt(file) + shortInt(static_cast<int16_t>(id.size())) + id + record);
}

QmClientSession::Reply QmClientSession::Release(int16_t file, const QByteArray& id) {
    return call(kRelease, shortInt(file) + id);
}

QmClientSession::Reply QmClientSession::Execute(const QByteArray& command) {
    Reply r = call(kExecute, command);
    for (int tries = 0; r.Outcome == Prompt && tries < 10; ++tries)
        r = call(kEndCommand, {});
    if (r.Outcome == Prompt)
        broken(QStringLiteral("a command of the account keeps asking for input."));
    return r;
}
