#include "FileTestSupport.h"
#include "TestEnv.h"

#include "documents/BrowseModel.h"
#include "documents/ItemLock.h"
#include "documents/mvConnection.h"

#include <QTemporaryDir>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

// The browser's logic on a real account and a local folder.
class tst_BrowseModel : public QObject {
    Q_OBJECT
    QTemporaryDir tmp;
    QString accounts, local;

    static std::shared_ptr<mvResource> resource(const QString& path) {
        return mvConnection::Instance().GetResource(path, true, false);
    }
    void lockByOther(const QString& item) {
        ItemLock::Holder other = ItemLock::Holder::Self();
        other.Machine = u"far-away"_s;
        FileTestSupport::WriteFile(accounts + u"/ACC/.brix-locks/"_s +
                                       ItemLock::EntryName(u"BP"_s, item),
                                   other.ToBytes());
    }

private Q_SLOTS:
    void initTestCase() {
        accounts = tmp.path() + u"/accounts"_s;
        local = tmp.path() + u"/local"_s;
        for (const char* name :
             {"ACC/BP/MAIN", "ACC/BP/SUB", "ACC/BP/LOCKED", "ACC/LIB/X", "OTHER/BP/Y", "ACC/BP/RO"})
            FileTestSupport::WriteFile(accounts + QLatin1Char('/') + QLatin1String(name), "x\n");
        ::chmod(QFile::encodeName(accounts + u"/ACC/BP/RO"_s).constData(), 0444);
        FileTestSupport::WriteFile(accounts + u"/ACC/VOC"_s, "hashed");
        FileTestSupport::WriteFile(local + u"/keys.txt"_s, "k");
        FileTestSupport::WriteFile(local + u"/notes.md"_s, "n");
        FileTestSupport::WriteFile(local + u"/sub/inner.txt"_s, "i");
        FileTestSupport::UseProfiles("[prod]\nAccountsFolder=" + accounts.toUtf8() +
                                     "\nDefaultAccount=ACC\n");
        lockByOther(u"LOCKED"_s);
    }

    void hostLevels() {
        BrowseModel m(u"Open"_s, resource(u"mvdb://*/ACC/BP/"_s), {}, true, true);
        QCOMPARE(m.CurrentMode(), BrowseModel::Mode::Host);
        QVERIFY(m.Servers().contains(u"demo"_s));
        QCOMPARE(m.Accounts(), (QStringList{u"ACC"_s, u"OTHER"_s}));
        QCOMPARE(m.Files(), (QStringList{u"BP"_s, u"LIB"_s}));
        QCOMPARE(m.Items(), (QStringList{u"LOCKED"_s, u"MAIN"_s, u"RO"_s, u"SUB"_s}));
        m.SetAccount(u"OTHER"_s);
        m.SetFile(u"BP"_s);
        QCOMPARE(m.Items(), QStringList{u"Y"_s});
        QCOMPARE(m.PathFor(u"A B"_s), u"mvdb://prod/OTHER/BP/A%20B"_s);
        QCOMPARE(m.PathFor(u"mvdb://*/ACC/BP/MAIN"_s), u"mvdb://*/ACC/BP/MAIN"_s);
        m.SetAccount(u"NOPE"_s);
        QVERIFY(m.Files().isEmpty());
        QVERIFY(m.LastError.contains(u"NOPE"_s));
    }

    void names() {
        BrowseModel many(u"Open"_s, nullptr, {}, true, false);
        QCOMPARE(many.SplitNames(u"\"A B\" \"C\""_s), (QStringList{u"A B"_s, u"C"_s}));
        QCOMPARE(many.SplitNames(u"  PLAIN NAME "_s), QStringList{u"PLAIN NAME"_s});
        QCOMPARE(many.JoinNames({u"A"_s, u"B C"_s}), u"\"A\" \"B C\""_s);
        QCOMPARE(many.JoinNames({u"A B"_s}), u"A B"_s);
        BrowseModel one(u"Save"_s, nullptr, {}, false, false);
        QCOMPARE(one.SplitNames(u"\"A\" \"B\""_s), QStringList{u"\"A\" \"B\""_s});
    }

    // Taken with record locking: locked items ask (Open only), unwritable ones come read
    // only without a question, failures give back what was taken.
    void take() {
        BrowseModel m(u"Open"_s, resource(u"mvdb://*/ACC/BP/"_s), {}, true, true);
        QStringList asked, reported;
        bool answer = true;
        auto ask = [&](const QString& q) {
            asked << q;
            return answer;
        };
        auto report = [&](const QString& r) { reported << r; };

        auto got = m.Take({u"MAIN"_s, u"LOCKED"_s, u"RO"_s}, false, ask, report);
        QCOMPARE(got.size(), size_t(3));
        QVERIFY(got[0]->Locked() && !got[0]->ReadOnly());
        QVERIFY(!got[1]->Locked() && got[1]->ReadOnly());
        QVERIFY(got[2]->ReadOnly());
        QCOMPARE(asked.size(), 1);
        QVERIFY2(asked[0].contains(u"far-away"_s), qPrintable(asked[0]));
        got.clear();

        answer = false;
        got = m.Take({u"LOCKED"_s}, false, ask, report);
        QVERIFY(got.empty());
        got = m.Take({u"LOCKED"_s}, true, ask, report);
        QCOMPARE(got.size(), size_t(1));
        QCOMPARE(asked.size(), 2);

        // A failure gives back the locks already taken.
        got = m.Take({u"MAIN"_s, u"a/b"_s}, false, ask, report);
        QVERIFY(got.empty());
        QCOMPARE(reported.size(), 1);
        auto again = mvConnection::Instance().GetResource(u"mvdb://*/ACC/BP/MAIN"_s, false, true);
        QVERIFY(again->Locked());

        BrowseModel save(u"Save"_s, resource(u"mvdb://*/ACC/BP/SUB"_s), {}, false, true);
        QVERIFY(save.Take({u"LOCKED"_s}, false, ask, report).empty());
        QCOMPARE(asked.size(), 2);
        QCOMPARE(reported.size(), 2);
    }

    void localFiles() {
        BrowseModel m(u"Export"_s, resource(u"file://"_s + local + u"/"_s), u"txt"_s, false, false);
        QCOMPARE(m.CurrentMode(), BrowseModel::Mode::Local);
        auto names = [&] {
            QStringList out;
            for (const auto& e : m.LocalEntries())
                out << e.Name + (e.Container ? u"/"_s : QString());
            return out;
        };
        QCOMPARE(names(), (QStringList{u"sub/"_s, u"keys.txt"_s}));
        QCOMPARE(mvPath::Parse(m.PathFor(u"list"_s)).ItemID, u"list.txt"_s);
        QCOMPARE(mvPath::Parse(m.PathFor(u"list.csv"_s)).ItemID, u"list.csv"_s);
        QVERIFY(m.Enter(u"sub"_s));
        QCOMPARE(names(), QStringList{u"inner.txt"_s});
        m.LocalUp();
        QCOMPARE(m.LocalFolder(), local);
        BrowseModel import(u"Import"_s, nullptr, u"txt"_s, false, false);
        QCOMPARE(mvPath::Parse(import.PathFor(local + u"/list"_s)).ItemID, u"list"_s);
    }
};

BRIX_TEST_MAIN(tst_BrowseModel)
#include "tst_BrowseModel.moc"
