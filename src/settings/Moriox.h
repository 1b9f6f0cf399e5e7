#pragma once

#include <QString>
#include <cstdint>

// The one settings object of the program. Members are public and read directly by every
// subsystem; the defaults are those a fresh machine starts with.
class Moriox {
public:
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
    bool RecordLocking = true;
    bool ColorPrinting = false;
    bool NoGotoDialog = false;
    bool GotoLineNumber = false;
    bool AutoRecover = true;
    bool HotTrack = true;
    bool LargeToolbarIcons = false;
    QString ResultsFontName;
    QString ResultsFontSize;
    bool MinMaxClose = false;
};
