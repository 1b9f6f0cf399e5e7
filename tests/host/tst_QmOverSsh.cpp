#include "FileTestSupport.h"
#include "QmHostFixture.h"
#include "SshServerFixture.h"
#include "TestEnv.h"

#include "documents/mvConnection.h"
#include "documents/mvHost.h"
#include "documents/mvResource.h"

// A real QM host reached over ssh, as a user with a remote host has it: browse, open, save,
// compile.
class tst_QmOverSsh : public QObject {
    Q_OBJECT
    QmHostFixture host;
    std::unique_ptr<SshServerFixture> server;

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(host.Ready(), qPrintable(host.Error()));
        server = std::make_unique<SshServerFixture>();
        if (!server->Started())
            QSKIP(qPrintable(server->Error()));
        QByteArray profile = host.Profile(QStringLiteral("qmssh"));
        profile.replace("Transport=local\n", server->ProfileLines());
        FileTestSupport::UseProfiles("[General]\nDefault=qmssh\n\n" + profile);
        QVERIFY(mvConnection::Instance().Profiles().Warnings.isEmpty());
    }
    void cleanupTestCase() { server.reset(); }

    void browseSaveAndCompile() {
        host.WriteItem(QStringLiteral("BP"), QStringLiteral("HELLO"), "CRT 'Hello'\nEND\n");
        mvConnection& connection = mvConnection::Instance();
        const auto files =
            connection.GetResource(host.ItemPath(QStringLiteral("BP"), {}), true, false)
                ->Children();
        bool listed = false;
        for (const auto& child : files)
            listed = listed || child.Name == QLatin1String("HELLO");
        QVERIFY(listed);

        // A name QM escapes, with characters a shell would act on.
        const QString id = QStringLiteral("A B'$;`X/Y");
        auto item = connection.GetResource(host.ItemPath(QStringLiteral("BP"), id), false, true);
        QVERIFY(item->Locked());
        item->WriteText(QStringLiteral("CRT 'over ssh'\r\nEND\r\n"));
        item->Release();
        QCOMPARE(host.ReadItem(QStringLiteral("BP"), QStringLiteral("A B'$%Y`X%SY")),
                 QByteArray("CRT 'over ssh'\nEND\n"));

        auto qm = connection.HostFor(QStringLiteral("*"), host.Account());
        const QString compiled = qm->Execute(QStringLiteral("BASIC BP HELLO"));
        QVERIFY2(compiled.contains(QStringLiteral("0 error(s)")), qPrintable(compiled));
        QCOMPARE(qm->Execute(QStringLiteral("RUN BP HELLO")).trimmed(), QStringLiteral("Hello"));
    }
};

BRIX_TEST_MAIN(tst_QmOverSsh)
#include "tst_QmOverSsh.moc"
