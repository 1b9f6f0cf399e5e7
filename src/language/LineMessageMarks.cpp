#include "language/LineMessageMarks.h"

#include "language/SourceView.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QStringList>
#include <QToolTip>
#include <algorithm>
#include <utility>

namespace {

using Sci = QsciScintillaBase;

constexpr long kMarkMask = 1L << LineMessageMarks::Marker;

} // namespace

LineMessageMarks::LineMessageMarks(SourceView& view) : QObject(&view), view_(view) {
    view_.markerDefine(QsciScintilla::Circle, Marker);
    // Red on light and dark paper alike.
    view_.setMarkerBackgroundColor(QColor(0xd9, 0x3a, 0x32), Marker);
    view_.setMarkerForegroundColor(QColor(0x8c, 0x14, 0x10), Marker);
    view_.setMarginType(MarginIndex, QsciScintilla::SymbolMarginDefaultBackgroundColor);
    view_.setMarginMarkerMask(MarginIndex, static_cast<int>(kMarkMask));
    view_.setMarginWidth(MarginIndex, 0);
    view_.setMarginSensitivity(MarginIndex, false);
    view_.viewport()->installEventFilter(this);
    connect(&view_, &Sci::SCN_MODIFIED, this, &LineMessageMarks::onModified);
    connect(&view_, &Sci::SCN_ZOOM, this, [this] { sizeMargin(); });
}

void LineMessageMarks::Set(const std::vector<std::pair<int32_t, QString>>& messages) {
    view_.SendScintilla(Sci::SCI_MARKERDELETEALL, Marker);
    messages_.clear();
    insert_.reset();
    const auto lines = static_cast<int32_t>(view_.SendScintilla(Sci::SCI_GETLINECOUNT));
    std::map<int32_t, QString> byLine;
    for (const auto& [line, message] : messages) {
        if (line < 0 || line >= lines)
            continue;
        QString& text = byLine[line];
        text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + message;
    }
    for (const auto& [line, message] : byLine) {
        const auto handle = static_cast<int>(view_.SendScintilla(Sci::SCI_MARKERADD, line, Marker));
        if (handle >= 0)
            messages_[handle] = message;
    }
    marginShown_ = !messages_.empty();
    sizeMargin();
}

void LineMessageMarks::sizeMargin() {
    // As wide as a line is high, so that the symbol keeps its round shape at any zoom.
    const long height = view_.SendScintilla(Sci::SCI_TEXTHEIGHT, 0);
    view_.setMarginWidth(MarginIndex, marginShown_ ? static_cast<int>(height) + 4 : 0);
}

bool LineMessageMarks::marked(int32_t line) const {
    return (view_.SendScintilla(Sci::SCI_MARKERGET, line) & kMarkMask) != 0;
}

std::vector<int32_t> LineMessageMarks::Lines() {
    checkInsert();
    std::vector<int32_t> lines;
    for (long line = view_.SendScintilla(Sci::SCI_MARKERNEXT, 0, kMarkMask); line >= 0;
         line = view_.SendScintilla(Sci::SCI_MARKERNEXT, line + 1, kMarkMask))
        lines.push_back(static_cast<int32_t>(line));
    return lines;
}

QString LineMessageMarks::MessageAt(int32_t line) {
    checkInsert();
    if (line < 0 || !marked(line))
        return {};
    // Lines that ran together on a delete hold the marks of both.
    QStringList texts;
    for (const auto& [handle, message] : messages_) {
        if (view_.SendScintilla(Sci::SCI_MARKERLINEFROMHANDLE, handle) == line)
            texts << message;
    }
    return texts.join(QLatin1Char('\n'));
}

void LineMessageMarks::dropMarks(int32_t first, int32_t last) {
    // A few marks at most: the walk goes from mark to mark, never over the whole text.
    for (long line = view_.SendScintilla(Sci::SCI_MARKERNEXT, first, kMarkMask);
         line >= 0 && line <= last;
         line = view_.SendScintilla(Sci::SCI_MARKERNEXT, line + 1, kMarkMask))
        view_.SendScintilla(Sci::SCI_MARKERDELETE, line, Marker);
}

QString LineMessageMarks::lineText(int32_t line) const {
    QString text = view_.text(line);
    while (text.endsWith(QLatin1Char('\n')) || text.endsWith(QLatin1Char('\r')))
        text.chop(1);
    return text;
}

