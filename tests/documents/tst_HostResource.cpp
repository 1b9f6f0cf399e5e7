#include "FileTestSupport.h"
#include "TestEnv.h"

#include "documents/ConnectionErrors.h"
#include "documents/HostResource.h"
#include "documents/ItemLock.h"
#include "documents/LocalTransport.h"
#include "documents/mvHost.h"

#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <cstdio>
#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

// Items of a local account on real files; some cases run in a child (BRIX_CONN_CHILD).

namespace {

std::shared_ptr<mvHost> makeHost(const QString& accountsFolder, bool rawMarks,
                                 ItemTextCodec::Charset charset,
                                 ItemIdCodec::Mode names = ItemIdCodec::Mode::Plain) {
    auto profile = std::make_shared<HostProfile>();
    profile->Name = u"test"_s;
    profile->Label = u"TEST"_s;
    profile->AccountsFolder = accountsFolder;
    profile->RawMarks = rawMarks;
    profile->Charset = charset;
    profile->ItemNames = names;
    return std::make_shared<mvHost>(profile, std::make_shared<LocalTransport>(), u"ACC"_s);
}

std::shared_ptr<HostResource>
item(const QString& accounts, const QString& file, const QString& id, bool raw = true,
     ItemTextCodec::Charset charset = ItemTextCodec::Charset::Latin1) {
    return std::make_shared<HostResource>(makeHost(accounts, raw, charset), u"*"_s, u"ACC"_s, file,
                                          id);
}

// The child side. Arguments come in BRIX_CONN_ARGS, one a line; answers go to stdout.
void childMain() {
    const QByteArray mode = qgetenv("BRIX_CONN_CHILD");
    if (mode.isEmpty())
        return;
    const QStringList args = QString::fromUtf8(qgetenv("BRIX_CONN_ARGS")).split(QLatin1Char('\n'));
    auto answer = [](const QString& text) {
        std::fputs(text.toUtf8().constData(), stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    };
    if (qgetenv("BRIX_CONN_NOBODY") == "1" && ::geteuid() == 0) {
        if (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0) {
            answer(u"nouser"_s);
            ::_exit(3);
        }
    }
    try {
        auto resource = item(args.value(0), args.value(1), args.value(2));
        if (mode == "lock") {
            resource->SetLocked(true);
            answer(u"locked"_s);
            char c;
            while (::read(0, &c, 1) > 0) {
            }
            resource->Release();
        } else if (mode == "write") {
            if (!args.value(3).isEmpty()) {
                struct rlimit limit {};
                limit.rlim_cur = limit.rlim_max = args.value(3).toULongLong();
                ::setrlimit(RLIMIT_FSIZE, &limit);
                std::signal(SIGXFSZ, SIG_IGN);
            }
            resource->WriteText(QString(200000, QLatin1Char('x')));
            answer(u"written"_s);
        } else if (mode == "read") {
            answer(u"read "_s + QString::number(resource->ReadText().size()));
        }
    } catch (const BrixError& e) {
        answer(u"error %1 %2"_s.arg(static_cast<uint32_t>(e.Number), 0, 16).arg(e.Description));
    }
    ::_exit(0);
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(childMain)

class tst_HostResource : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> tmp;
    QString accounts, bp;

    // Starts this program as a child in the given mode.
    static void startChild(QProcess& child, const QByteArray& mode, const QStringList& args,
                           bool nobody = false) {
        child.setProgram(QCoreApplication::applicationFilePath());
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"BRIX_CONN_CHILD"_s, QString::fromUtf8(mode));
        env.insert(u"BRIX_CONN_ARGS"_s, args.join(QLatin1Char('\n')));
        env.insert(u"BRIX_CONN_NOBODY"_s, nobody ? u"1"_s : QString());
        child.setProcessEnvironment(env);
        child.start();
    }
    // Runs a child to its end and gives its first answer line.
    static QString runChild(const QByteArray& mode, const QStringList& args, bool nobody = false) {
        QProcess child;
        startChild(child, mode, args, nobody);
        child.closeWriteChannel();
        child.waitForFinished(60000);
        return QString::fromUtf8(child.readAllStandardOutput()).trimmed();
    }
private Q_SLOTS:
    void init() {
        // World-readable, so that a child that gave up root can still get in.
        tmp = std::make_unique<QTemporaryDir>(u"/tmp/brix-host-XXXXXX"_s);
        QVERIFY(tmp->isValid());
        ::chmod(QFile::encodeName(tmp->path()).constData(), 0755);
        accounts = tmp->path();
        bp = accounts + u"/ACC/BP"_s;
        QVERIFY(QDir().mkpath(bp));
    }
    void cleanup() {
        ::chmod(QFile::encodeName(bp).constData(), 0755);
        tmp.reset();
    }

    // U+00FD would read back as a value mark: refused, and the item stays.
    void unrepresentableCharacterKeepsOldItem() {
        FileTestSupport::WriteFile(bp + u"/X"_s, "old");
        auto r = item(accounts, u"BP"_s, u"X"_s);
        QString description;
        QCOMPARE(FileTestSupport::ErrorOf([&] { r->WriteText(u"a\r\nb\u00fd"_s); }, &description),
                 ConnectionErrors::Unrepresentable);
        QVERIFY2(description.contains(u"line 2"_s), qPrintable(description));
        QCOMPARE(FileTestSupport::ReadFile(bp + u"/X"_s), QByteArray("old"));
    }

    void writeKeepsModeAndLeavesNoTemporary() {
        const QString path = bp + u"/M"_s;
        FileTestSupport::WriteFile(path, "old");
        ::chmod(QFile::encodeName(path).constData(), 0640);
        item(accounts, u"BP"_s, u"M"_s)->WriteText(u"new"_s);
        struct stat st {};
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &st), 0);
        QCOMPARE(st.st_mode & 07777, 0640u);
        QCOMPARE(QDir(bp).entryList(QDir::Files | QDir::Hidden), QStringList{u"M"_s});
    }

    void hashedFilesAndFoldersAreNoItems_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("id");
        QTest::newRow("item of a plain OS file") << u"VOC"_s << u"X"_s;
        QTest::newRow("QM hashed") << u"QMF"_s << QString();
        QTest::newRow("folder inside a file") << u"BP"_s << u"SUB"_s;
    }
    void hashedFilesAndFoldersAreNoItems() {
        QFETCH(QString, file);
        QFETCH(QString, id);
        FileTestSupport::WriteFile(accounts + u"/ACC/VOC"_s, "hashed");
        QDir().mkpath(accounts + u"/ACC/QMF"_s);
        FileTestSupport::WriteFile(accounts + u"/ACC/QMF/%0"_s, "");
        QDir().mkpath(bp + u"/SUB"_s);
        auto r = item(accounts, file, id);
        QVERIFY(!r->IsItem());
        QVERIFY(r->Exists());
        QCOMPARE(FileTestSupport::ErrorOf([&] { r->ReadText(); }), ConnectionErrors::NotAnItem);
    }

    // Ids that would name something outside the file's folder are refused or escaped,
    // and whatever is written stays inside it.
    void hostileIds_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("id");
        QTest::addColumn<bool>("refused");
        const int plain = int(ItemIdCodec::Mode::Plain), qm = int(ItemIdCodec::Mode::Qm);
        const QString shell = u"it's \"x\";rm -rf $(pwd) `id`  a\tb\x01\x1b"_s;
        QTest::newRow("plain a/b") << plain << u"a/b"_s << true;
        QTest::newRow("plain ..") << plain << u".."_s << true;
        QTest::newRow("plain shell, control") << plain << shell << false;
        QTest::newRow("qm ../x") << qm << u"../x"_s << false;
        QTest::newRow("qm ..") << qm << u".."_s << false;
        QTest::newRow("qm shell, control") << qm << shell << false;
    }
    void hostileIds() {
        QFETCH(int, mode);
        QFETCH(QString, id);
        QFETCH(bool, refused);
        auto in = [&](const QString& item) {
            return std::make_shared<HostResource>(
                makeHost(accounts, true, ItemTextCodec::Charset::Latin1, ItemIdCodec::Mode(mode)),
                u"*"_s, u"ACC"_s, u"BP"_s, item);
        };
        if (refused) {
            QCOMPARE(FileTestSupport::ErrorOf([&] { in(id); }), ConnectionErrors::BadItemId);
            return;
        }
        auto r = in(id);
        QCOMPARE(QFileInfo(r->ItemFile()).absolutePath(), bp);
        r->WriteText(u"data"_s);
        QCOMPARE(QDir(bp).entryList(QDir::Files | QDir::Hidden).size(), 1);
        QCOMPARE(r->ReadText(), u"data"_s);
        // The name lists back as the same id.
        const auto children = in(QString())->Children();
        QCOMPARE(children.size(), size_t(1));
        QCOMPARE(children.front().Name, id);
    }

    // Another process's lock is refused and named; once it lets go, or dies holding it, the
    // lock is ours, and releasing it (twice) leaves no entry.
    void lockOfAnotherProcess_data() {
        QTest::addColumn<bool>("killed");
        QTest::newRow("let go") << false;
        QTest::newRow("killed") << true;
    }
    void lockOfAnotherProcess() {
        QFETCH(bool, killed);
        QProcess holder;
        startChild(holder, "lock", {accounts, u"BP"_s, u"MAIN"_s});
        QVERIFY(holder.waitForReadyRead(30000));
        QCOMPARE(holder.readLine().trimmed(), QByteArray("locked"));

        auto mine = item(accounts, u"BP"_s, u"MAIN"_s);
        QString description;
        QCOMPARE(FileTestSupport::ErrorOf([&] { mine->SetLocked(true); }, &description),
                 BrixErrors::LockedByOther);
        const ItemLock::Holder self = ItemLock::Holder::Self();
        QVERIFY2(description.contains(self.User) && description.contains(self.Machine) &&
                     description.contains(QString::number(holder.processId())),
                 qPrintable(description));

        const QString entry =
            accounts + u"/ACC/.brix-locks/"_s + ItemLock::EntryName(u"BP"_s, u"MAIN"_s);
        if (killed)
            holder.kill();
        else
            holder.closeWriteChannel();
        QVERIFY(holder.waitForFinished(30000));
        QCOMPARE(QFile::exists(entry), killed);
        mine->SetLocked(true);
        QCOMPARE(ItemLock::Holder::Parse(FileTestSupport::ReadFile(entry)).Pid, qint64(::getpid()));
        mine->Release();
        mine->Release();
        QCOMPARE(QDir(accounts + u"/ACC/.brix-locks"_s).entryList(QDir::Files | QDir::Hidden),
                 QStringList());
    }

    // One process may lock an item through two resources (a save over itself); the
    // entry stays until both let go.
    void locksWithinOneProcess() {
        auto a = item(accounts, u"BP"_s, u"MAIN"_s);
        auto b = item(accounts, u"BP"_s, u"MAIN"_s);
        a->SetLocked(true);
        b->SetLocked(true);
        const QString entry =
            accounts + u"/ACC/.brix-locks/"_s + ItemLock::EntryName(u"BP"_s, u"MAIN"_s);
        a->Release();
        QVERIFY(QFile::exists(entry));
        b.reset();
        QVERIFY(!QFile::exists(entry));
    }

    void fullDiskKeepsOldItem() {
        const QString path = bp + u"/BIG"_s;
        FileTestSupport::WriteFile(path, "old contents");
        const QString answer = runChild("write", {accounts, u"BP"_s, u"BIG"_s, u"4096"_s});
        QVERIFY2(answer.startsWith(u"error 80049d11"_s), qPrintable(answer));
        QCOMPARE(FileTestSupport::ReadFile(path), QByteArray("old contents"));
        QCOMPARE(QDir(bp).entryList(QDir::Files | QDir::Hidden), QStringList{u"BIG"_s});
    }

    void unreadableAndUnwritableFolder() {
        FileTestSupport::WriteFile(bp + u"/X"_s, "old contents");
        const bool root = ::geteuid() == 0;
        ::chmod(QFile::encodeName(bp).constData(), 0);
        QString answer = runChild("read", {accounts, u"BP"_s, u"X"_s}, root);
        if (answer == u"nouser"_s)
            QSKIP("no unprivileged user to run as");
        QVERIFY2(answer.startsWith(u"error 80049d10"_s) && answer.contains(u"ermission"_s),
                 qPrintable(answer));
        ::chmod(QFile::encodeName(bp).constData(), 0555);
        answer = runChild("write", {accounts, u"BP"_s, u"X"_s, QString()}, root);
        QVERIFY2(answer.startsWith(u"error 80049d12"_s), qPrintable(answer));
        ::chmod(QFile::encodeName(bp).constData(), 0755);
        QCOMPARE(FileTestSupport::ReadFile(bp + u"/X"_s), QByteArray("old contents"));
    }
};

BRIX_TEST_MAIN(tst_HostResource)
#include "tst_HostResource.moc"
