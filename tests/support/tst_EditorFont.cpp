#include "SettingsSandbox.h"
#include "TestEnv.h"

#include "support/EditorFont.h"

#include <QFile>
#include <QFontDatabase>

class tst_EditorFont : public QObject {
    Q_OBJECT

    // The fonts this process has added that still give a family.
    static int applicationFonts() {
        int count = 0;
        for (int id = 0; id < 64; ++id)
            count += !QFontDatabase::applicationFontFamilies(id).isEmpty();
        return count;
    }

private Q_SLOTS:
    // No file, or one that is no font: nothing is taken.
    void refused() {
        QTemporaryDir dir;
        QVERIFY(!EditorFont::Add(dir.path()));
        QFile file(dir.filePath(QStringLiteral("mvluconw.ttf")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(Bytes("\x00\x01\x00\x00 not really a font"));
        file.close();
        QVERIFY(!EditorFont::Add(dir.path()));
        QCOMPARE(applicationFonts(), 0);
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
        QCOMPARE(applicationFonts(), 0);
    }
};

BRIX_TEST_MAIN(tst_EditorFont)
#include "tst_EditorFont.moc"
