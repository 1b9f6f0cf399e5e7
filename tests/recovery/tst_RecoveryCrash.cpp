#include "DocumentFrame.h"
#include "FileTestSupport.h"
#include "TestEnv.h"
#include "app/ProcessState.h"
#include "app/modMain.h"
#include "documents/DocumentCollection.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "recovery/frmAutoRecover.h"
#include "recovery/modAutoRecover.h"
#include "shell/frmMain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTimer>
#include <csignal>
#include <map>
#include <unistd.h>

namespace {

// Child side: the program as a user starts it, driven by a timer that edits and ticks.
QString g_childFolder;
quint32 g_childSeed = 0;

QByteArray hashOf(const QString& text) {
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex();
}

void say(const QByteArray& line) {
    const QByteArray out = line + '\n';
    [[maybe_unused]] const ssize_t n = ::write(1, out.constData(), static_cast<size_t>(out.size()));
}

void editOnce(QRandomGenerator& random, mvDocument& document) {
    static const QStringList pieces =
        QStringLiteral("\t|\x1d|\x1c|caf\u00e9|\U0001F600|a\u0301|\r\n|\n|\u65e5\u672c")
            .split(QLatin1Char('|'));
    ScintillaBuffer& buffer = *document.Buffer();
    const int32_t line = static_cast<int32_t>(random.bounded(quint32(buffer.NumLines())));
    if (random.bounded(2) && line + 1 < buffer.NumLines())
        return buffer.DeleteText(0, line, 0, line + 1);
    // An undoable operation, as the editing commands make them.
    document.Editor()->SetCursor(0, line);
    document.ReplaceSelection(pieces.at(static_cast<int>(random.bounded(quint32(pieces.size())))));
}

void startChild() {
    if (g_childFolder.isEmpty())
        return;
    QTimer::singleShot(0, [] {
        static QRandomGenerator random(g_childSeed);
        for (const char* name : {"A", "B", "C"}) {
            auto document = mvDocument::Create();
            document->FileOpen(mvConnection::Instance().MakeFilePath(
                                   {}, {}, g_childFolder + QLatin1Char('/') + QLatin1String(name)),
                               false);
        }
        say("READY");
        auto* timer = new QTimer(ProcessState::Instance().MainWindow);
        QObject::connect(timer, &QTimer::timeout, [timer] {
            static int step = 0;
            ProcessState& s = ProcessState::Instance();
            if (!s.MainWindow || !s.Documents) {
                timer->stop();
                return;
            }
            ++step;
            QByteArray line = "STATE " + QByteArray::number(step);
            for (const auto& document : s.Documents->Snapshot()) {
                // C stays as it was read.
                if (document->ItemID() != QLatin1String("C") && random.bounded(3) != 0)
                    editOnce(random, *document);
                if (document->AutoSaveFlag())
                    line += ' ' + document->ItemID().toUtf8() + '=' +
                            hashOf(document->Buffer()->AllText());
            }
            say(line);
            s.MainWindow->AutoSaveTimerTick();
            if (s.MainWindow->AutoSaveTicks == 0)
                say("PASSED " + QByteArray::number(step));
        });
        timer->start(5);
    });
}
Q_COREAPP_STARTUP_FUNCTION(startChild)

using DocumentHashes = std::map<QString, QByteArray>;

struct ChildLog {
    std::map<int, DocumentHashes> states;
    int lastPassed = 0;
    int lastState = 0;
};

// Each line is one write, so a kill leaves whole lines only.
ChildLog parseLog(const QByteArray& out) {
    ChildLog log;
    for (const QByteArray& line : out.split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() >= 2 && words.at(0) == "PASSED")
            log.lastPassed = words.at(1).toInt();
        if (words.size() < 2 || words.at(0) != "STATE")
            continue;
        DocumentHashes& state = log.states[log.lastState = words.at(1).toInt()];
        for (const QByteArray& word : words.mid(2))
            state[QString::fromUtf8(word.split('=').at(0))] = word.split('=').value(1);
    }
    return log;
}

// What the recovery dialog brings back: item id to the hash of the text behind the marker.
DocumentHashes recoverThroughDialog(QWidget* owner, int& rows) {
    rows = 0;
    QTimer driver;
    QObject::connect(&driver, &QTimer::timeout, [&rows] {
        auto* dialog = qobject_cast<frmAutoRecover*>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        rows = dialog->lstDocuments()->count();
        dialog->findChild<QPushButton*>(QStringLiteral("cmdSelect"))->click();
        dialog->findChild<QPushButton*>(QStringLiteral("cmdRecover"))->click();
    });
    driver.start(10);
    modAutoRecover::ScanForRecoverableCopies(owner);
    DocumentHashes recovered;
    const QString marker = QStringLiteral("*---> Recovered document: ");
    for (const auto& document : ProcessState::Instance().Documents->Snapshot()) {
        const QString text = document->Buffer()->AllText();
        const qsizetype end = text.indexOf(QLatin1Char('\n'));
        if (!text.startsWith(marker) || end < 0)
            continue;
        recovered[text.mid(marker.size(), end - marker.size())] = hashOf(text.mid(end + 1));
    }
    return recovered;
}

} // namespace

class tst_RecoveryCrash : public QObject {
    Q_OBJECT

