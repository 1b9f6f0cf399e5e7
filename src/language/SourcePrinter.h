#pragma once

#include <QFont>
#include <Qsci/qsciprinter.h>
#include <cstdint>

class ISourceDraw2;
class SourceView;

// Prints the lines of a source control, with the page header and line prefix of a print
// hook. Scintilla prints no per-line hook, so the lines go to a copy of the control that
// carries each line's prefix as text, styled like the original, with wrapped rows indented
// by the prefix's width; Scintilla lays out and draws its pages, and the header is drawn
// on each before its text.
class SourcePrinter final : public QsciPrinter {
public:
    explicit SourcePrinter(PrinterMode mode = HighResolution);

    // Lines `first` to `last` of `source` (zero-based, the last line for a negative
    // `last`), in colour or black text. False when the printer could not be started.
    bool PrintLines(SourceView& source, ISourceDraw2& hook, bool color, int32_t first = 0,
                    int32_t last = -1);

    void formatPage(QPainter& painter, bool drawing, QRect& area, int pageNumber) override;

    // The style the prefixes are drawn in: one the lexer gives no token.
    static constexpr int PrefixStyle = 30;

private:
    ISourceDraw2* hook_ = nullptr;
    QFont headerFont_;
};
