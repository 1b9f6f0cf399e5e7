#include "FileTestSupport.h"
#include "QmHostFixture.h"
#include "TestEnv.h"

#include "documents/CatalogLookup.h"
#include "documents/frmBrowse.h"
#include "documents/mvConnection.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

// Programs catalogued by QM itself (CATALOG) lead back to their source items.
class tst_CatalogLookup : public QObject {
    Q_OBJECT
    QmHostFixture host;

    void compileAndCatalog(const QString& file, const QString& item, const QString& catalog) {
        host.WriteItem(file, item,
                       "SUBROUTINE " + item.toLatin1() + "(X)\nX = '" + item.toLatin1() +
                           "'\nRETURN\nEND\n");
        const QByteArray compiled = host.Run(QStringLiteral("BASIC %1 %2").arg(file, item));
        QVERIFY2(compiled.contains("no errors"), compiled.constData());
        const QByteArray added = host.Run(catalog);
        QVERIFY2(added.contains("added to"), added.constData());
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(host.Ready(), qPrintable(host.Error()));
        host.Run(QStringLiteral("CREATE.FILE LIB DIRECTORY"));
        compileAndCatalog("BP", "REALSUB", "CATALOG BP RALIAS REALSUB");
        compileAndCatalog("BP", "OWNSUB", "CATALOG BP OWNSUB");
        compileAndCatalog("BP", "LSUB", "CATALOG BP LALIAS LSUB LOCAL");
        compileAndCatalog("LIB", "LIBSUB", "CATALOG LIB LIBX LIBSUB");
        // Two connections to the host: one that runs commands and one that doesn't.
        QByteArray off = host.Profile(QStringLiteral("qmoff"));
        off.replace("AllowCommands=true", "AllowCommands=false");
        FileTestSupport::UseProfiles("[General]\nDefault=qm\n\n" + host.Profile() + '\n' + off);
    }

    void find_data() {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* tag, const char* profile, const char* name,
                            const char* expected) {
            QTest::newRow(tag) << QString(profile) << QString(name) << QString(expected);
        };
        row("private, another name", "qm", "RALIAS", "BP REALSUB private");
        row("private, own name, lower case", "qm", "ownsub", "BP OWNSUB private");
        row("another file", "qm", "LIBX", "LIB LIBSUB private");
        row("local", "qm", "LALIAS", "BP LSUB local");
        row("system verb", "qm", "BASIC", "");
        row("not catalogued", "qm", "NOSUCH", "");
        row("not a name", "qm", "A B;LIST VOC", "");
        // VOC is read by a command: without commands only the private catalogue is seen.
        row("local, no commands", "qmoff", "LALIAS", "");
        row("private, no commands", "qmoff", "RALIAS", "BP REALSUB private");
    }
    void find() {
        QFETCH(QString, profile);
        QFETCH(QString, name);
        QFETCH(QString, expected);
        CatalogLookup lookup(mvConnection::Instance().HostFor(profile, host.Account()));
        const auto source = lookup.Find(name);
        const QString found =
            source ? QStringList{source->File, source->Item, source->Catalogue.section(' ', 0, 0)}
                         .join(' ')
                   : QString();
        QCOMPARE(found, expected);
    }

    // Opening a missing item that the account catalogues offers the catalogued source.
    void browserOffersTheSource_data() {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("note");
        const auto row = [](const char* item, const char* file, const char* name,
                            const char* note) {
            QTest::newRow(item) << QString(item) << QString(file) << QString(name) << QString(note);
        };
        row("LIBX", "LIB", "LIBSUB",
            "LIBX is not in BP: the private catalogue has it from LIB LIBSUB.");
        // An item of the file, and a name that is neither.
        row("REALSUB", "BP", "REALSUB", "");
        row("NOSUCH", "BP", "NOSUCH", "");
    }
    void browserOffersTheSource() {
        QFETCH(QString, item);
        QFETCH(QString, file);
        QFETCH(QString, name);
        QFETCH(QString, note);
        frmBrowse dialog(
            QStringLiteral("Open"),
            mvConnection::Instance().GetResource(host.ItemPath("BP", item), false, false), {},
            false, false, nullptr);
        QCOMPARE(dialog.findChild<QComboBox*>("cboFile")->currentText(), file);
        QCOMPARE(dialog.findChild<QLineEdit*>("txtName")->text(), name);
        QCOMPARE(dialog.findChild<QLabel*>("lblNote")->text(), note);
        const QListWidgetItem* current = dialog.findChild<QListWidget*>("lstItems")->currentItem();
        QCOMPARE(current ? current->text() : QString(), name == "NOSUCH" ? QString() : name);
    }
};

BRIX_TEST_MAIN(tst_CatalogLookup)
#include "tst_CatalogLookup.moc"