void LineMessageMarks::checkInsert() {
    if (!insert_)
        return;
    const Insert insert = *std::exchange(insert_, std::nullopt);
    const auto added =
        static_cast<int32_t>(view_.SendScintilla(Sci::SCI_GETLINECOUNT)) - insert.LineCount;
    // Lines put in at a line's start push it down with its mark.
    const int32_t line = insert.AtLineStart && added > 0 ? insert.Line + added : insert.Line;
    if (marked(line) && lineText(line) != insert.Text)
        view_.SendScintilla(Sci::SCI_MARKERDELETE, line, Marker);
}

void LineMessageMarks::onModified(int position, int type, const char*, int length, int, int, int,
                                  int, int, int) {
    // Told before the text changes, while the marks still sit on the lines it changes.
    // Handles of marks that went stay in messages_ until the next Set: they find no line.
    if (messages_.empty() || !(type & (Sci::SC_MOD_BEFOREINSERT | Sci::SC_MOD_BEFOREDELETE)))
        return;
    // The edit before this one is complete now.
    checkInsert();
    if (length <= 0)
        return;
    const auto line =
        static_cast<int32_t>(view_.SendScintilla(Sci::SCI_LINEFROMPOSITION, position));
    if (type & Sci::SC_MOD_BEFOREINSERT) {
        if (!marked(line))
            return;
        // The notice carries no text: whether the marked line changes is seen after the
        // insert, from its text before.
        insert_ = Insert{line, position == view_.SendScintilla(Sci::SCI_POSITIONFROMLINE, line),
                         static_cast<int32_t>(view_.SendScintilla(Sci::SCI_GETLINECOUNT)),
                         lineText(line)};
        QMetaObject::invokeMethod(this, &LineMessageMarks::checkInsert, Qt::QueuedConnection);
        return;
    }
    const long end = position + length;
    auto last = static_cast<int32_t>(view_.SendScintilla(Sci::SCI_LINEFROMPOSITION, end));
    // A line whose start the delete only reaches keeps its text, and the component keeps
    // its mark on the line that text joins.
    if (last > line && view_.SendScintilla(Sci::SCI_POSITIONFROMLINE, last) == end)
        --last;
    dropMarks(line, last);
}

bool LineMessageMarks::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if ((type != QEvent::ToolTip && type != QEvent::MouseMove) || watched != view_.viewport() ||
        messages_.empty())
        return QObject::eventFilter(watched, event);
    QPoint at;
    QPoint globalAt;
    if (type == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        at = help->pos();
        globalAt = help->globalPos();
    } else {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->buttons() != Qt::NoButton)
            return QObject::eventFilter(watched, event);
        at = mouse->position().toPoint();
        globalAt = mouse->globalPosition().toPoint();
    }
    int left = 0;
    for (int m = 0; m < MarginIndex; ++m)
        left += view_.marginWidth(m);
    const int width = view_.marginWidth(MarginIndex);
    if (at.x() < left || at.x() >= left + width)
        return QObject::eventFilter(watched, event);
    // The row under the pointer, wrapped rows counted, as the line-number strip finds it.
    const int height = std::max(1, static_cast<int>(view_.SendScintilla(Sci::SCI_TEXTHEIGHT, 0)));
    const long row = view_.SendScintilla(Sci::SCI_GETFIRSTVISIBLELINE) + at.y() / height;
    const long line = view_.SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE, row);
    const bool onText = row < view_.SendScintilla(Sci::SCI_VISIBLEFROMDOCLINE, line) +
                                  view_.SendScintilla(Sci::SCI_WRAPCOUNT, line);
    const QString message = onText ? MessageAt(static_cast<int32_t>(line)) : QString();
    if (!message.isEmpty()) {
        // Shown on the move as well: right after a compile the results window is the active
        // one, and the usual tool tips wait for this window to be activated again.
        const QRect symbol(left, at.y() - at.y() % height, width, height);
        QToolTip::showText(globalAt, message, view_.viewport(), symbol);
    } else if (type == QEvent::ToolTip) {
        QToolTip::hideText();
    }
    if (type == QEvent::ToolTip)
        return true;
    return QObject::eventFilter(watched, event);
}
