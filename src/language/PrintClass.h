#pragma once

#include "language/ISourceDraw2.h"

#include <QString>
#include <cstdint>

// The print hook of a text control: a header at the top of each page ("Page N", the title,
// the date) and the line number in front of each printed line. The document fills the two
// names before it prints.
class PrintClass final : public ISourceDraw2 {
public:
    QString FileName;
    QString ItemName;

    void ISourceDraw2_PostDraw(QPainter*) override {}
    void ISourceDraw2_PostDrawPage(const SourceDrawPage&) override {}
    void ISourceDraw2_PreDraw(QPainter*) override {}
    void ISourceDraw2_PreDrawLine(SourceDrawLine& record) override;
    void ISourceDraw2_PreDrawPage(const SourceDrawPage& record) override;

    // "File: NAME     Item: ITEM", "File: NAME" or "File: (untitled)".
    QString Title() const;
    // Digits of the line numbers: those of the line count, at least 4.
    static int32_t NumberDigits(int32_t lineCount);
    // The zero-padded one-based number and two blanks (its last digits when wider), or
    // blanks of the same width for the later rows of a wrapped line.
    static QString LinePrefix(int32_t line, int32_t lineCount, bool continuation);
    // Where the title starts: centred between the page text and the date.
    static int32_t TitleX(int32_t leftEdge, int32_t rightEdge, int32_t charWidth, int32_t pageWidth,
                          int32_t dateWidth, int32_t titleWidth);
};
