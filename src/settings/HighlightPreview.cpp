#include "settings/HighlightPreview.h"

#include "language/BufferLexer.h"
#include "language/LexClass.h"
#include "language/LineNumberGutter.h"
#include "language/ScintillaBuffer.h"
#include "language/TokenStyleTable.h"
#include "language/clsKeyword.h"
#include "language/clsKeywords.h"
#include "settings/Moriox.h"

#include <QFontMetrics>
#include <QScrollBar>

namespace {

const QString kMadeUpWord = QStringLiteral("LOGMSG");

} // namespace

HighlightPreview::HighlightPreview(QWidget* parent)
    : SourceView(parent), lex_(std::make_shared<LexClass>()) {
    setObjectName(QStringLiteral("txtPreview"));
    Buffer().SetLex(lex_);
    setFocusPolicy(Qt::NoFocus);
    setCaretWidth(0);
    Gutter().SetMode(LineNumberGutter::ModeNone);
    SendScintilla(SCI_SETHSCROLLBAR, 0);
}

HighlightPreview::~HighlightPreview() = default;

QString HighlightPreview::SampleText(const QString& userWord) {
    return QStringLiteral("* Totals of one order\n"
                          "      GOSUB READ.ORDER\n"
                          "      TOTAL = 0\n"
                          "      FOR I = 1 TO LINES\n"
                          "         IF QTY(I) > 0 THEN TOTAL += QTY(I)\n"
                          "      NEXT I\n"
                          "      %1 \"Total: \":TOTAL ; ! in the log\n"
                          "      STOP\n"
                          "READ.ORDER:\n"
                          "      RETURN")
        .arg(userWord);
}

void HighlightPreview::ShowSettings(const Moriox& settings) {
    // A table of its own: the made-up user word must not reach the settings.
    std::shared_ptr<clsKeywords> table = settings.Keywords->Clone();
    userWord_.clear();
    for (int32_t i = 0; i < table->Count() && userWord_.isEmpty(); ++i)
        if (table->At(i).KeywordType & clsKeyword::TypeUser)
            userWord_ = table->At(i).Keyword;
    if (userWord_.isEmpty()) {
        userWord_ = kMadeUpWord;
        table->AddKeyword(userWord_, clsKeyword::TypeUser, 0);
    }
    lex_->Keywords = table;
    lex_->Highlight = true;
    setReadOnly(false);
    Buffer().SetAllText(SampleText(userWord_));
    setReadOnly(true);
    const QFont font = TokenStyleTable::FontOf(settings, Lexer().defaultFont());
    TokenStyleTable::ForScreen(settings).ApplyTo(*this, font, settings.BackColor);
    SetTabSize(settings.TabSize);
    SetMargin(settings.Margin);
    // Wide enough for the sample's longest line in the chosen font, and no wider.
    const int sampleWidth = QFontMetrics(font).horizontalAdvance(QString(46, QLatin1Char('M')));
    setMinimumWidth(sampleWidth + verticalScrollBar()->sizeHint().width() + 2 * frameWidth());
}
