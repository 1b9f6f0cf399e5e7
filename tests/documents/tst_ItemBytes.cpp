#include "DocumentSession.h"
#include "FileTestSupport.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/clsDocView.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "shell/frmMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

// Bytes from disk to the editor and back, for local files and hosts of each mark form.
class tst_ItemBytes : public QObject {
    Q_OBJECT
    DocumentSession session;

    // Where an item of the form lives on disk, and its path for the document.
    struct Place {
        QString File;
        QString Path;
    };
    Place place(const QString& form, const QString& name) const {
        if (form == QLatin1String("local")) {
            const QString file = session.Account->LocalFolder() + QLatin1Char('/') + name;
            return {file, mvConnection::Instance().MakeFilePath({}, {}, file)};
        }
        return {session.Account->Accounts() + u"/DEMO/BP/"_s + name,
                u"mvdb://%1/DEMO/BP/%2"_s.arg(form, name)};
    }
    // Opens, lets `edit` change the document, saves; gives the bytes on disk after.
    template <typename Edit> QByteArray roundTrip(const Place& at, Edit&& edit) {
        auto document = mvDocument::Create();
        if (!document->FileOpen(at.Path, false))
            return "<not opened>";
        edit(*document);
        const bool saved = document->FileSave();
        document->FileClose(false);
        return saved ? FileTestSupport::ReadFile(at.File) : QByteArray("<not saved>");
    }
    static void addForms() {
        QTest::addColumn<QString>("form");
        QTest::newRow("local file") << "local";
        QTest::newRow("raw marks, Latin-1") << "rawlatin";
        QTest::newRow("raw marks, UTF-8") << "rawutf8";
        QTest::newRow("UTF-8 marks, UTF-8") << "utf8";
        QTest::newRow("UTF-8 marks, Latin-1") << "utf8latin";
    }

private Q_SLOTS:
    void initTestCase() {
        session.StartCase();
        Settings().RecordLocking = false;
    }
    void cleanupTestCase() { session.EndCase(); }
    void init() {
        session.StartTest();
        // Four more hosts over the same accounts, one for each way of keeping bytes.
        QByteArray profiles = FileTestSupport::ReadFile(session.Account->ProfilesFile());
        const QByteArray folder = session.Account->Accounts().toUtf8();
        for (const char* form : {"rawlatin:raw:ISO-8859-1", "rawutf8:raw:UTF-8", "utf8:utf8:UTF-8",
                                 "utf8latin:utf8:ISO-8859-1"}) {
            const QList<QByteArray> parts = QByteArray(form).split(':');
            profiles += "\n[" + parts[0] + "]\nAccountsFolder=" + folder +
                        "\nDefaultAccount=DEMO\nMarks=" + parts[1] + "\nCharset=" + parts[2] + "\n";
        }
        FileTestSupport::UseProfiles(profiles);
    }
    void cleanup() { session.EndTest(true); }

    // Each byte at the start, inside (twice in a row) and at the end of a line, all in one
    // file, while another line is edited; then a few bytes as the last of the file.
    void everyByteInEveryPlace_data() { addForms(); }
    void everyByteInEveryPlace() {
        QFETCH(QString, form);
        const Place at = place(form, u"BYTES"_s);
        const auto edited = [](mvDocument& d) {
            d.Editor()->SetCursor(2, 0);
            d.SetSelText(u"Z"_s);
        };
        QByteArray lines;
        for (int b = 0; b < 256; ++b) {
            const QByteArray c(1, char(b));
            // The number keeps apart lines that would read the same in the editor.
            lines += c + "x" + c + c + QByteArray::number(b) + c + "\n";
        }
        for (const char* last : {"\n", "\r", "\x1d", "\xfd", "\xff", "\xc3"}) {
            const QByteArray tail = lines + "L3 " + last;
            FileTestSupport::WriteFile(at.File, "L1\n" + tail);
            const QByteArray back = roundTrip(at, edited);
            QVERIFY2(back == "L1Z\n" + tail, qPrintable(QByteArray(last).toHex()));
        }
    }

    void randomBytesComeBack_data() { addForms(); }
    void randomBytesComeBack() {
        QFETCH(QString, form);
        const Place at = place(form, u"RANDOM"_s);
        QRandomGenerator random(1);
        QByteArray bytes(20000, Qt::Uninitialized);
        for (char& c : bytes)
            c = char(random.bounded(256));
        FileTestSupport::WriteFile(at.File, bytes);
        QCOMPARE(roundTrip(at, [](mvDocument&) {}), bytes);
    }

    // Marks typed into a local file follow the form the file has, and the setting in one
    // that has none.
    void typedMarksTakeTheFilesForm_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<bool>("rawSetting");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("no marks, raw") << QByteArray("A\n") << true << QByteArray("]A\n");
        QTest::newRow("no marks, UTF-8") << QByteArray("A\n") << false
                                         << QByteArray("\xEF\xA3\xBD"
                                                       "A\n");
        QTest::newRow("raw marks") << QByteArray("A\xFC\n") << false << QByteArray("]A\xFC\n");
        QTest::newRow("UTF-8 marks") << QByteArray("A\xEF\xA3\xBC\n") << true
                                     << QByteArray("\xEF\xA3\xBD"
                                                   "A\xEF\xA3\xBC\n");
    }
    void typedMarksTakeTheFilesForm() {
        QFETCH(QByteArray, before);
        QFETCH(bool, rawSetting);
        QFETCH(QByteArray, after);
        after.replace(']', '\xFD');
        Settings().LocalFileRawMarks = rawSetting;
        const Place at = place(u"local"_s, u"MARKS"_s);
        FileTestSupport::WriteFile(at.File, before);
        QCOMPARE(roundTrip(at,
                           [](mvDocument& d) {
                               d.Editor()->SetCursor(0, 0);
                               d.InsValue();
                           }),
                 after);
        Settings().LocalFileRawMarks = true;
    }
};

BRIX_TEST_MAIN(tst_ItemBytes)
#include "tst_ItemBytes.moc"
