#pragma once

#include <Qsci/qscilexercustom.h>

class ScintillaBuffer;

// Connects the component's lazy styling to the buffer's line scanner: when the component
// needs colours for a range, the lines of that range are scanned and styled.
class BufferLexer final : public QsciLexerCustom {
    Q_OBJECT

public:
    BufferLexer(ScintillaBuffer& buffer, QObject* parent);

    const char* language() const override { return "MultiValue BASIC"; }
    QString description(int style) const override;
    void styleText(int start, int end) override;

    static constexpr int StyleCount = 10;

private:
    ScintillaBuffer& buffer_;
};
