#include "BoxAnswers.h"
#include "DocumentFrame.h"
#include "TestEnv.h"
#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "recovery/RecoveryCopy.h"
#include "recovery/RunIdentity.h"
#include "recovery/frmAutoRecover.h"
#include "recovery/modAutoRecover.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"
#include "support/MsgBoxEx.h"

#include <QDir>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>
#include <QtTest>
#include <functional>
#include <sys/stat.h>

namespace {

QString storeFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Tolvek/Brix/AutoRecover");
}

int modeOf(const QString& path) {
    struct stat info = {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? (info.st_mode & 0777) : -1;
}

// A changed new document holding `text` as typed (no conversion on the way in).
std::shared_ptr<mvDocument> typedDocument(const QString& text) {
    auto document = mvDocument::Create();
    document->FileNew();
    int32_t column = 0, line = 0;
    document->Buffer()->InsertText(0, 0, text, 0, column, line);
    return document;
}

void writeFile(const QString& name, const QByteArray& bytes) {
    QDir().mkpath(storeFolder());
    QFile file(storeFolder() + QLatin1Char('/') + name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// Runs `act` on the recovery dialog each time it is up, while it lives; `act` closes it.
class DialogDriver {
public:
    explicit DialogDriver(std::function<void(frmAutoRecover&)> act) {
        QObject::connect(&timer_, &QTimer::timeout, [act] {
            auto* dialog = qobject_cast<frmAutoRecover*>(QApplication::activeModalWidget());
            if (dialog && dialog->isVisible())
                act(*dialog);
        });
        timer_.start(10);
    }

private:
    QTimer timer_;
};

QStringList rows(const frmAutoRecover& dialog) {
    QStringList texts;
    for (int i = 0; i < dialog.lstDocuments()->count(); ++i)
        texts << dialog.lstDocuments()->item(i)->text();
    return texts;
}

void press(frmAutoRecover& dialog, const char* name) {
    dialog.findChild<QPushButton*>(QLatin1String(name))->click();
}

} // namespace

class tst_modAutoRecover : public QObject {
    Q_OBJECT

    std::unique_ptr<DocumentFrame> frames;

    void clean() {
        DocumentFrame::CloseAll();
        QDir(storeFolder()).removeRecursively();
        modAutoRecover::Reset();
        Settings().AutoRecover = true;
    }

private slots:
    void initTestCase() { frames = std::make_unique<DocumentFrame>(); }
    void cleanupTestCase() { frames.reset(); }
    void init() { clean(); }
    void cleanup() { clean(); }

    void runNames_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<uint>("run");
        QTest::newRow("copy") << "0012ABCD.001" << 0x12ABCDu;
        QTest::newRow("lower case") << "0012abcd.17" << 0x12ABCDu;
        QTest::newRow("no dot") << "FF" << 0xFFu;
        QTest::newRow("foreign") << "notes.txt" << 0u;
        QTest::newRow("too long") << "123456789.001" << 0u;
    }
    void runNames() {
        QFETCH(QString, name);
        QFETCH(uint, run);
        QCOMPARE(RunIdentity::FromFileName(name), run);
    }

    void liveness() {
        const uint32_t self = RunIdentity::Current();
        QVERIFY(RunIdentity::IsAlive(self, RunIdentity::CurrentName().toUpper()));
        // An id reused by another program is not this program.
        QVERIFY(!RunIdentity::IsAlive(self, QStringLiteral("someother")));
        QProcess child;
        child.start(QStringLiteral("/bin/true"), {});
        QVERIFY(child.waitForFinished());
        QVERIFY(!RunIdentity::IsAlive(static_cast<uint32_t>(child.processId()),
                                      QStringLiteral("true")));
        QCOMPARE(modAutoRecover::RunFileName(7),
                 QStringLiteral("%1.007").arg(self, 8, 16, QLatin1Char('0')).toUpper());
    }

    // What stood in the editor comes back byte for byte, whatever it holds.
    void roundTrip_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("marks and tabs") << QStringLiteral("A = 1\x1d"
                                                          "2\x1c"
                                                          "3\n\tB = \"\t\"\nEND\n");
        QTest::newRow("no final line end") << QStringLiteral("* last line\nEND");
        QTest::newRow("unicode") << QStringLiteral("PRINT \"caf\u00e9 \U0001F600 \u0301x\"\n");
        QTest::newRow("CR LF typed") << QStringLiteral("A\r\nB\r\n\r\n");
        QTest::newRow("one blank") << QStringLiteral(" ");
    }
    void roundTrip() {
        QFETCH(QString, text);
        const auto original = typedDocument(text);
        const QString held = original->Buffer()->AllText();
        QVERIFY(original->AutoSaveFlag());
        QVERIFY(modAutoRecover::SaveCopies());

        const QString name = modAutoRecover::CopyNameOf(original->DocumentNumber());
        QCOMPARE(name, modAutoRecover::RunFileName(1));
        const QString path = storeFolder() + QLatin1Char('/') + name;
        QCOMPARE(modeOf(storeFolder()), 0700);
        QCOMPARE(modeOf(path), 0600);
        QCOMPARE(RecoveryCopy::Read(path)->LineCount(), original->Buffer()->NumLines());

        QVERIFY(modAutoRecover::RecoverCopy(path));
        const auto recovered = ProcessState::Instance().Documents->Snapshot().back();
        QVERIFY(recovered != original);
        QCOMPARE(recovered->Buffer()->AllText(),
                 QStringLiteral("*---> Recovered document: \n") + held);
        QVERIFY(recovered->IsDirty());
        QCOMPARE(recovered->Text(), mvDocument::EditorToHostText(
                                        QStringLiteral("*---> Recovered document: \n") + held));
    }

    // A write that can't finish leaves the copy before it whole.
    void failedWriteKeepsTheCopy() {
        QVERIFY(modAutoRecover::ResolveFolder(true));
        const QString path = storeFolder() + QStringLiteral("/00000001.001");
        QVERIFY(RecoveryCopy::Write(path, QStringLiteral("ID"), "old\n", 4));
        QVERIFY(QDir().mkdir(storeFolder() + QLatin1Char('/') +
                             RecoveryCopy::PartialName(QStringLiteral("00000001.001"))));
        QVERIFY(!RecoveryCopy::Write(path, QStringLiteral("ID"), "new\n", 4));
        QCOMPARE(RecoveryCopy::Read(path)->Body, QByteArray("old\n"));
    }

    void unchangedDocumentsGetNoCopy() {
        // A first start creates no folder until a pass runs.
        QVERIFY(!modAutoRecover::ResolveFolder(false));
        QVERIFY(modAutoRecover::RecoverableCopies().isEmpty());
        QVERIFY(!QFileInfo::exists(storeFolder()));
        const auto clean = mvDocument::Create();
        clean->FileNew();
        QVERIFY(!modAutoRecover::SaveCopies());
        QVERIFY(QFileInfo(storeFolder()).isDir());
        QVERIFY(modAutoRecover::CopyNameOf(clean->DocumentNumber()).isEmpty());
        QVERIFY(QDir(storeFolder()).isEmpty());
    }

    void hostOperationTokens() {
        typedDocument(QStringLiteral("X\n"));
        const int32_t first = modAutoRecover::BeginHostOperation();
        const int32_t second = modAutoRecover::BeginHostOperation();
        QCOMPARE(first, 1);
        QCOMPARE(second, 2);
        modAutoRecover::EndHostOperation(first);
        QVERIFY(modAutoRecover::OperationPending());
        // A run that ends inside a host call keeps its copies.
        modAutoRecover::CleanExit();
        QCOMPARE(QDir(storeFolder()).entryList(QDir::Files).size(), 1);
        modAutoRecover::Reset();
        modAutoRecover::EndHostOperation(modAutoRecover::BeginHostOperation());
        QVERIFY(!modAutoRecover::OperationPending());
        modAutoRecover::CleanExit();
        QVERIFY(QDir(storeFolder()).entryList(QDir::Files).isEmpty());
    }

    void autoRecoverOff() {
        typedDocument(QStringLiteral("X\n"));
        QVERIFY(modAutoRecover::SaveCopies());
        Settings().AutoRecover = false;
        QCOMPARE(modAutoRecover::BeginHostOperation(), 0);
        QVERIFY(!modAutoRecover::SaveCopies());
        modAutoRecover::CleanExit();
        QVERIFY(QDir(storeFolder()).entryList(QDir::Files).isEmpty());
    }

    void finalPassKeepsCopies() {
        typedDocument(QStringLiteral("X\n"));
        modAutoRecover::FinalPass();
        modAutoRecover::CleanExit();
        QCOMPARE(QDir(storeFolder()).entryList(QDir::Files).size(), 1);
        QVERIFY(!modAutoRecover::SaveCopies());
    }

    void orphans() {
        const QString self = RunIdentity::Hex(RunIdentity::Current());
        QProcess gone;
        gone.start(QStringLiteral("/bin/true"), {});
        QVERIFY(gone.waitForFinished());
        const QString dead = RunIdentity::Hex(static_cast<uint32_t>(gone.processId()));
        // A live process of another program under the id in a name.
        QProcess other;
        other.start(QStringLiteral("/bin/sleep"), {QStringLiteral("30")});
        QVERIFY(other.waitForStarted());
        const QString foreign = RunIdentity::Hex(static_cast<uint32_t>(other.processId()));
        writeFile(self + QStringLiteral(".001"), "ours\r\n");
        writeFile(dead + QStringLiteral(".001"), "dead\r\n");
        writeFile(foreign + QStringLiteral(".002"), "reused\r\n");
        writeFile(QStringLiteral("notes.txt"), "foreign");
        writeFile(QLatin1Char('.') + dead + QStringLiteral(".003.part"), "half");
        QDir().mkdir(storeFolder() + QStringLiteral("/sub.001"));

        QStringList expected{dead + QStringLiteral(".001"), foreign + QStringLiteral(".002"),
                             QStringLiteral("notes.txt")};
        expected.sort();
        QCOMPARE(modAutoRecover::RecoverableCopies(), expected);
        QVERIFY(!QFileInfo::exists(storeFolder() + QLatin1Char('/') + QLatin1Char('.') + dead +
                                   QStringLiteral(".003.part")));
        other.kill();
        other.waitForFinished();

        // Adopted, a copy is this run's, and this run's clean exit takes it.
        modAutoRecover::AdoptCopy(dead + QStringLiteral(".001"));
        QVERIFY(modAutoRecover::FileExists(storeFolder() + QLatin1Char('/') +
                                           modAutoRecover::RunFileName(2)));
        modAutoRecover::CleanExit();
        QCOMPARE(QDir(storeFolder()).entryList(QDir::Files),
                 QStringList({foreign + QStringLiteral(".002"), QStringLiteral("notes.txt")}));
    }

    void dialogRecoversCheckedRows() {
        writeFile(QStringLiteral("00000001.001"), "ONE\r\nA\nB");
        writeFile(QStringLiteral("00000001.002"), "\r\nC\n");
        const QStringList names{QStringLiteral("00000001.001"), QStringLiteral("00000001.002"),
                                QStringLiteral("00000001.404")};
        QList<QStringList> shown;
        int round = 0;
        const DialogDriver driver([&](frmAutoRecover& dialog) {
            shown << rows(dialog);
            QCOMPARE(dialog.lstDocuments()->item(0)->toolTip(), shown.last().first());
            if (round == 0)
                press(dialog, "cmdRecover"); // nothing checked: shown again
            else if (round == 1) {
                press(dialog, "cmdSelect");
                dialog.lstDocuments()->item(0)->setCheckState(Qt::Unchecked);
                press(dialog, "cmdRecover");
            } else {
                press(dialog, "cmdCancel");
            }
            ++round;
        });
        frmAutoRecover dialog;
        dialog.ShowDialog(storeFolder(), names, frames->Frame());
        QCOMPARE(round, 3);
        QCOMPARE(shown.at(0).size(), 2);
        QVERIFY(shown.at(0).at(0).startsWith(QStringLiteral("ONE          2 lines          ")));
        QVERIFY(shown.at(0).at(1).startsWith(QStringLiteral("          2 lines")));
        QCOMPARE(shown.at(2), QStringList{shown.at(0).at(0)});
        // The second copy became a document and a file of this run.
        const auto documents = ProcessState::Instance().Documents->Snapshot();
        QCOMPARE(documents.back()->Buffer()->AllText(),
                 QStringLiteral("*---> Recovered document: \nC\n"));
        QVERIFY(!modAutoRecover::FileExists(storeFolder() + QStringLiteral("/00000001.002")));
        QVERIFY(modAutoRecover::FileExists(storeFolder() + QStringLiteral("/00000001.001")));
    }

    void deleteAllAsksFirst_data() {
        QTest::addColumn<int>("copies");
        QTest::addColumn<QString>("question");
        QTest::newRow("one") << 1 << "copy of this document?";
        QTest::newRow("two") << 2 << "copies of these 2 documents?";
    }
    void deleteAllAsksFirst() {
        QFETCH(int, copies);
        QFETCH(QString, question);
        QStringList names;
        for (int i = 1; i <= copies; ++i) {
            names << QStringLiteral("00000001.00%1").arg(i);
            writeFile(names.last(), "ID\r\nX");
        }
        BoxAnswers answers;
        answers.Push({MsgBox::No, MsgBox::Yes});
        int shown = 0;
        const DialogDriver driver([&](frmAutoRecover& dialog) {
            ++shown;
            press(dialog, "cmdDelete");
        });
        frmAutoRecover dialog;
        dialog.ShowDialog(storeFolder(), names, frames->Frame());
        QCOMPARE(shown, 2);
        QCOMPARE(answers.Seen.size(), 2);
        QCOMPARE(answers.Seen.at(0).Text,
                 QStringLiteral("Are you sure you want to delete the recoverable ") + question +
                     QStringLiteral("\n\nOnce the recoverable copies are deleted, they can "
                                    "no longer be retrieved."));
        // Nothing is removed yet: the copies wait for this run's clean exit.
        QCOMPARE(QDir(storeFolder()).entryList(QDir::Files).size(), copies);
        QVERIFY(modAutoRecover::RecoverableCopies().isEmpty());
        modAutoRecover::CleanExit();
        QVERIFY(QDir(storeFolder()).entryList(QDir::Files).isEmpty());
    }
};

BRIX_TEST_MAIN(tst_modAutoRecover)
#include "tst_modAutoRecover.moc"
