#include "FileTestSupport.h"
#include "TestEnv.h"

#include "documents/BrowseModel.h"
#include "documents/ItemLock.h"
#include "documents/mvConnection.h"

#include <QTemporaryDir>
#include <sys/stat.h>

// The browser's logic on a real account and a local folder, and its dialog.
class tst_BrowseModel : public QObject {
    Q_OBJECT
    QTemporaryDir tmp;
    QString accounts, local;

    static std::shared_ptr<mvResource> resource(const QString& path) {
        return mvConnection::Instance().GetResource(path, true, false);
    }
    void lockByOther(const QString& item) {
        ItemLock::Holder other = ItemLock::Holder::Self();
        other.Machine = QStringLiteral("far-away");
        FileTestSupport::WriteFile(accounts + QStringLiteral("/ACC/.brix-locks/") +
                                       ItemLock::EntryName(QStringLiteral("BP"), item),
                                   other.ToBytes());
    }

private Q_SLOTS:
    void initTestCase() {
        accounts = tmp.path() + QStringLiteral("/accounts");
        local = tmp.path() + QStringLiteral("/local");
        for (const char* name :
             {"ACC/BP/MAIN", "ACC/BP/SUB", "ACC/BP/LOCKED", "ACC/LIB/X", "OTHER/BP/Y", "ACC/BP/RO"})
            FileTestSupport::WriteFile(accounts + QLatin1Char('/') + QLatin1String(name), "x\n");
        ::chmod(QFile::encodeName(accounts + QStringLiteral("/ACC/BP/RO")).constData(), 0444);
        FileTestSupport::WriteFile(accounts + QStringLiteral("/ACC/VOC"), "hashed");
        FileTestSupport::WriteFile(local + QStringLiteral("/keys.txt"), "k");
        FileTestSupport::WriteFile(local + QStringLiteral("/notes.md"), "n");
        FileTestSupport::WriteFile(local + QStringLiteral("/sub/inner.txt"), "i");
        FileTestSupport::UseProfiles("[prod]\nAccountsFolder=" + accounts.toUtf8() +
                                     "\nDefaultAccount=ACC\n");
        lockByOther(QStringLiteral("LOCKED"));
    }

    void hostLevels() {
        BrowseModel m(QStringLiteral("Open"), resource(QStringLiteral("mvdb://*/ACC/BP/")), {},
                      true, true);
        QCOMPARE(m.CurrentMode(), BrowseModel::Mode::Host);
        QVERIFY(m.Servers().contains(QStringLiteral("demo")));
        QCOMPARE(m.Accounts(), (QStringList{QStringLiteral("ACC"), QStringLiteral("OTHER")}));
        QCOMPARE(m.Files(), (QStringList{QStringLiteral("BP"), QStringLiteral("LIB")}));
        QCOMPARE(m.Items(), (QStringList{QStringLiteral("LOCKED"), QStringLiteral("MAIN"),
                                         QStringLiteral("RO"), QStringLiteral("SUB")}));
        m.SetAccount(QStringLiteral("OTHER"));
        m.SetFile(QStringLiteral("BP"));
        QCOMPARE(m.Items(), QStringList{QStringLiteral("Y")});
        QCOMPARE(m.PathFor(QStringLiteral("A B")), QStringLiteral("mvdb://prod/OTHER/BP/A%20B"));
        QCOMPARE(m.PathFor(QStringLiteral("mvdb://*/ACC/BP/MAIN")),
                 QStringLiteral("mvdb://*/ACC/BP/MAIN"));
        m.SetAccount(QStringLiteral("NOPE"));
        QVERIFY(m.Files().isEmpty());
        QVERIFY(m.LastError.contains(QStringLiteral("NOPE")));
    }

    void names() {
        BrowseModel many(QStringLiteral("Open"), nullptr, {}, true, false);
        QCOMPARE(many.SplitNames(QStringLiteral("\"A B\" \"C\"")),
                 (QStringList{QStringLiteral("A B"), QStringLiteral("C")}));
        QCOMPARE(many.SplitNames(QStringLiteral("  PLAIN NAME ")),
                 QStringList{QStringLiteral("PLAIN NAME")});
        QCOMPARE(many.JoinNames({QStringLiteral("A"), QStringLiteral("B C")}),
                 QStringLiteral("\"A\" \"B C\""));
        QCOMPARE(many.JoinNames({QStringLiteral("A B")}), QStringLiteral("A B"));
        BrowseModel one(QStringLiteral("Save"), nullptr, {}, false, false);
        QCOMPARE(one.SplitNames(QStringLiteral("\"A\" \"B\"")),
                 QStringList{QStringLiteral("\"A\" \"B\"")});
    }

