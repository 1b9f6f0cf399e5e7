#pragma once

#include <QAccessibleWidget>

class SourceView;

// The editor's face to assistive technology. The component's own one turns the caret into
// a character offset on every screen update, a walk from the start of the document; this one
// works out offsets only when a client asks.
class SourceViewAccessible final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit SourceViewAccessible(SourceView* view);

    // Makes the editor use this interface; call once a SourceView exists.
    static void Install();

    void* interface_cast(QAccessible::InterfaceType type) override;

    void selection(int selectionIndex, int* startOffset, int* endOffset) const override;
    int selectionCount() const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int selectionIndex) override;
    void setSelection(int selectionIndex, int startOffset, int endOffset) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    QString text(int startOffset, int endOffset) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int* startOffset, int* endOffset) const override;

private:
    SourceView* view() const;
    long positionOf(int offset) const;
    int offsetOf(long position) const;
};
