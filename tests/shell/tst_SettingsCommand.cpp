#include "DocumentFrame.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "language/BufferLexer.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/ColorCombo.h"
#include "settings/Moriox.h"
#include "settings/frmSettings.h"
#include "shell/CommandBar.h"
#include "shell/CommandDispatcher.h"
#include "shell/frmMain.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QToolBar>

// The settings commands from the frame: each opens its tab, and OK reaches the open
// documents at once while Cancel leaves them as they were.
class tst_SettingsCommand : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFrame> frames;
    std::shared_ptr<mvDocument> document;

    SourceView& editor() const { return *document->Editor(); }
    long fore(int32_t kind) const {
        return editor().SendScintilla(QsciScintillaBase::SCI_STYLEGETFORE,
                                      ScintillaBuffer::StyleOfKind(kind));
    }
    long edge() const { return editor().SendScintilla(QsciScintillaBase::SCI_GETEDGECOLUMN); }
    // Changes the dialog once it is up, then leaves it with OK or Cancel.
    static void whenShown(std::function<void(frmSettings&)> act, bool ok) {
        QTimer::singleShot(0, [act, ok] {
            auto* form = qobject_cast<frmSettings*>(QApplication::activeModalWidget());
            QVERIFY(form);
            act(*form);
            ok ? form->accept() : form->reject();
        });
    }

private Q_SLOTS:
    void initTestCase() { frames = std::make_unique<DocumentFrame>(); }
    void cleanupTestCase() { frames.reset(); }
    void init() {
        ProcessState::Instance().Settings = std::make_unique<Moriox>();
        document = mvDocument::Create();
        QVERIFY(document->FileNew());
    }
    void cleanup() {
        document.reset();
        DocumentFrame::CloseAll();
    }

    // Cancel leaving the settings as they were is tst_frmSettings'.
    void okReachesOpenDocuments() {
        QToolBar* toolbar = frames->Frame()->Bar().ToolBarWidget();
        const auto observed = [&] {
            return QStringList{QString::number(fore(6), 16), QString::number(edge()),
                               QString::number(editor().TabSize()),
                               QString::number(editor().Lexer().defaultFont().pointSize()),
                               QString::number(toolbar->iconSize().width())};
        };
        whenShown(
            [](frmSettings& form) {
                auto* colour = form.findChild<ColorCombo*>(QStringLiteral("cbColor3"));
                colour->Fill();
                colour->Choose(13);
                form.findChild<QLineEdit*>(QStringLiteral("txtMargin"))->setText("9");
                form.findChild<QLineEdit*>(QStringLiteral("txtTabSize"))->setText("5");
                form.TakeFont(QFont(QStringLiteral("Liberation Mono"), 14));
                form.findChild<QCheckBox*>(QStringLiteral("chkLargeIcons"))->click();
            },
            true);
        frames->Frame()->Dispatcher().Dispatch(QStringLiteral("OptTools"), false);
        QCOMPARE(observed(), (QStringList{"ff", "9", "5", "14", "32"}));
    }
};

BRIX_TEST_MAIN(tst_SettingsCommand)
#include "tst_SettingsCommand.moc"
