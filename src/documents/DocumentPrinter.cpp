#include "documents/DocumentPrinter.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "documents/mvResource.h"
#include "language/PrintClass.h"
#include "language/SourcePrinter.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/BusyCursor.h"
#include "support/IFrame.h"
#include "support/ShowError.h"

#include <QPrintDialog>
#include <algorithm>
#include <exception>

void DocumentPrinter::NameHeader(PrintClass& hook, const mvResource* resource) {
    hook.FileName.clear();
    hook.ItemName.clear();
    if (!resource)
        return;
    // A name the connection can't give leaves the header without it.
    try {
        if (resource->Provider() == QStringLiteral("file")) {
            hook.FileName = resource->ShortName();
        } else {
            hook.FileName = resource->Folder();
            hook.ItemName = resource->ItemID();
        }
    } catch (const BrixError&) {
    }
}

bool DocumentPrinter::Print(mvDocument& document, SourcePrinter& printer) {
    document.EnsureView();
    SourceView* editor = document.Editor();
    if (!editor)
        return false;
    // The editor's own hook, or one for this run if it has none.
    auto hook = std::dynamic_pointer_cast<PrintClass>(editor->PrintHook());
    if (!hook)
        hook = std::make_shared<PrintClass>();
    NameHeader(*hook, document.DocumentResource().get());

    int32_t first = 0;
    int32_t last = -1;
    if (printer.QPrinter::printRange() == QPrinter::Selection && editor->HasSelection()) {
        int32_t startColumn = 0, startLine = 0, endColumn = 0, endLine = 0;
        editor->GetSelection(startColumn, startLine, endColumn, endLine);
        first = std::min(startLine, endLine);
        last = std::max(startLine, endLine);
    }
    return printer.PrintLines(*editor, *hook, Settings().ColorPrinting, first, last);
}

bool DocumentPrinter::PrintWithDialog(mvDocument& document) {
    try {
        document.EnsureView();
        SourceView* editor = document.Editor();
        if (!editor)
            return false;
        IFrame* frame = ProcessState::Instance().Frame();
        QWidget* owner = frame ? frame->OwnerWindow() : nullptr;
        SourcePrinter printer;
        printer.setDocName(document.DisplayName());
        QPrintDialog dialog(&printer, owner);
        dialog.setOption(QAbstractPrintDialog::PrintSelection, editor->HasSelection());
        dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
        dialog.setOption(QAbstractPrintDialog::PrintToFile, true);
        dialog.setOption(QAbstractPrintDialog::PrintCollateCopies, true);
        if (dialog.exec() != QDialog::Accepted)
            return false;
        BusyCursor busy;
        if (Print(document, printer))
            return true;
        ShowError(QStringLiteral("The document could not be printed."), owner);
    } catch (const BrixError& error) {
        ShowError(error.Description);
    } catch (const std::exception& error) {
        ShowError(QString::fromLocal8Bit(error.what()));
    }
    return false;
}

bool DocumentPrinter::PrintToPdf(mvDocument& document, const QString& path) {
    SourcePrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setDocName(document.DisplayName());
    return Print(document, printer);
}
