#include "language/SourcePrinter.h"

#include "language/ISourceDraw2.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"

#include <QByteArray>
#include <QFontMetrics>
#include <QPageLayout>
#include <QPainter>
#include <Qsci/qsciscintilla.h>
#include <algorithm>

namespace {

using Sci = QsciScintillaBase;

// Scintilla's style numbers that a copy must look like: the token styles and the
// predefined ones (default, line number, control characters).
constexpr int kLastStyle = Sci::STYLE_LASTPREDEFINED;

void copyStyles(const SourceView& from, QsciScintilla& to) {
    QByteArray name(256, '\0');
    for (int style = 0; style <= kLastStyle; ++style) {
        const auto index = static_cast<unsigned long>(style);
        const long length = from.SendScintilla(Sci::SCI_STYLEGETFONT, index, name.data());
        if (length > 0 && length < name.size())
            to.SendScintilla(Sci::SCI_STYLESETFONT, index, name.constData());
        to.SendScintilla(Sci::SCI_STYLESETSIZEFRACTIONAL, index,
                         from.SendScintilla(Sci::SCI_STYLEGETSIZEFRACTIONAL, index));
        to.SendScintilla(Sci::SCI_STYLESETWEIGHT, index,
                         from.SendScintilla(Sci::SCI_STYLEGETWEIGHT, index));
        to.SendScintilla(Sci::SCI_STYLESETITALIC, index,
                         from.SendScintilla(Sci::SCI_STYLEGETITALIC, index));
        to.SendScintilla(Sci::SCI_STYLESETFORE, index,
                         from.SendScintilla(Sci::SCI_STYLEGETFORE, index));
        to.SendScintilla(Sci::SCI_STYLESETBACK, index,
                         from.SendScintilla(Sci::SCI_STYLEGETBACK, index));
    }
    // The prefix: the default style's font, black on white.
    const auto prefix = static_cast<unsigned long>(SourcePrinter::PrefixStyle);
    if (from.SendScintilla(Sci::SCI_STYLEGETFONT, Sci::STYLE_DEFAULT, name.data()) > 0)
        to.SendScintilla(Sci::SCI_STYLESETFONT, prefix, name.constData());
    to.SendScintilla(Sci::SCI_STYLESETSIZEFRACTIONAL, prefix,
                     from.SendScintilla(Sci::SCI_STYLEGETSIZEFRACTIONAL, Sci::STYLE_DEFAULT));
    to.SendScintilla(Sci::SCI_STYLESETWEIGHT, prefix, 400L);
    to.SendScintilla(Sci::SCI_STYLESETITALIC, prefix, 0L);
    to.SendScintilla(Sci::SCI_STYLESETFORE, prefix, QColor(Qt::black));
    to.SendScintilla(Sci::SCI_STYLESETBACK, prefix, QColor(Qt::white));
}

void copyView(const SourceView& from, QsciScintilla& to) {
    to.SendScintilla(Sci::SCI_SETCODEPAGE, from.SendScintilla(Sci::SCI_GETCODEPAGE));
    to.SendScintilla(Sci::SCI_SETTABWIDTH, from.SendScintilla(Sci::SCI_GETTABWIDTH));
    QByteArray shown(32, '\0');
    for (const char* mark : {"\x1c", "\x1d", "\x1e"}) {
        const long length = from.SendScintilla(Sci::SCI_GETREPRESENTATION, mark, shown.data());
        if (length > 0 && length < shown.size())
            to.SendScintilla(Sci::SCI_SETREPRESENTATION, mark, shown.constData());
    }
    for (unsigned long margin = 0; margin < 5; ++margin)
        to.SendScintilla(Sci::SCI_SETMARGINWIDTHN, margin, 0L);
}

QFont defaultFont(const SourceView& source) {
    QByteArray name(256, '\0');
    const long length =
        source.SendScintilla(Sci::SCI_STYLEGETFONT, Sci::STYLE_DEFAULT, name.data());
    QFont font(length > 0 ? QString::fromUtf8(name.constData()) : QStringLiteral("Monospace"));
    font.setStyleHint(QFont::TypeWriter);
    font.setPointSizeF(std::max(
        1.0, source.SendScintilla(Sci::SCI_STYLEGETSIZEFRACTIONAL, Sci::STYLE_DEFAULT) / 100.0));
    return font;
}

} // namespace

SourcePrinter::SourcePrinter(PrinterMode mode) : QsciPrinter(mode) {
    setPageMargins(QMarginsF(15, 12, 15, 12), QPageLayout::Millimeter);
}

