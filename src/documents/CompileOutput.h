#pragma once

#include <QString>

// The text of a compile: the command sent to the host, and the compiler's output made fit
// for the results window.
class CompileOutput {
public:
    // Compiler, file, item and options, one blank between each. The blank before the
    // options stays when there are none, and nothing is quoted: the host reads it as typed.
    static QString Command(const QString& compiler, const QString& folder, const QString& item,
                           const QString& options);
    // The lines of `output` (CR LF) without blank lines and without rules of repeated
    // punctuation ("***", "=="), joined by CR LF; a bare line break when nothing is left.
    static QString Clean(const QString& output);
    // A rule that the cleaning drops: its first two characters the same character, one of
    // the punctuation below "0" or from ":" to "@".
    static bool IsRule(const QString& trimmedLine);
};
