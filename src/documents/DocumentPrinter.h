#pragma once

#include <QString>

class PrintClass;
class SourcePrinter;
class mvDocument;
class mvResource;

// Prints a document: the header names by the kind of its resource, the print dialog of the
// platform, and PDF output for listings made without a person.
class DocumentPrinter {
public:
    // No resource: no names. A local file: its short name. An item: its file and its id.
    static void NameHeader(PrintClass& hook, const mvResource* resource);
    // Prints on `printer` as it is set up: the whole text, or the selected lines when the
    // printer's range is the selection. False when the printer could not be started.
    static bool Print(mvDocument& document, SourcePrinter& printer);
    // Asks for the printer, pages and copies first; false when cancelled or failed.
    static bool PrintWithDialog(mvDocument& document);
    // The whole text as a PDF file at `path`.
    static bool PrintToPdf(mvDocument& document, const QString& path);
};
