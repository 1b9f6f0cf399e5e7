// The document's compile member: checks that the host's copy is the one in the editor, runs
// the compiler there and hands its output to the results window.
#include "app/ProcessState.h"
#include "documents/BusyPointer.h"
#include "documents/CompileMessageLines.h"
#include "documents/CompileOutput.h"
#include "documents/DocumentSteps.h"
#include "documents/mvDocument.h"
#include "documents/mvHost.h"
#include "documents/mvResource.h"
#include "language/LineMessageMarks.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "support/IFrame.h"
#include "support/MsgBoxEx.h"
#include "support/ShowError.h"

#include <QApplication>

namespace {

// The capability of a host to run commands for this client.
constexpr int32_t ExecuteCommands = 12;

} // namespace

void mvDocument::Compile() {
    EnsureView();
    if (!resource_) {
        DocumentSteps::Tell(
            QStringLiteral("Unable to compile un-saved document! Use Save-As from the File menu "
                           "to save the document, then compile it."));
        return;
    }
    if (resource_->Provider() == QLatin1String("file")) {
        DocumentSteps::Tell(QStringLiteral("Unable to compile document saved as a local file!"));
        return;
    }
    if (Buffer() && Buffer()->Modified()) {
        // The host compiles its own copy: an older one must never pass for the editor's.
        if (DocumentSteps::Ask(QStringLiteral("Unable to compile un-saved document! Do you want "
                                              "to save the document, then compile it?"),
                               MsgBox::YesNo) != MsgBox::Yes)
            return;
        if (!FileSave())
            return;
    }
    if (!resource_->HostAllows(ExecuteCommands)) {
        BrixMessage(QStringLiteral("Host does not allow Brix to EXECUTE any utilities. Please "
                                   "enable this feature!"),
                    MsgBox::OKOnly);
        return;
    }

    // On an error of the host the status text and the pointer stay until the next command.
    DocumentSteps::SetStatus(QStringLiteral("Compiling program on host system"));
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        QApplication::setOverrideCursor(Qt::WaitCursor);
    const Moriox& settings = Settings();
    const QString command = CompileOutput::Command(settings.CompileCommand, resource_->Folder(),
                                                   resource_->ItemID(), settings.CompileOptions);
    const QString output = resource_->Host()->Execute(command, QString(), 0);
    DocumentSteps::SetStatus(QString());
    const QString text = CompileOutput::Clean(output);
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        QApplication::restoreOverrideCursor();
    QApplication::beep();
    markMessageLines(text);
    if (IFrame* frame = ProcessState::Instance().Frame())
        frame->ShowResults(text);
}

void mvDocument::markMessageLines(const QString& output) {
    SourceView* editor = Editor();
    if (!editor)
        return;
    std::vector<std::pair<int32_t, QString>> marks;
    for (const CompileMessageLines::Entry& entry : CompileMessageLines::Parse(output))
        marks.emplace_back(entry.Line - 1, entry.Message);
    editor->MessageMarks().Set(marks);
}
