// The document's print member; the work is DocumentPrinter's.
#include "documents/DocumentPrinter.h"
#include "documents/mvDocument.h"

void mvDocument::PrintText() {
    DocumentPrinter::PrintWithDialog(*this);
}
