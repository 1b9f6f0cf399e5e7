#include "language/TokenStyleTable.h"

#include "language/BufferLexer.h"
#include "language/ISourceLex4.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "settings/Moriox.h"
#include "settings/modColors.h"

namespace {

// Marks are grey, whatever the settings say.
constexpr int32_t kMarkGrey = (150 << 16) | (150 << 8) | 150;

} // namespace

TokenStyleTable TokenStyleTable::ForScreen(const Moriox& s) {
    TokenStyleTable table;
    table.Set(TokenKind::Plain, s.NormalColor, 0);
    table.Set(TokenKind::Label, s.LabelColor, s.LabelStyle);
    table.Set(TokenKind::Keyword, s.KeywordColor, s.KeywordStyle);
    table.Set(TokenKind::Separator, s.NormalColor, s.NormalStyle);
    table.Set(TokenKind::Comment, s.CommentColor, s.CommentStyle);
    table.Set(TokenKind::String, s.StringColor, s.StringStyle);
    table.Set(TokenKind::Normal, s.NormalColor, s.NormalStyle);
    table.Set(TokenKind::Reserved, s.ReservedColor, s.ReservedStyle);
    table.Set(TokenKind::ValueMark, kMarkGrey, 0);
    table.Set(TokenKind::SubvalueMark, kMarkGrey, 0);
    return table;
}

TokenStyleTable TokenStyleTable::ForPrinter(const Moriox& settings) {
    TokenStyleTable table = ForScreen(settings);
    if (!settings.ColorPrinting) {
        for (Entry& entry : table.entries_)
            entry.Color = 0;
    }
    return table;
}

void TokenStyleTable::Set(int32_t kind, int32_t color, int16_t style) {
    for (Entry& entry : entries_) {
        if (entry.Kind == kind) {
            entry.Color = color;
            entry.Style = style;
            return;
        }
    }
    entries_.push_back({kind, color, style});
}

TokenStyleTable::Entry TokenStyleTable::Get(int32_t kind) const {
    for (const Entry& entry : entries_) {
        if (entry.Kind == kind)
            return entry;
    }
    return {kind, 0, 0};
}

QFont TokenStyleTable::FontOf(const Moriox& settings, const QFont& base) {
    QFont font = base;
    if (!settings.FontName.isEmpty())
        font.setFamily(settings.FontName);
    bool ok = false;
    const int size = settings.FontSize.toInt(&ok);
    if (ok && size > 0)
        font.setPointSize(size);
    font.setFixedPitch(settings.FontMono);
    return font;
}

QFont TokenStyleTable::StyledFont(const QFont& font, int16_t style) {
    QFont styled = font;
    styled.setBold(style & StyleBold);
    styled.setItalic(style & StyleItalic);
    return styled;
}

void TokenStyleTable::ApplyTo(SourceView& view, const QFont& font, int32_t backColor) const {
    BufferLexer& lexer = view.Lexer();
    const QColor paper = modColors::ToQColor(backColor);
    lexer.setDefaultFont(font);
    lexer.setDefaultPaper(paper);
    lexer.setPaper(paper, -1);
    for (const Entry& entry : entries_) {
        const int style = ScintillaBuffer::StyleOfKind(entry.Kind);
        lexer.setColor(modColors::ReadableOn(modColors::ToQColor(entry.Color), paper), style);
        lexer.setFont(StyledFont(font, entry.Style), style);
    }
    const QColor plain =
        modColors::ReadableOn(modColors::ToQColor(Get(TokenKind::Plain).Color), paper);
    lexer.setDefaultColor(plain);
    // The area behind the last line and right of line ends has the default style, which
    // the lexer's signals don't reach.
    view.SendScintilla(QsciScintillaBase::SCI_STYLESETBACK, QsciScintillaBase::STYLE_DEFAULT,
                       paper);
    view.SendScintilla(QsciScintillaBase::SCI_STYLESETFORE, QsciScintillaBase::STYLE_DEFAULT,
                       plain);
    // A caret in the text's colour stays visible on any paper.
    view.setCaretForegroundColor(plain);
    view.TintBookmarks(paper);
    view.Buffer().InvalidateStyles(0);
}
