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

void writeFile(const QString& name, const QByteArray& bytes) {
    FileTestSupport::WriteFile(storeFolder() + QLatin1Char('/') + name, bytes);
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

        const auto typed = mvDocument::Create();
        typed->FileNew();
        typed->ReplaceSelection(QStringLiteral("X\n"));
        const int32_t first = modAutoRecover::BeginHostOperation();
        QCOMPARE(modAutoRecover::BeginHostOperation(), 2);
        modAutoRecover::EndHostOperation(first);
        // A run that ends inside a host call keeps its copies.
        modAutoRecover::CleanExit();
        const QStringList kept = QDir(storeFolder()).entryList(QDir::Files);
        QCOMPARE(kept.size(), 1);
        QCOMPARE(modeOf(storeFolder()), 0700);
        QCOMPARE(modeOf(storeFolder() + QLatin1Char('/') + kept.first()), 0600);

        Settings().AutoRecover = false;
        QCOMPARE(modAutoRecover::BeginHostOperation(), 0);
    }

    void orphans() {
        const QString self = RunIdentity::Hex(RunIdentity::Current());
        const QString dead = QStringLiteral("FFFFFFF0"); // no process has so high an id
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
    }

    // Recover with nothing checked brings the dialog again; then the second is recovered and
    // the first deleted after a question.
    void dialog() {
        writeFile(QStringLiteral("00000001.001"), "ONE\r\nA\nB");
        writeFile(QStringLiteral("00000001.002"), "\r\nC\n");
        BoxAnswers answers;
        answers.Push(MsgBox::Yes);
        QStringList shown; // each time up: the count of rows, '|', the first row
        QTimer driver;
        QObject::connect(&driver, &QTimer::timeout, [&] {
            auto* form = qobject_cast<frmAutoRecover*>(QApplication::activeModalWidget());
            if (!form || !form->isVisible())
                return;
            QListWidget* list = form->lstDocuments();
            shown << QString::number(list->count()) + QLatin1Char('|') + list->item(0)->text();
            if (shown.size() == 2) {
                form->findChild<QPushButton*>(QStringLiteral("cmdSelect"))->click();
                list->item(0)->setCheckState(Qt::Unchecked);
            }
            form->findChild<QPushButton*>(
                    QString::fromLatin1(shown.size() == 3 ? "cmdDelete" : "cmdRecover"))
                ->click();
        });
        driver.start(10);
        frmAutoRecover dialog;
        dialog.ShowDialog(storeFolder(),
                          {QStringLiteral("00000001.001"), QStringLiteral("00000001.002"),
                           QStringLiteral("00000001.404")},
                          frames->Frame());
        QCOMPARE(shown.size(), 3);
        QVERIFY(shown.at(0).startsWith(QStringLiteral("2|ONE          2 lines          ")));
        QCOMPARE(shown.at(2), QStringLiteral("1|") + shown.at(0).mid(2));
        const auto recovered = ProcessState::Instance().Documents->Snapshot().back();
        QCOMPARE(recovered->Buffer()->AllText(), QStringLiteral("*---> Recovered document: \nC\n"));
        QVERIFY(recovered->IsDirty());
        QCOMPARE(answers.Texts(),
                 QStringList{QStringLiteral("Are you sure you want to delete the recoverable copy "
                                            "of this document?\n\nOnce the recoverable copies "
                                            "are deleted, they can no longer be retrieved.")});
        QVERIFY(modAutoRecover::RecoverableCopies().isEmpty());
        modAutoRecover::CleanExit();
        QVERIFY(QDir(storeFolder()).entryList(QDir::Files).isEmpty());
    }
};

BRIX_TEST_MAIN(tst_modAutoRecover)
#include "tst_modAutoRecover.moc"
