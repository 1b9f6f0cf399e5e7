#pragma once

// `brix --print-pdf OUT.pdf FILE`: prints a file to PDF with the editor's pages (header,
// line numbers, the user's font and wrapping) and exits, without a window or a display.

// Whether the command line asks for it.
bool IsPrintPdfCommand(int argc, char** argv);

// The whole run: 0 when the PDF was written, 2 with a message on standard error when the
// arguments, the file or the output are wrong.
int RunPrintPdf(int argc, char** argv);
