#pragma once

#include "language/ScintillaBuffer.h"

#include <QObject>
#include <QString>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

class SourceView;

// Messages pinned to lines of a source view, such as a compiler's errors: a symbol in a
// narrow margin left of the text, and the message as that margin's tool tip. A mark moves
// with its line and goes when its line is edited or the next messages are set.
class LineMessageMarks final : public QObject {
    Q_OBJECT

public:
    // The component's marker number and the margin that shows it.
    static constexpr int Marker = ScintillaBuffer::MessageMarker;
    static constexpr int MarginIndex = 1;

    explicit LineMessageMarks(SourceView& view);

    // Replaces every mark by one per line given (zero-based); messages of one line are
    // joined, lines outside the text are left out. The margin shows while marks were set.
    void Set(const std::vector<std::pair<int32_t, QString>>& messages);
    void Clear() { Set({}); }
    // Lines that carry a mark, in order.
    std::vector<int32_t> Lines();
    // The message of a marked line; empty for a line without a mark.
    QString MessageAt(int32_t line);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onModified(int position, int type, const char* text, int length, int added, int line,
                    int foldNow, int foldPrev, int token, int annotationLines);
    // Drops the marks of a range of lines that an edit is about to change.
    void dropMarks(int32_t first, int32_t last);
    bool marked(int32_t line) const;
    QString lineText(int32_t line) const;
    // Drops the mark of the line an insert went to if the insert changed its text.
    void checkInsert();
    void sizeMargin();

    SourceView& view_;
    // Messages by marker handle: a handle follows its line as lines come and go.
    std::map<int, QString> messages_;
    bool marginShown_ = false;
    // An insert on a marked line, as things stood before it.
    struct Insert {
        int32_t Line = 0;
        bool AtLineStart = false;
        int32_t LineCount = 0;
        QString Text;
    };
    std::optional<Insert> insert_;
};
