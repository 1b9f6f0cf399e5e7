#include "language/SourceViewAccessible.h"

#include "language/SourceView.h"

namespace {

QAccessibleInterface* factory(const QString& className, QObject* object) {
    if (className == QLatin1String("SourceView") && object && object->isWidgetType())
        return new SourceViewAccessible(static_cast<SourceView*>(object));
    return nullptr;
}

} // namespace

SourceViewAccessible::SourceViewAccessible(SourceView* view)
    : QAccessibleWidget(view, QAccessible::EditableText) {}

void SourceViewAccessible::Install() {
    // Factories are asked newest first, and for the most derived class first: installed after
    // the component's, this one answers for SourceView before the component's is asked.
    static bool installed = false;
    if (!installed) {
        QAccessible::installFactory(factory);
        installed = true;
    }
}

void* SourceViewAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

SourceView* SourceViewAccessible::view() const {
    return static_cast<SourceView*>(widget());
}

long SourceViewAccessible::positionOf(int offset) const {
    return view()->SendScintilla(QsciScintillaBase::SCI_POSITIONRELATIVECODEUNITS, 0UL,
                                 static_cast<long>(offset));
}

int SourceViewAccessible::offsetOf(long position) const {
    return static_cast<int>(
        view()->SendScintilla(QsciScintillaBase::SCI_COUNTCODEUNITS, 0UL, position));
}

void SourceViewAccessible::selection(int selectionIndex, int* startOffset, int* endOffset) const {
    *startOffset = *endOffset = 0;
    if (selectionIndex != 0 || !view()->HasSelection())
        return;
    *startOffset = offsetOf(view()->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONSTART));
    *endOffset = offsetOf(view()->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONEND));
}

int SourceViewAccessible::selectionCount() const {
    return view()->HasSelection() ? 1 : 0;
}

void SourceViewAccessible::addSelection(int startOffset, int endOffset) {
    setSelection(0, startOffset, endOffset);
}

void SourceViewAccessible::removeSelection(int) {
    const long caret = view()->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    view()->SendScintilla(QsciScintillaBase::SCI_SETEMPTYSELECTION,
                          static_cast<unsigned long>(caret));
}

void SourceViewAccessible::setSelection(int, int startOffset, int endOffset) {
    view()->SendScintilla(QsciScintillaBase::SCI_SETSEL,
                          static_cast<unsigned long>(positionOf(startOffset)),
                          positionOf(endOffset));
}

int SourceViewAccessible::cursorPosition() const {
    return offsetOf(view()->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
}

void SourceViewAccessible::setCursorPosition(int position) {
    view()->SendScintilla(QsciScintillaBase::SCI_GOTOPOS,
                          static_cast<unsigned long>(positionOf(position)));
}

QString SourceViewAccessible::text(int startOffset, int endOffset) const {
    const long from = positionOf(startOffset);
    const long to = positionOf(endOffset);
    if (to <= from)
        return {};
    QByteArray bytes(static_cast<qsizetype>(to - from) + 1, Qt::Uninitialized);
    view()->SendScintilla(QsciScintillaBase::SCI_GETTEXTRANGE, from, to, bytes.data());
    bytes.resize(static_cast<qsizetype>(to - from));
    return QString::fromUtf8(bytes);
}

int SourceViewAccessible::characterCount() const {
    return offsetOf(view()->SendScintilla(QsciScintillaBase::SCI_GETLENGTH));
}

QRect SourceViewAccessible::characterRect(int offset) const {
    const long position = positionOf(offset);
    const int x = static_cast<int>(
        view()->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, position));
    const int y = static_cast<int>(
        view()->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, position));
    const int height =
        static_cast<int>(view()->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL));
    const QPoint origin = view()->viewport()->mapToGlobal(QPoint(x, y));
    return QRect(origin, QSize(1, height));
}

int SourceViewAccessible::offsetAtPoint(const QPoint& point) const {
    const QPoint local = view()->viewport()->mapFromGlobal(point);
    const long position = view()->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMPOINTCLOSE,
                                                static_cast<unsigned long>(local.x()), local.y());
    return position < 0 ? -1 : offsetOf(position);
}

void SourceViewAccessible::scrollToSubstring(int startIndex, int endIndex) {
    view()->SendScintilla(QsciScintillaBase::SCI_SCROLLRANGE,
                          static_cast<unsigned long>(positionOf(endIndex)), positionOf(startIndex));
}

QString SourceViewAccessible::attributes(int offset, int* startOffset, int* endOffset) const {
    *startOffset = *endOffset = offset;
    return {};
}