bool SourcePrinter::PrintLines(SourceView& source, ISourceDraw2& hook, bool color, int32_t first,
                               int32_t last) {
    ScintillaBuffer& buffer = source.Buffer();
    const int32_t count = buffer.NumLines();
    if (last < 0 || last >= count)
        last = count - 1;
    first = std::clamp(first, 0, last);

    // Every printed line needs its colours, also those left waiting until shown.
    const long styledTo = source.SendScintilla(Sci::SCI_GETENDSTYLED);
    source.SendScintilla(Sci::SCI_COLOURISE, static_cast<unsigned long>(styledTo), -1L);
    buffer.StylePendingLines(first, last);

    const long start = source.SendScintilla(Sci::SCI_POSITIONFROMLINE, first);
    const long end = source.SendScintilla(Sci::SCI_GETLINEENDPOSITION, last);
    QByteArray styled(2 * (end - start) + 2, '\0');
    if (end > start)
        source.SendScintilla(Sci::SCI_GETSTYLEDTEXT, start, end, styled.data());

    QByteArray text;
    QByteArray styles;
    text.reserve((end - start) + (last - first + 1) * 10);
    styles.reserve(text.capacity());
    QByteArray prefix;
    for (int32_t line = first; line <= last; ++line) {
        SourceDrawLine record;
        record.Line = line;
        record.LineCount = count;
        try {
            hook.ISourceDraw2_PreDrawLine(record);
            prefix = record.Prefix.toUtf8();
        } catch (...) {
            // The line goes out without its number.
            prefix.fill(' ');
        }
        text += prefix;
        styles += QByteArray(prefix.size(), static_cast<char>(PrefixStyle));
        const long from = source.SendScintilla(Sci::SCI_POSITIONFROMLINE, line) - start;
        const long to = source.SendScintilla(Sci::SCI_GETLINEENDPOSITION, line) - start;
        for (long at = from; at < to; ++at) {
            const char character = styled.at(static_cast<qsizetype>(2 * at));
            const char style = styled.at(static_cast<qsizetype>(2 * at + 1));
            text += character;
            styles += style == ScintillaBuffer::PendingStyle ? '\0' : style;
        }
        if (line < last) {
            text += '\n';
            styles += '\0';
        }
    }

    QsciScintilla copy;
    copyView(source, copy);
    copyStyles(source, copy);
    copy.SendScintilla(Sci::SCI_APPENDTEXT, static_cast<unsigned long>(text.size()),
                       text.constData());
    copy.SendScintilla(Sci::SCI_STARTSTYLING, 0UL, 0L);
    copy.SendScintilla(Sci::SCI_SETSTYLINGEX, static_cast<unsigned long>(styles.size()),
                       styles.constData());
    copy.SendScintilla(Sci::SCI_SETPRINTCOLOURMODE,
                       color ? Sci::SC_PRINT_COLOURONWHITE : Sci::SC_PRINT_BLACKONWHITE);
    // Wrapped rows start under the text, after blanks as wide as the prefix.
    copy.SendScintilla(Sci::SCI_SETWRAPINDENTMODE, Sci::SC_WRAPINDENT_FIXED);
    copy.SendScintilla(Sci::SCI_SETWRAPSTARTINDENT, static_cast<unsigned long>(prefix.size()));
    setWrapMode(source.LineWrap() ? QsciScintilla::WrapWord : QsciScintilla::WrapNone);
    setMagnification(0);

    hook_ = &hook;
    headerFont_ = defaultFont(source);
    QPainter painter;
    if (!painter.begin(this)) {
        hook_ = nullptr;
        return false;
    }
    // Scintilla's range printing runs one line past the range it is given; the copy holds
    // just the lines to print, so it prints whole.
    printRange(&copy, painter, -1, -1);
    painter.end();
    hook_ = nullptr;
    return true;
}

void SourcePrinter::formatPage(QPainter& painter, bool drawing, QRect& area, int pageNumber) {
    painter.setFont(headerFont_);
    const QFontMetrics metrics(headerFont_, painter.device());
    SourceDrawPage record;
    record.Painter = &painter;
    record.CharWidth = metrics.horizontalAdvance(QLatin1Char('0'));
    record.CharHeight = metrics.height();
    record.LeftEdge = area.left();
    record.RightEdge = area.right();
    record.Y = area.top() + 2 * record.CharHeight;
    record.Page = pageNumber;
    // The room of the header is kept on pages that are only measured too.
    area.setTop(record.Y);
    if (!drawing || !hook_)
        return;
    try {
        hook_->ISourceDraw2_PreDrawPage(record);
        hook_->ISourceDraw2_PostDrawPage(record);
    } catch (...) {
        // A page without its header still prints.
    }
}
