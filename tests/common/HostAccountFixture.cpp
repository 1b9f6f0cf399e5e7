#include "HostAccountFixture.h"
#include "FileTestSupport.h"

#include "documents/ConnectionProfiles.h"
#include "documents/ItemLock.h"
#include "documents/mvConnection.h"
#include "documents/mvResource.h"
#include "support/BrixError.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

HostAccountFixture::HostAccountFixture()
    : tmp_(std::make_unique<QTemporaryDir>(QStringLiteral("/tmp/brix-account-XXXXXX"))) {
    accounts_ = tmp_->path();
    ::chmod(QFile::encodeName(accounts_).constData(), 0755);
    QDir().mkpath(accounts_ + QStringLiteral("/DEMO/BP"));
    const QDir demo(ConnectionProfiles::ShippedDemoFolder() + QStringLiteral("/BP"));
    for (const QString& name : demo.entryList(QDir::Files))
        QFile::copy(demo.filePath(name), ItemFile(QStringLiteral("BP"), name));
    if (demo.isEmpty())
        WriteItem(QStringLiteral("BP"), QStringLiteral("HELLO"), "CRT 'Hello'\nEND\n");
    WriteItem(QStringLiteral("BP"), QStringLiteral("PROT"), "* protected\nEND\n");
    ::chmod(QFile::encodeName(ItemFile(QStringLiteral("BP"), QStringLiteral("PROT"))).constData(),
            0444);
    WriteItem(QStringLiteral("LIB"), QStringLiteral("OTHER"), "* other\n");
    FileTestSupport::WriteFile(accounts_ + QStringLiteral("/DEMO/CUSTOMERS/DATA.30"), QByteArray());
    QDir().mkpath(LocalFolder());

    FileTestSupport::UseProfiles("[General]\nDefault=test\n\n[test]\nLabel=TEST\nAccountsFolder=" +
                                 accounts_.toUtf8() + "\nDefaultAccount=DEMO\n");
}

HostAccountFixture::~HostAccountFixture() {
    ::chmod(QFile::encodeName(ItemFile(QStringLiteral("BP"), QStringLiteral("PROT"))).constData(),
            0644);
    QFile::remove(ProfilesFile());
}

QString HostAccountFixture::ProfilesFile() const {
    return ConnectionProfiles::DefaultFile();
}

QString HostAccountFixture::ItemPath(const QString& file, const QString& item) {
    return mvConnection::Instance().MakePath(QStringLiteral("mvdb"), QStringLiteral("*"),
                                             QStringLiteral("DEMO"), file, item);
}

QString HostAccountFixture::ItemFile(const QString& file, const QString& item) const {
    return accounts_ + QStringLiteral("/DEMO/") + file + QLatin1Char('/') + item;
}

QByteArray HostAccountFixture::ReadItem(const QString& file, const QString& item) const {
    return FileTestSupport::ReadFile(ItemFile(file, item));
}

void HostAccountFixture::WriteItem(const QString& file, const QString& item,
                                   const QByteArray& bytes) const {
    FileTestSupport::WriteFile(ItemFile(file, item), bytes);
}

qint64 HostAccountFixture::LockHolder(const QString& file, const QString& item) const {
    QFile entry(accounts_ + QStringLiteral("/DEMO/.brix-locks/") + ItemLock::EntryName(file, item));
    if (!entry.open(QIODevice::ReadOnly))
        return 0;
    return ItemLock::Holder::Parse(entry.readAll()).Pid;
}

void HostAccountFixture::StartChild(QProcess& child, const QByteArray& mode,
                                    const QString& profiles, const QString& path) {
    child.setProgram(QCoreApplication::applicationFilePath());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("BRIX_DOC_CHILD"), QString::fromUtf8(mode));
    env.insert(QStringLiteral("BRIX_DOC_PROFILES"), profiles);
    env.insert(QStringLiteral("BRIX_DOC_PATH"), path);
    child.setProcessEnvironment(env);
    child.start();
}

void HostAccountFixture::RunChildIfAsked(bool (*own)(const QByteArray&, const QString&)) {
    const QByteArray mode = qgetenv("BRIX_DOC_CHILD");
    if (mode.isEmpty())
        return;
    mvConnection::Instance().LoadProfiles(QString::fromUtf8(qgetenv("BRIX_DOC_PROFILES")));
    const QString path = QString::fromUtf8(qgetenv("BRIX_DOC_PATH"));
    auto say = [](const char* text) {
        std::fputs(text, stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    };
    int code = 0;
    try {
        if (own && own(mode, path)) {
        } else if (mode == "lock") {
            auto resource = mvConnection::Instance().GetResource(path, false, true);
            say("locked");
            char c;
            while (::read(0, &c, 1) > 0) {
            }
            resource->Release();
        } else {
            code = 2;
        }
    } catch (const BrixError& error) {
        say(error.Description.toUtf8().constData());
        code = 1;
    }
    std::fflush(stdout);
    ::_exit(code);
}

HostAccountFixture::LockHolderProcess::LockHolderProcess(const HostAccountFixture& fixture,
                                                         const QString& path) {
    StartChild(process_, "lock", fixture.ProfilesFile(), path);
    holding_ = process_.waitForReadyRead(30000) && process_.readLine().trimmed() == "locked";
}

HostAccountFixture::LockHolderProcess::~LockHolderProcess() {
    process_.closeWriteChannel();
    if (!process_.waitForFinished(30000))
        process_.kill();
}
