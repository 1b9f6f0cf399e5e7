#pragma once

#include "language/SourceView.h"

#include <memory>

class LexClass;
class Moriox;
class clsKeywords;

// A few lines of BASIC in the fonts and colours of a settings object, so that a colour
// can be judged before it is taken. Read only.
class HighlightPreview : public SourceView {
    Q_OBJECT

public:
    explicit HighlightPreview(QWidget* parent = nullptr);
    ~HighlightPreview() override;

    // Shows the sample as `settings` would colour it.
    void ShowSettings(const Moriox& settings);
    // The sample, with `userWord` standing where a user keyword is called.
    static QString SampleText(const QString& userWord);
    // The user keyword the sample shows: the first of the list, or a made-up one, which
    // the preview's own copy of the table then holds.
    QString UserWord() const { return userWord_; }

private:
    std::shared_ptr<LexClass> lex_;
    QString userWord_;
};
