#pragma once

#include <Qsci/qscilexercustom.h>

class ScintillaBuffer;

// Connects the component's lazy styling to the buffer's line scanner: when the component
// needs colours for a range, the lines of that range are scanned and styled. A typed key
// scans only the lines it changed: the component would ask for the line below as well, and
// no line's colours depend on another's.
class BufferLexer final : public QsciLexerCustom {
    Q_OBJECT

public:
    BufferLexer(ScintillaBuffer& buffer, QObject* parent);

    const char* language() const override { return "MultiValue BASIC"; }
    QString description(int style) const override;
    void styleText(int start, int end) override;
    void setEditor(QsciScintilla* editor) override;

    static constexpr int StyleCount = 10;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void noteCharAdded(int character);
    // Styles only the typed lines when nothing else changed since the key; false if it
    // can't tell.
    bool styleTyped(int first, int last);
    void viewLines(int32_t& first, int32_t& last) const;

    ScintillaBuffer& buffer_;
    // What a key press found, and the lines its characters went to.
    struct Typing {
        bool armed = false;
        bool typed = false;
        long linesBefore = 0;
        // Lines before this one were styled when the key came.
        long styledLinesBefore = 0;
        int first = 0;
        int last = 0;
        long linesAfter = 0;
        long lengthAfter = 0;
    } typing_;
};
