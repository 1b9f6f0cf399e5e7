#pragma once

#include "editing/BlockRange.h"
#include "language/ISourceOp.h"

#include <QString>
#include <memory>

class SourceControl;

// Moves the case of the selected text one step along mixed -> upper -> lower -> proper ->
// upper, leaving quoted strings as they are. The first letters of the code decide the
// step for the whole selection. Undo puts back the text as it was. The first run fixes the
// range; a redo converts the same text again.
class OpToggleCase final : public ISourceOp {
public:
    std::shared_ptr<SourceControl> Ctl;

    void ISourceOp_DoOp(SourceBuffer& buffer) override;
    void ISourceOp_UndoOp(SourceBuffer& buffer) override;

    // The text one step further; `changed` tells whether any character differs. The text
    // keeps its length, so positions in it keep their meaning.
    static QString Convert(const QString& text, bool& changed);
    // Each word with its first letter in upper case and the rest in lower case; a word is
    // a run of letters and digits.
    static QString ProperCase(QStringView text);

private:
    void replaceRange(SourceBuffer& buffer, const QString& text);

    BlockRange range_;
    // Empty when the run changed nothing.
    QString kept_;
    bool ran_ = false;
};