    // Taken with record locking: locked items ask (Open only), unwritable ones come read
    // only without a question, failures give back what was taken.
    void take() {
        BrowseModel m(QStringLiteral("Open"), resource(QStringLiteral("mvdb://*/ACC/BP/")), {},
                      true, true);
        QStringList asked, reported;
        bool answer = true;
        auto ask = [&](const QString& q) {
            asked << q;
            return answer;
        };
        auto report = [&](const QString& r) { reported << r; };

        auto got = m.Take({QStringLiteral("MAIN"), QStringLiteral("LOCKED"), QStringLiteral("RO")},
                          false, ask, report);
        QCOMPARE(got.size(), size_t(3));
        QVERIFY(got[0]->Locked() && !got[0]->ReadOnly());
        QVERIFY(!got[1]->Locked() && got[1]->ReadOnly());
        QVERIFY(got[2]->ReadOnly());
        QCOMPARE(asked.size(), 1);
        QVERIFY2(asked[0].contains(QStringLiteral("far-away")), qPrintable(asked[0]));
        got.clear();

        answer = false;
        got = m.Take({QStringLiteral("LOCKED")}, false, ask, report);
        QVERIFY(got.empty());
        got = m.Take({QStringLiteral("LOCKED")}, true, ask, report);
        QCOMPARE(got.size(), size_t(1));
        QCOMPARE(asked.size(), 2);

        // A failure gives back the locks already taken.
        got = m.Take({QStringLiteral("MAIN"), QStringLiteral("a/b")}, false, ask, report);
        QVERIFY(got.empty());
        QCOMPARE(reported.size(), 1);
        auto again = mvConnection::Instance().GetResource(QStringLiteral("mvdb://*/ACC/BP/MAIN"),
                                                          false, true);
        QVERIFY(again->Locked());

        BrowseModel save(QStringLiteral("Save"), resource(QStringLiteral("mvdb://*/ACC/BP/SUB")),
                         {}, false, true);
        QCOMPARE(save.InitialName(), QStringLiteral("SUB"));
        QVERIFY(save.Take({QStringLiteral("LOCKED")}, false, ask, report).empty());
        QCOMPARE(asked.size(), 2);
        QCOMPARE(reported.size(), 2);
    }

    void localFiles() {
        BrowseModel m(QStringLiteral("Export"),
                      resource(QStringLiteral("file://") + local + QStringLiteral("/")),
                      QStringLiteral("txt"), false, false);
        QCOMPARE(m.CurrentMode(), BrowseModel::Mode::Local);
        auto names = [&] {
            QStringList out;
            for (const auto& e : m.LocalEntries())
                out << e.Name + (e.Container ? QStringLiteral("/") : QString());
            return out;
        };
        QCOMPARE(names(), (QStringList{QStringLiteral("sub/"), QStringLiteral("keys.txt")}));
        QCOMPARE(mvPath::Parse(m.PathFor(QStringLiteral("list"))).ItemID,
                 QStringLiteral("list.txt"));
        QCOMPARE(mvPath::Parse(m.PathFor(QStringLiteral("list.csv"))).ItemID,
                 QStringLiteral("list.csv"));
        QVERIFY(m.Enter(QStringLiteral("sub")));
        QCOMPARE(names(), QStringList{QStringLiteral("inner.txt")});
        m.LocalUp();
        QCOMPARE(m.LocalFolder(), local);
        BrowseModel import(QStringLiteral("Import"), nullptr, QStringLiteral("txt"), false, false);
        QCOMPARE(mvPath::Parse(import.PathFor(local + QStringLiteral("/list"))).ItemID,
                 QStringLiteral("list"));
    }
};

BRIX_TEST_MAIN(tst_BrowseModel)
#include "tst_BrowseModel.moc"
