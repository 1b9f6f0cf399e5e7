#include "BoxAnswers.h"
#include "TestEnv.h"

#include "language/clsKeyword.h"
#include "language/clsKeywords.h"
#include "language/frmKeywords.h"
#include "support/MsgBoxEx.h"

#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>

// The keyword editor on a real table: its checks and their messages, the block options,
// and lists through files with their repair questions.
class tst_frmKeywords : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    static QStringList shown(const frmKeywords& form) {
        QStringList items;
        const auto* list = form.findChild<QListWidget*>(QStringLiteral("lstKeywords"));
        for (int i = 0; i < list->count(); ++i)
            items << list->item(i)->text();
        return items;
    }
    static void type(frmKeywords& form, const QString& word) {
        form.findChild<QLineEdit*>(QStringLiteral("txtKeyword"))->setText(word);
    }
    static void pick(frmKeywords& form, const char* option) {
        form.findChild<QRadioButton*>(QLatin1String(option))->click();
    }
    QString write(const QByteArray& bytes) {
        const QString path = dir.filePath(QStringLiteral("list.txt"));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return QString();
        file.write(bytes);
        return path;
    }

private Q_SLOTS:
    // Add: the refusal, the question about odd characters, and the block options.
    void add_data() {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("option");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QString>("listed");
        const QString refusal = "Keyword may not contain a blank, comma, semicolon or parenthesis!";
        const QString question = "Keyword '$X#' may contain an invalid character: '$' '#'\n"
                                 "Are you sure you want to add this keyword?";
        const auto row = [](const char* name, const char* word, const char* option, int answer,
                            const QStringList& messages, const char* listed) {
            QTest::newRow(name) << word << option << answer << messages << listed;
        };
        row("plain", "  LOGMSG ", "optNone", 0, {}, "LOGMSG");
        row("opens first", "WITH", "optFirst", 0, {}, "WITH[");
        row("refused", "A B", "optNone", 0, {refusal}, "");
        row("asked yes", "$X#", "optNone", MsgBox::Yes, {question}, "$X#");
        row("asked no", "$X#", "optNone", MsgBox::No, {question}, "");
        row("empty", "   ", "optNone", 0, {}, "");
    }
    void add() {
        QFETCH(QString, word);
        QFETCH(QString, option);
        QFETCH(int, answer);
        QFETCH(QStringList, messages);
        QFETCH(QString, listed);
        BoxAnswers answers;
        if (answer)
            answers.Push(answer);
        clsKeywords table;
        frmKeywords form(table, 4, QStringLiteral("Define User Keywords"));
        // The three ways of opening a block stand under "begins a block".
        if (QStringList{"optAny", "optFirst", "optLast"}.contains(option))
            pick(form, "optBegin");
        pick(form, option.toLatin1().constData());
        type(form, word);
        form.AddKeyword();
        QCOMPARE(answers.Texts(), messages);
        QCOMPARE(shown(form), listed.isEmpty() ? QStringList() : QStringList{listed});
        QCOMPARE(table.GetKeywordList(4, QStringLiteral(" ")), QString());
        form.accept();
        QCOMPARE(table.GetKeywordList(4, QStringLiteral(" ")), listed);
    }

    void removeAndCancel() {
        clsKeywords table;
        table.SetKeywordList(4, QStringLiteral(" "), QStringLiteral("ONE TWO+ THREE"));
        frmKeywords form(table, 4, QString());
        auto* list = form.findChild<QListWidget*>(QStringLiteral("lstKeywords"));
        list->item(1)->setSelected(true);
        form.RemoveKeyword();
        QCOMPARE(shown(form), (QStringList{"ONE", "THREE"}));
        form.reject();
        QCOMPARE(table.GetKeywordList(4, QStringLiteral(" ")), QStringLiteral("ONE TWO+ THREE"));
    }

    void exportWritesCrLf() {
        clsKeywords table;
        table.SetKeywordList(4, QStringLiteral(" "), QStringLiteral("ONE TWO+ WITH["));
        frmKeywords form(table, 4, QString());
        const QString path = dir.filePath(QStringLiteral("out.txt"));
        QVERIFY(form.ExportTo(path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("ONE\r\nTWO+\r\nWITH["));
    }

    // Yes imports the corrected word, No skips the word, Cancel ends the import; the
    // question names the last kind of bad character.
    // The boxes show the CR LF of the messages as one line break.
    void importRepairs() {
        BoxAnswers answers;
        answers.Push({MsgBox::Yes, MsgBox::No, MsgBox::Yes, MsgBox::Cancel});
        clsKeywords table;
        frmKeywords form(table, 4, QString());
        const QString path =
            write("GOOD+\r\nBAD,WORD-\r\nSKIP ME\r\nF(X)\r\n\r\nSTOP;HERE\r\nLAST\n");
        QVERIFY(form.ImportFrom(path));
        const auto ask = [](const char* word, const char* what, const char* corrected) {
            return QStringLiteral(
                       "Keyword '%1' contains an invalid character: %2. Import as '%3'?\n"
                       "Click 'Yes' to import corrected keyword, 'No' to skip this "
                       "keyword, or Cancel to cancel the import operation.")
                .arg(word, what, corrected);
        };
        QCOMPARE(answers.Texts(),
                 (QStringList{ask("BAD,WORD", "comma", "BADWORD"),
                              ask("SKIP ME", "blank", "SKIPME"), ask("F(X)", "parentheses", "FX"),
                              ask("STOP;HERE", "semicolon", "STOPHERE")}));
        QCOMPARE(shown(form), (QStringList{"GOOD+", "BADWORD-", "FX"}));
    }

    void importRefusesWhatIsNotText() {
        BoxAnswers answers;
        clsKeywords table;
        table.SetKeywordList(4, QStringLiteral(" "), QStringLiteral("KEEP"));
        frmKeywords form(table, 4, QString());
        QVERIFY(!form.ImportFrom(write("ONE\r\n\xff\xfeTWO")));
        QCOMPARE(answers.Texts().size(), 1);
        QVERIFY(answers.Texts().front().contains(QStringLiteral("nothing was imported")));
        QCOMPARE(shown(form), QStringList{QStringLiteral("KEEP")});
        QVERIFY(!form.ImportFrom(dir.filePath(QStringLiteral("missing.txt"))));
    }
};

BRIX_TEST_MAIN(tst_frmKeywords)
#include "tst_frmKeywords.moc"
