#include "DocumentFrame.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "shell/frmMain.h"
#include "support/HelpFile.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>

// Stands in for the desktop's browser.
class UrlRecorder : public QObject {
    Q_OBJECT
public:
    QList<QUrl> Urls;
public Q_SLOTS:
    void open(const QUrl& url) { Urls << url; }
};

class tst_HelpAndIcons : public QObject {
    Q_OBJECT

    static void touch(const QString& path) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<html></html>");
    }

private Q_SLOTS:
    // The installed manual wins over a build tree's copy; without either the name is composed
    // in the program's folder, which fails nothing until it is opened.
    void locate_data() {
        QTest::addColumn<QStringList>("pages");
        QTest::addColumn<QString>("expected");
        QTest::newRow("build tree")
            << QStringList{"bin/manual/index.html"} << "bin/manual/index.html";
        QTest::newRow("both") << QStringList{"bin/manual/index.html",
                                             "share/doc/brix/manual/index.html"}
                              << "share/doc/brix/manual/index.html";
        QTest::newRow("none") << QStringList{} << "bin/index.html";
    }
    void locate() {
        QFETCH(QStringList, pages);
        QFETCH(QString, expected);
        QTemporaryDir prefix;
        QDir().mkpath(prefix.filePath(QStringLiteral("bin")));
        for (const QString& page : pages)
            touch(prefix.filePath(page));
        const QString root = QDir(prefix.path()).canonicalPath();
        QCOMPARE(HelpFile::Locate(root + QStringLiteral("/bin"), QStringLiteral("index.html")),
                 root + QLatin1Char('/') + expected);
    }

    // F1 hands the start page to the desktop's browser and marks the help open; a manual
    // that isn't there opens nothing and says nothing.
    void f1OpensTheManual_data() {
        QTest::addColumn<bool>("present");
        QTest::newRow("manual there") << true;
        QTest::newRow("manual missing") << false;
    }
    void f1OpensTheManual() {
        QFETCH(bool, present);
        DocumentFrame frame;
        QTemporaryDir dir;
        const QString page = dir.filePath(QStringLiteral("index.html"));
        if (present)
            touch(page);
        ProcessState::Instance().HelpFilePath = page;
        UrlRecorder browser;
        QDesktopServices::setUrlHandler(QStringLiteral("file"), &browser, "open");
        frame.Frame()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(frame.Frame()));
        QTest::keyClick(frame.Frame(), Qt::Key_F1);
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        QCOMPARE(browser.Urls, present ? QList<QUrl>{QUrl::fromLocalFile(page)} : QList<QUrl>{});
        QCOMPARE(frame.Frame()->HelpOpen, present);
    }
};

BRIX_TEST_MAIN(tst_HelpAndIcons)
#include "tst_HelpAndIcons.moc"
