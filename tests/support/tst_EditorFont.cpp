#include "TestEnv.h"

#include "support/EditorFont.h"

#include <QFile>

class tst_EditorFont : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutTheFile() {
        QTemporaryDir dir;
        bool installed = EditorFont::Add(dir.path());
        QVERIFY(!installed);
        EditorFont::Remove(installed);
        QVERIFY(!installed);
    }

    void notAFont() {
        QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("mvluconw.ttf")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const char junk[] = "\x00\x01\x00\x00 not really a font";
        file.write(junk, sizeof junk - 1);
        file.close();
        QVERIFY(!EditorFont::Add(dir.path()));
    }

    // Any TrueType file under that name is taken for this process and given back at the end.
    void addAndRemove() {
        const QString source =
            QStringLiteral("/usr/share/fonts/truetype/liberation/LiberationMono-Regular.ttf");
        if (!QFile::exists(source))
            QSKIP("fonts-liberation is not installed");
        QTemporaryDir dir;
        QVERIFY(QFile::copy(source, dir.filePath(QStringLiteral("mvluconw.ttf"))));
        bool installed = EditorFont::Add(dir.path());
        QVERIFY(installed);
        EditorFont::Remove(installed);
        QVERIFY(!installed);
        // A second removal does nothing.
        EditorFont::Remove(installed);
        QVERIFY(!installed);
    }
};

BRIX_TEST_MAIN(tst_EditorFont)
#include "tst_EditorFont.moc"
