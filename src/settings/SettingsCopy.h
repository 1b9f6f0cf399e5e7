#pragma once

#include "settings/Moriox.h"

#include <QString>
#include <cstdint>
#include <memory>

// The working copy the settings dialog edits, and the rules its controls follow. Every
// change lands in the copy at once; nothing reaches the settings until CommitTo.
class SettingsCopy {
public:
    explicit SettingsCopy(const Moriox& source);

    Moriox& Copy() { return *copy_; }
    const Moriox& Copy() const { return *copy_; }

    // The rows of the colour table: 0 the background, then the six token classes.
    static constexpr int RowCount = 7;
    static QString RowLabel(int row);
    // Every row but the background has a style.
    static bool HasStyle(int row) { return row > 0 && row < RowCount; }
    int32_t Color(int row) const;
    void SetColor(int row, int32_t value);
    int16_t Style(int row) const;
    // Sets or clears one bit of the row's style and keeps the others.
    void SetStyleBit(int row, int16_t bit, bool on);

    // The text a numeric field should show after a change: "0" for a value below 0.
    static QString NonNegativeText(const QString& text);
    // The numeric fields; text that doesn't parse counts as 0. The list size is read on OK
    // only, since a smaller size loses entries for good.
    void ReadFormatNumbers(const QString& tabSize, const QString& margin);
    void ReadListSize(const QString& recentFiles);

    // The document form is chosen when a window is made, so the switch can't change while
    // documents are open: false, and the copy keeps the settings' value.
    bool SetMinMaxClose(bool value, bool documentsOpen, const Moriox& settings);
    static QString MinMaxCloseRefusal();

    // Merges the copy into the settings.
    void CommitTo(Moriox& settings) const;

private:
    std::unique_ptr<Moriox> copy_;
};
