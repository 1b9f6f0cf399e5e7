#pragma once

#include "settings/clsRecentList.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

// The one settings object of the program. Members are public and read directly by every
// subsystem; the defaults are those a fresh machine starts with. All of it is kept in the
// settings store under Section(); the settings dialog edits a Clone and merges it back with
// UpdateFrom, and what it merged reaches the store at shutdown.
class clsKeywords;

class Moriox {
public:
    Moriox();
    ~Moriox();
    Moriox(const Moriox&) = delete;
    Moriox& operator=(const Moriox&) = delete;

    QString FontName;
    QString FontSize = QStringLiteral("10");
    bool FontMono = true;
    int32_t BackColor = static_cast<int32_t>(0x80000005u);
    int32_t NormalColor = static_cast<int32_t>(0x80000008u);
    int16_t NormalStyle = 0;
    int32_t KeywordColor = static_cast<int32_t>(0x80000008u);
    int16_t KeywordStyle = 0;
    int32_t StringColor = 0x00800080;
    int16_t StringStyle = 0;
    int32_t LabelColor = 0x00800000;
    int16_t LabelStyle = 0;
    int32_t CommentColor = 0x00008000;
    int16_t CommentStyle = 0;
    int32_t ReservedColor = static_cast<int32_t>(0x80000008u);
    int16_t ReservedStyle = 0;
    bool Highlight = true;
    bool LineWrap = false;
    int16_t TabSize = 3;
    int16_t Margin = 6;
    int16_t IndentStar = 1;
    int16_t IndentBang = 0;
    QString CompileCommand = QStringLiteral("BASIC");
    QString CompileOptions;
    // The keyword table; its identity stays for the whole run, since lexers share it.
    std::shared_ptr<clsKeywords> Keywords;
    bool RecordLocking = true;
    // Marks typed into a local file that had none are written as the bytes 0xFD and 0xFC
    // (as hosts and source repositories keep them), or off, as UTF-8 of U+F8FD and U+F8FC.
    bool LocalFileRawMarks = true;
    bool ColorPrinting = false;
    bool NoGotoDialog = false;
    bool GotoLineNumber = false;
    bool AutoRecover = true;
    bool HotTrack = true;
    bool LargeToolbarIcons = false;
    QString ResultsFontName;
    QString ResultsFontSize;
    // Never absent.
    std::unique_ptr<clsRecentList> RecentList;
    bool MinMaxClose = false;

    // The section of every settings key, the main window's too.
    static QString Section();

    // Fills the object from the store; a store without the current version marker is
    // migrated from the earlier version's settings instead, which also writes the defaults
    // once on a fresh machine.
    void LoadSettings();
    // Writes the version marker and every member.
    void SaveSettings() const;
    std::unique_ptr<Moriox> Clone() const;
    // Takes over every member of the source; this object's RecentList stays the same object.
    void UpdateFrom(const Moriox& source);

    bool operator==(const Moriox& other) const;

    // An empty name gives the default font, "MV Lucida Console" its "MVW" successor; any
    // other name stays.
    static QString ApplyFontRule(const QString& name);
    // The first font family whose name begins "MVW Lucida Console", else "Courier New".
    static QString DefaultFontName();
    static QString DefaultFontName(const QStringList& families);

    // The version the settings are stored in; a lower marker is migrated.
    static constexpr int SettingsVersion = 7;

private:
    void migrate();
};
