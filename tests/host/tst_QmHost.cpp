#include "QmHostFixture.h"
#include "TestEnv.h"

#include "documents/BrowseModel.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvHost.h"
#include "documents/mvResource.h"
#include "language/ScintillaBuffer.h"

// Against a real QM host: each side reads what the other wrote, escaped names included,
// and commands come back whole.
class tst_QmHost : public QObject {
    Q_OBJECT
    QmHostFixture host;
    int programs = 0;

    static QString vm() { return QString(QChar(0xF8FD)); }
    static QString sm() { return QString(QChar(0xF8FC)); }

    // A QM program that READs the item and prints every byte's code.
    QByteArray dumpInQm(const QString& id) {
        return host.RunProgram(QStringLiteral("DUMP%1").arg(++programs),
                               "OPEN 'BP' TO F ELSE STOP\nREAD R FROM F, \"" + id.toLatin1() +
                                   "\" ELSE STOP\nFOR I = 1 TO LEN(R) ; CRT SEQ(R[I,1]):' ': ; "
                                   "NEXT I\nEND\n");
    }
    static QByteArray codes(const QByteArray& bytes) {
        QByteArray s;
        for (char c : bytes)
            s += QByteArray::number(static_cast<unsigned char>(c)) + ' ';
        return s;
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(host.Ready(), qPrintable(host.Error()));
        host.UseProfile();
    }

    // Brix writes the item; a QM program reads it back byte for byte, marks as marks.
    void qmReadsWhatBrixWrote_data() {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("marks") << QStringLiteral("MARKS")
                               << QStringLiteral("a") + vm() + QStringLiteral("b") + sm() +
                                      QStringLiteral("c\r\nd\u00e9")
                               << QByteArray("a\xfd"
                                             "b\xfc"
                                             "c\xfe"
                                             "d\xe9");
        QTest::newRow("escaped") << QStringLiteral("~A/B %C=D") << QStringLiteral("x\r\ny")
                                 << QByteArray("x\xfey");
        QTest::newRow("leading dot")
            << QStringLiteral(".DOT") << QStringLiteral("z") << QByteArray("z");
    }
    void qmReadsWhatBrixWrote() {
        QFETCH(QString, id);
        QFETCH(QString, text);
        QFETCH(QByteArray, bytes);
        auto item = mvConnection::Instance().GetResource(host.ItemPath(QStringLiteral("BP"), id),
                                                         false, false);
        item->WriteText(text);
        QCOMPARE(dumpInQm(id), codes(bytes));
    }

    // QM writes the item; Brix lists it (VOC, a hashed file, not) and opens it with its marks
    // in the text.
    void brixShowsWhatQmWrote_data() {
        QTest::addColumn<QString>("id");
        for (const char* id : {"QMARKS", "~Q/S %R=T", ".QDOT"})
            QTest::newRow(id) << QString::fromLatin1(id);
    }
    void brixShowsWhatQmWrote() {
        QFETCH(QString, id);
        QCOMPARE(
            host.RunProgram(
                QStringLiteral("WRITER%1").arg(++programs),
                "OPEN 'BP' TO F ELSE STOP\nWRITE 'a':@VM:'b':@SVM:'c':@FM:'d':CHAR(233) TO F, \"" +
                    id.toLatin1() + "\"\nCRT 'written'\nEND\n"),
            QByteArray("written\r\n"));
        BrowseModel m(QStringLiteral("Open"),
                      mvConnection::Instance().GetResource(host.ItemPath(QStringLiteral("BP"), {}),
                                                           true, false),
                      {}, false, false);
        QCOMPARE(m.Accounts(), QStringList{host.Account()});
        QVERIFY2(!m.Files().contains(QStringLiteral("VOC")), qPrintable(m.Files().join(',')));
        QVERIFY2(m.Items().contains(id), qPrintable(m.Items().join(',')));
        auto doc = mvDocument::Create();
        QVERIFY(doc->FileOpen(host.ItemPath(QStringLiteral("BP"), id), true));
        QCOMPARE(doc->Buffer()->AllText(), QStringLiteral("a\x1d"
                                                          "b\x1c"
                                                          "c\nd\u00e9\n"));
        doc->FileClose(false);
    }

    // Far more than a screen of output comes back whole, without a pager's prompt or a
    // terminal's control sequences, and in the account's folder.
    void executeGivesTheWholeOutput() {
        auto qm = mvConnection::Instance().HostFor(QStringLiteral("*"), host.Account());
        const QString listing = qm->Execute(QStringLiteral("LIST VOC"));
        QVERIFY2(listing.count(QStringLiteral("\r\n")) > 200, qPrintable(listing.left(2000)));
        QVERIFY(listing.contains(QStringLiteral("record(s) listed")));
        QVERIFY(!listing.contains(QLatin1Char('\x1b')));
        QVERIFY(!listing.contains(QStringLiteral("Action (")));
        QCOMPARE(qm->Execute(QStringLiteral("WHO")).trimmed().section(QLatin1Char(' '), 1),
                 host.Account());
    }
};

BRIX_TEST_MAIN(tst_QmHost)
#include "tst_QmHost.moc"
