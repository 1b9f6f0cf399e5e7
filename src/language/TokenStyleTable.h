#pragma once

#include <QFont>
#include <cstdint>
#include <vector>

class Moriox;
class SourceView;

// What each token kind looks like: a stored colour value and a style bit set (1 bold,
// 2 italic). A view has two: one for the screen and one for the printer.
class TokenStyleTable {
public:
    static constexpr int16_t StyleBold = 1;
    static constexpr int16_t StyleItalic = 2;

    struct Entry {
        int32_t Kind = 0;
        int32_t Color = 0;
        int16_t Style = 0;
    };

    // The table the settings give the screen. Kind 1, which the settings leave open, is
    // plain text in the normal colour.
    static TokenStyleTable ForScreen(const Moriox& settings);
    // The printer's table: the screen's colours with ColorPrinting on, else colour 0 for
    // every kind.
    static TokenStyleTable ForPrinter(const Moriox& settings);

    void Set(int32_t kind, int32_t color, int16_t style);
    // The entry of a kind; a kind the table lacks gives colour 0 and no style.
    Entry Get(int32_t kind) const;
    const std::vector<Entry>& Entries() const { return entries_; }

    // Gives the control's styles these colours and fonts, built on `font`, on the paper of
    // `backColor`. Lines are coloured again lazily.
    void ApplyTo(SourceView& view, const QFont& font, int32_t backColor) const;

    // The editor font the settings ask for, built on `base`: name, size and fixed pitch.
    static QFont FontOf(const Moriox& settings, const QFont& base);
    // `font` with the bold and italic bits of a style.
    static QFont StyledFont(const QFont& font, int16_t style);

private:
    std::vector<Entry> entries_;
};
