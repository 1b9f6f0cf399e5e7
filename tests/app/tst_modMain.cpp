#include "TestEnv.h"

#include <QProcess>
#include <QSettings>
#include <csignal>

// Start-up loads the settings and shutdown saves them, seen from outside the real program.
class tst_modMain : public QObject {
    Q_OBJECT

    // A run of the editor copied into root/bin, in a home of its own, working in root/work.
    struct Run {
        QTemporaryDir Root;
        QString Path(const QString& relative) const { return Root.filePath(relative); }
    };

    // Starts the copy, waits until it is up, ends it with SIGTERM and waits for the end.
    static void runEditor(const Run& run) {
        for (const char* folder : {"bin", "home/.config", "work"})
            QVERIFY(QDir().mkpath(run.Path(QLatin1String(folder))));
        const QString program = run.Path(QStringLiteral("bin/brix"));
        QVERIFY(
            QFile::copy(qEnvironmentVariable("BRIX_BUILD_DIR") + QStringLiteral("/brix"), program));

        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        const QString home = run.Path(QStringLiteral("home"));
        env.insert(QStringLiteral("HOME"), home);
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
        env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/.local/share"));
        env.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/.cache"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        QProcess process;
        process.setProcessEnvironment(env);
        process.setWorkingDirectory(run.Path(QStringLiteral("work")));
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(program, {});
        QVERIFY(process.waitForStarted(10000));
        // Up once it catches SIGTERM: from then on the signal takes the orderly way out.
        QTRY_VERIFY_WITH_TIMEOUT(
            catchesSigterm(process.processId()) || process.state() == QProcess::NotRunning, 30000);
        QCOMPARE(process.state(), QProcess::Running);
        ::kill(static_cast<pid_t>(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
    }

    static bool catchesSigterm(qint64 pid) {
        QFile status(QStringLiteral("/proc/%1/status").arg(pid));
        if (!status.open(QIODevice::ReadOnly))
            return false;
        for (const QByteArray& line : status.readAll().split('\n'))
            if (line.startsWith("SigCgt:"))
                return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (SIGTERM - 1)) & 1;
        return false;
    }

private Q_SLOTS:
    // A fresh machine: the per-user store ends up with the marker and every default.
    void perUserStoreGetsEveryDefault() {
        Run run;
        runEditor(run);
        QSettings store(run.Path(QStringLiteral("home/.config/Tolvek/MultiValue Editor.conf")),
                        QSettings::IniFormat);
        store.beginGroup(QStringLiteral("Settings"));
        // The values of the program it replaces.
        const QString expected = QStringLiteral(
            "Default=7; FontName=Courier New; FontSize=10; FontMono=True; BackColor=-2147483643; "
            "NormalColor=-2147483640; NormalStyle=0; KeywordColor=-2147483640; KeywordStyle=0; "
            "StringColor=8388736; StringStyle=0; LabelColor=8388608; LabelStyle=0; "
            "CommentColor=32768; CommentStyle=0; ReservedColor=-2147483640; ReservedStyle=0; "
            "Highlight=True; LineWrap=False; TabSize=3; Margin=6; IndentStar=1; IndentBang=0; "
            "CompileCommand=BASIC; CompileOptions=; RecordLocking=True; ColorPrinting=False; "
            "NoGotoDialog=False; GotoLineNumber=False; AutoRecover=True; ToolbarHotTrack=True; "
            "ToolbarLargeIcons=False; MinMaxClose=False; ResultsFontName=; ResultsFontSize=; "
            "UserKeywords=; CaseSensitiveKeywords=False; RecentListSize=4; RecentFileCount=0; "
            "MainState=0; StatusbarVisible=True; ToolbarVisible=True");
        for (const QString& pair : expected.split(QStringLiteral("; "))) {
            const QString key = pair.section(QLatin1Char('='), 0, 0);
            QCOMPARE(key + QLatin1Char('=') +
                         store.value(key, QStringLiteral("<missing>")).toString(),
                     pair);
        }
        for (const char* key : {"MainLeft", "MainTop", "MainWidth", "MainHeight"})
            QVERIFY2(store.value(QLatin1String(key)).toInt() > 0, key);
    }
};

BRIX_TEST_MAIN(tst_modMain)
#include "tst_modMain.moc"
