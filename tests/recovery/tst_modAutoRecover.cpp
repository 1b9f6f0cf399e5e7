#include "BoxAnswers.h"
#include "DocumentFrame.h"
#include "FileTestSupport.h"
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
    FileTestSupport::WriteFile(storeFolder() + QLatin1Char('/') + name, bytes);
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

    // Byte for byte round trips of any text are the crash test's; here the text as typed.
    void recoverCopy() {
        const auto original = typedDocument(QStringLiteral("A\x1d"
                                                           "2\r\n\tB\U0001F600"));
        QVERIFY(modAutoRecover::SaveCopies());
        const QString path = storeFolder() + QLatin1Char('/') +
                             modAutoRecover::CopyNameOf(original->DocumentNumber());
        QCOMPARE(modeOf(storeFolder()), 0700);
        QCOMPARE(modeOf(path), 0600);
        QVERIFY(modAutoRecover::RecoverCopy(path));
        const auto recovered = ProcessState::Instance().Documents->Snapshot().back();
        QCOMPARE(recovered->Buffer()->AllText(), QStringLiteral("*---> Recovered document: \nA\x1d"
                                                                "2\n\tB\U0001F600"));
        QVERIFY(recovered->IsDirty());
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

    void passesAndHostOperations() {
        // A first start creates no folder until a pass runs, and a clean document gets no copy.
        QVERIFY(!QFileInfo::exists(storeFolder()));
        const auto untouched = mvDocument::Create();
        untouched->FileNew();
        QVERIFY(!modAutoRecover::SaveCopies());
        QVERIFY(QFileInfo(storeFolder()).isDir());

        typedDocument(QStringLiteral("X\n"));
        const int32_t first = modAutoRecover::BeginHostOperation();
        QCOMPARE(modAutoRecover::BeginHostOperation(), 2);
        modAutoRecover::EndHostOperation(first);
        // A run that ends inside a host call keeps its copies.
        modAutoRecover::CleanExit();
        QCOMPARE(QDir(storeFolder()).entryList(QDir::Files).size(), 1);

        modAutoRecover::Reset();
        modAutoRecover::EndHostOperation(modAutoRecover::BeginHostOperation());
        Settings().AutoRecover = false;
        QCOMPARE(modAutoRecover::BeginHostOperation(), 0);
        modAutoRecover::CleanExit();
        QVERIFY(QDir(storeFolder()).entryList(QDir::Files).isEmpty());
    }

    void orphans() {
        const QString self = RunIdentity::Hex(RunIdentity::Current());
        QProcess gone;
        gone.start(QStringLiteral("/bin/true"), {});
        QVERIFY(gone.waitForFinished());
        const QString dead = RunIdentity::Hex(static_cast<uint32_t>(gone.processId()));
        // A live process of another program under the id of a name.
        QProcess other;
        other.start(QStringLiteral("/bin/sleep"), {QStringLiteral("30")});
        QVERIFY(other.waitForStarted());
        const QString reused = RunIdentity::Hex(static_cast<uint32_t>(other.processId()));
        writeFile(self + QStringLiteral(".001"), "ours\r\n");
        writeFile(dead + QStringLiteral(".001"), "dead\r\n");
        writeFile(reused + QStringLiteral(".002"), "reused\r\n");
        writeFile(QStringLiteral("notes.txt"), "foreign");
        writeFile(QLatin1Char('.') + dead + QStringLiteral(".003.part"), "half");
        QDir().mkdir(storeFolder() + QStringLiteral("/sub.001"));

        QStringList expected{dead + QStringLiteral(".001"), reused + QStringLiteral(".002"),
                             QStringLiteral("notes.txt")};
        expected.sort();
        QCOMPARE(modAutoRecover::RecoverableCopies(), expected);
        other.kill();
        other.waitForFinished();
        // Adopted, a copy is this run's, and this run's clean exit takes it with the half write.
        modAutoRecover::AdoptCopy(dead + QStringLiteral(".001"));
        modAutoRecover::CleanExit();
        QCOMPARE(QDir(storeFolder()).entryList(QDir::Files | QDir::Hidden),
                 QStringList({reused + QStringLiteral(".002"), QStringLiteral("notes.txt")}));
    }

    void dialog() {
        writeFile(QStringLiteral("00000001.001"), "ONE\r\nA\nB");
        writeFile(QStringLiteral("00000001.002"), "\r\nC\n");
        const QStringList names{QStringLiteral("00000001.001"), QStringLiteral("00000001.002"),
                                QStringLiteral("00000001.404")};
        BoxAnswers answers;
        answers.Push(MsgBox::Yes);
        QList<QStringList> shown;
        const DialogDriver driver([&](frmAutoRecover& dialog) {
            shown << rows(dialog);
            if (shown.size() == 2) {
                press(dialog, "cmdSelect");
                dialog.lstDocuments()->item(0)->setCheckState(Qt::Unchecked);
            }
            // Nothing checked the first time, so the dialog comes again.
            press(dialog, shown.size() == 3 ? "cmdDelete" : "cmdRecover");
        });
        frmAutoRecover dialog;
        dialog.ShowDialog(storeFolder(), names, frames->Frame());
        QCOMPARE(shown.size(), 3);
        QVERIFY(shown.at(0).at(0).startsWith(QStringLiteral("ONE          2 lines          ")));
        QCOMPARE(shown.at(2), QStringList{shown.at(0).at(0)});
        QCOMPARE(ProcessState::Instance().Documents->Snapshot().back()->Buffer()->AllText(),
                 QStringLiteral("*---> Recovered document: \nC\n"));
        QCOMPARE(answers.Texts(),
                 QStringList{QStringLiteral("Are you sure you want to delete the recoverable copy "
                                            "of this document?\n\nOnce the recoverable copies "
                                            "are deleted, they can no longer be retrieved.")});
        // Both copies are this run's now and wait for its clean exit.
        QVERIFY(modAutoRecover::RecoverableCopies().isEmpty());
        modAutoRecover::CleanExit();
        QVERIFY(QDir(storeFolder()).entryList(QDir::Files).isEmpty());
    }
};

BRIX_TEST_MAIN(tst_modAutoRecover)
#include "tst_modAutoRecover.moc"