    std::unique_ptr<DocumentFrame> frames;
    QTemporaryDir files;

    QByteArray said; // by the child so far

    void startChild(QProcess& child, quint32 pattern) {
        said.clear();
        child.setProgram(QCoreApplication::applicationFilePath());
        child.setArguments(
            {QStringLiteral("--crash-child"), files.path(), QString::number(pattern)});
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start();
        QVERIFY(child.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT((said += child.readAllStandardOutput()).contains("READY") ||
                                     child.state() == QProcess::NotRunning,
                                 60000);
        QVERIFY(child.state() == QProcess::Running);
    }

private slots:
    void initTestCase() {
        frames = std::make_unique<DocumentFrame>();
        auto write = [this](const char* name, const QByteArray& bytes) {
            FileTestSupport::WriteFile(files.filePath(QLatin1String(name)), bytes);
        };
        write("A", "* A\n\tCRT \"caf\xc3\xa9\"\nEND\n");
        write("B", "* B\r\nX = 1\r\nEND");
        write("C", "* C\nEND\n");
    }
    void cleanupTestCase() { frames.reset(); }
    void init() {
        QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
             QStringLiteral("/Tolvek/Brix/AutoRecover"))
            .removeRecursively();
        modAutoRecover::Reset();
    }
    void cleanup() {
        DocumentFrame::CloseAll();
        modAutoRecover::DeleteCopies(false);
        modAutoRecover::Reset();
    }

    // Killed: what the last finished pass copied comes back, none half written. Ended by a
    // signal, also under the start-up dialog: a last pass, settings saved, every copy kept.
    void ended_data() {
        QTest::addColumn<int>("signal");
        QTest::addColumn<quint32>("pattern");
        QTest::addColumn<int>("waitMs");
        QTest::addColumn<bool>("dialogUp");
        for (int round = 0; round < 4; ++round) {
            const quint32 pattern = QRandomGenerator::global()->generate();
            const int waitMs = static_cast<int>(QRandomGenerator::global()->bounded(50, 900));
            QTest::addRow("killed, edits %u after %d ms", pattern, waitMs)
                << int(SIGKILL) << pattern << waitMs << false;
        }
        QTest::newRow("SIGHUP") << int(SIGHUP) << 7u << 150 << false;
        QTest::newRow("SIGTERM under the dialog") << int(SIGTERM) << 7u << 150 << true;
    }
    void ended() {
        QFETCH(int, signal);
        QFETCH(quint32, pattern);
        QFETCH(int, waitMs);
        QFETCH(bool, dialogUp);
        const QString settingsFile =
            QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
            QStringLiteral("/Tolvek/MultiValue Editor.conf");
        QFile::remove(settingsFile);
        if (dialogUp) { // a copy of an ended run: no process has so high an id
            QVERIFY(modAutoRecover::ResolveFolder(true));
            FileTestSupport::WriteFile(modAutoRecover::Folder() + QStringLiteral("/FFFFFFF0.001"),
                                       "LOST\r\nX\n");
        }
        QProcess child;
        startChild(child, pattern);
        QTest::qWait(waitMs);
        ::kill(static_cast<pid_t>(child.processId()), signal);
        QVERIFY(child.waitForFinished(60000));
        ChildLog log = parseLog(said + child.readAllStandardOutput());
        int rows = 0;
        DocumentHashes recovered = recoverThroughDialog(frames->Frame(), rows);
        QCOMPARE(rows, static_cast<int>(recovered.size()));
        QCOMPARE(recovered.erase(QStringLiteral("LOST")), size_t(dialogUp));
        if (signal != SIGKILL) {
            QCOMPARE(child.exitStatus(), QProcess::NormalExit);
            QCOMPARE(child.exitCode(), 0);
            QVERIFY(QFileInfo::exists(settingsFile));
            QCOMPARE(recovered, log.states[log.lastState]);
            return;
        }
        // The latest state a copy shows; 0 for none (a mixture, or half written).
        auto stateOf = [&log](const QString& id, const QByteArray& hash) {
            int at = 0;
            for (const auto& [step, state] : log.states)
                if (state.count(id) && state.at(id) == hash)
                    at = step;
            return at;
        };
        for (const auto& [id, hash] : recovered)
            QVERIFY2(stateOf(id, hash) > 0, qPrintable(id));
        if (log.lastPassed > 0)
            for (const auto& [id, hash] : log.states.at(log.lastPassed))
                QVERIFY2(recovered.count(id) && stateOf(id, recovered.at(id)) >= log.lastPassed,
                         qPrintable(id));
        QVERIFY(!recovered.count(QStringLiteral("C")));
    }
};

int main(int argc, char** argv) {
    if (argc == 4 && qstrcmp(argv[1], "--crash-child") == 0) {
        // HOME and the data folders are the parent's, so both see one store.
        QStandardPaths::setTestModeEnabled(true);
        g_childFolder = QString::fromLocal8Bit(argv[2]);
        g_childSeed = static_cast<quint32>(QByteArray(argv[3]).toULongLong());
        int childArgc = 1;
        return RunBrix(childArgc, argv);
    }
    TestEnv::Init();
    QApplication app(argc, argv);
    tst_RecoveryCrash tc;
    return QTest::qExec(&tc, argc, argv);
}
#include "tst_RecoveryCrash.moc"
