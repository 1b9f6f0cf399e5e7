#include "EditHarness.h"
#include "TestEnv.h"

#include "editing/OpCommentBlock.h"
#include "language/SourceBuffer.h"
#include "settings/Moriox.h"

class tst_OpCommentBlock : public QObject {
    Q_OBJECT
    Moriox settings;

    void run(EditHarness& h, bool comment) {
        auto op = std::make_unique<OpCommentBlock>();
        op->Comment = comment;
        op->Ctl = h.Control();
        op->Options = &settings;
        h.Run(std::move(op));
    }

private Q_SLOTS:
    void marks_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("comment");
        QTest::addColumn<int>("star");
        QTest::addColumn<int>("bang");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const QString plain = QStringLiteral("X = 1\n   Y = 2\n\nZ");
        const QString marked = QStringLiteral("*A\n   * B\n   !C\n  X\n!\n");
        const auto add = [](const char* name, bool comment, int star, int bang, const QString& text,
                            const char* expected) {
            for (const auto kind : {EditHarness::Editor, EditHarness::Memory})
                QTest::addRow("%s, %s", name, EditHarness::Name(kind))
                    << int(kind) << comment << star << bang << text
                    << QString::fromLatin1(expected);
        };
        add("comment at the margin", true, 0, 0, plain, "  *X = 1\n  *   Y = 2\n  *\n  *Z");
        add("comment at the indentation", true, 1, 0, plain, "*X = 1\n   *Y = 2\n*\n*Z");
        add("uncomment takes the indentation along at the margin", false, 0, 0, marked,
            "A\n B\nC\n  X\n\n");
        add("uncomment takes the mark alone", false, 1, 2, marked, "A\n    B\n   C\n  X\n\n");
    }
    void marks() {
        QFETCH(int, kind);
        QFETCH(bool, comment);
        QFETCH(int, star);
        QFETCH(int, bang);
        QFETCH(QString, text);
        QFETCH(QString, expected);
        settings.Margin = 2;
        settings.IndentStar = static_cast<int16_t>(star);
        settings.IndentBang = static_cast<int16_t>(bang);
        EditHarness h(static_cast<EditHarness::Kind>(kind));
        h.SetText(text);
        h.Select(0, 0, 0, h.Buffer().NumLines());
        const QString before = h.State();
        run(h, comment);
        QCOMPARE(h.Text(), expected);
        const QString after = h.State();
        // Undo puts back the very marks and blanks, `!` included, whatever the settings say
        // by then.
        settings.IndentStar = settings.IndentBang = 1;
        h.CheckUndoRedo(before, after);
    }

    // The selection's columns move with the mark on its first and last line, and keep
    // their direction.
    void selectionFollows() {
        settings.Margin = 2;
        settings.IndentStar = 1;
        for (const auto kind : {EditHarness::Editor, EditHarness::Memory}) {
            EditHarness h(kind);
            h.SetText(QStringLiteral("  abc\n  def\nghi"));
            h.Select(3, 1, 4, 0);
            run(h, true);
            QCOMPARE(h.State(), QStringLiteral("  *abc\n  *def\nghi|4,1>5,0"));
            run(h, false);
            QCOMPARE(h.State(), QStringLiteral("  abc\n  def\nghi|3,1>4,0"));
        }
    }
};

BRIX_TEST_MAIN(tst_OpCommentBlock)
#include "tst_OpCommentBlock.moc"
