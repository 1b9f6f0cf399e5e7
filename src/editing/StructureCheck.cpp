#include "editing/StructureCheck.h"

#include "editing/TextFormatter.h"
#include "language/LexClass.h"
#include "language/LineBuffer.h"
#include "language/clsKeywords.h"

#include <QHash>
#include <algorithm>
#include <optional>

namespace {

using K = clsKeyword;

enum class Kind { Then, For, Loop, Case, Transaction, User };

struct Block {
    Kind What = Kind::Then;
    int32_t Line = 0;      // one-based
    QString Opener;        // as the messages name it: "FOR I", "THEN", "BEGIN CASE"
    QString Variable;      // of a FOR
    int32_t Column = 0;    // where the statements of its opening line start
    bool Indented = false; // a line of its body stands right of Column
    bool Dedented = false; // and a later one no further right than Column
};

// A token that is neither blanks, a mark nor a comment, with the lexer's raw kind.
struct Token {
    int32_t Raw = 0;
    QString Text;
    int32_t Start = 0;
    // Part of a longer name the lexer cut in two, as REPEAT in K$REPEAT: no keyword.
    bool Glued = false;
};

bool isNameChar(QChar c) {
    return c.isLetterOrNumber() || c == u'$' || c == u'.' || c == u'_' || c == u'%';
}

// Marks the words that stand against a name character of a neighbour.
void markGlued(std::vector<Token>& tokens) {
    for (size_t i = 0; i < tokens.size(); ++i) {
        Token& t = tokens[i];
        if (t.Text.isEmpty())
            continue;
        if (i > 0) {
            const Token& before = tokens[i - 1];
            if (before.Start + before.Text.size() == t.Start && !before.Text.isEmpty() &&
                isNameChar(before.Text.back()) && isNameChar(t.Text.front()))
                t.Glued = true;
        }
        if (i + 1 < tokens.size()) {
            const Token& after = tokens[i + 1];
            if (t.Start + t.Text.size() == after.Start && !after.Text.isEmpty() &&
                after.Text.front() == u'$' && isNameChar(t.Text.back()))
                t.Glued = true;
        }
    }
}

bool isWord(const Token& t) {
    return t.Raw == TokenKind::Reserved || t.Raw == TokenKind::Keyword ||
           t.Raw == TokenKind::Normal;
}

QString closerOf(Kind kind) {
    switch (kind) {
    case Kind::Then:
        return QStringLiteral("END");
    case Kind::For:
        return QStringLiteral("NEXT");
    case Kind::Loop:
        return QStringLiteral("REPEAT");
    case Kind::Case:
        return QStringLiteral("END CASE");
    case Kind::Transaction:
        return QStringLiteral("END TRANSACTION");
    case Kind::User:
        break;
    }
    return QStringLiteral("its closing word");
}

QString labelName(const QString& token) {
    return token.endsWith(QLatin1Char(':')) ? token.chopped(1) : token;
}

// The walk over one program.
class Walk {
public:
    Walk(const clsKeywords& table, std::vector<StructureCheck::Finding>& findings)
        : table_(table), findings_(findings) {}

    void Line(int32_t line, const std::vector<Token>& tokens);
    // A line of a branch the walk doesn't follow: only the label it may define counts.
    void SkippedLine(const std::vector<Token>& tokens) {
        if (!tokens.empty() && tokens[0].Raw == LexClass::RawLabel)
            labelsFolded_.insert(labelName(tokens[0].Text).toUpper(), 0);
    }
    void Finish();

private:
    void report(int32_t line, const QString& message) { findings_.push_back({line, message}); }
    void open(Kind kind, int32_t line, QString opener, QString variable = QString()) {
        stack_.push_back(
            {kind, line, std::move(opener), std::move(variable), column_, false, false});
    }
    // Pops the innermost block of `kind`, reporting the blocks left open inside it. False when
    // none is open.
    bool close(Kind kind, int32_t line, const QString& variable);
    void closeOrReport(Kind kind, int32_t line, const QString& closer, const QString& variable);
    void middleOfCase(int32_t line);
    void closeEnd(int32_t line);
    void dedent(bool unlabelled, const Token& first);
    void defineLabel(int32_t line, const QString& name) {
        const auto known = labels_.constFind(name);
        if (known != labels_.constEnd())
            report(line,
                   QStringLiteral("Label %1 is already defined on line %2").arg(name).arg(*known));
        else
            labels_.insert(name, line);
        labelsFolded_.insert(name.toUpper(), line);
    }
    void unclosed(const Block& block) {
        report(block.Line,
               QStringLiteral("%1 is never closed by %2").arg(block.Opener, closerOf(block.What)));
    }
    const clsKeyword* entry(const Token& t) const {
        return t.Glued                                                       ? nullptr
               : t.Raw == TokenKind::Reserved || t.Raw == TokenKind::Keyword ? table_.Item(t.Text)
                                                                             : nullptr;
    }
    bool is(const Token& t, int32_t block) const {
        const clsKeyword* e = entry(t);
        return e && e->BlockFlags == block;
    }

    const clsKeywords& table_;
    std::vector<StructureCheck::Finding>& findings_;
    std::vector<Block> stack_;
    // Label name -> line of its first definition; case as written.
    QHash<QString, int32_t> labels_;
    QHash<QString, int32_t> labelsFolded_;
    struct Target {
        QString Name;
        int32_t Line;
    };
    std::vector<Target> targets_;
    bool continued_ = false;
    // Where the statements of the current line start; a continued line keeps its first's.
    int32_t column_ = 0;
    // The block the last END closed, when nothing but that END may have ended it.
    std::optional<Block> lastEnd_;
};

bool Walk::close(Kind kind, int32_t line, const QString& variable) {
    auto found = std::find_if(stack_.rbegin(), stack_.rend(),
                              [kind](const Block& b) { return b.What == kind; });
    if (found == stack_.rend())
        return false;
    const auto index = static_cast<size_t>(std::distance(found, stack_.rend()) - 1);
    for (size_t i = stack_.size(); i-- > index + 1;)
        unclosed(stack_[i]);
    const Block& block = stack_[index];
    if (kind == Kind::For && !variable.isEmpty() && !block.Variable.isEmpty() &&
        variable.compare(block.Variable, Qt::CaseInsensitive) != 0)
        report(line, QStringLiteral("NEXT %1 doesn't match FOR %2 of line %3")
                         .arg(variable, block.Variable)
                         .arg(block.Line));
    stack_.resize(index);
    return true;
}

void Walk::closeOrReport(Kind kind, int32_t line, const QString& closer, const QString& variable) {
    if (close(kind, line, variable))
        return;
    if (kind == Kind::For)
        report(line, QStringLiteral("%1 without FOR").arg(closer));
    else if (kind == Kind::Loop)
        report(line, QStringLiteral("%1 without LOOP").arg(closer));
    else if (kind == Kind::Case)
        report(line, QStringLiteral("%1 without BEGIN CASE").arg(closer));
    else if (kind == Kind::Transaction)
        report(line, QStringLiteral("%1 without BEGIN TRANSACTION").arg(closer));
    else
        report(line, QStringLiteral("%1 with nothing open").arg(closer));
}

// END closes the innermost THEN, ELSE or LOCKED, or ends the program when none is open. Real
// code lines an END up with the line that opened its block: an END further left than that
// belongs to an outer block, and the blocks in between lost their END.
void Walk::closeEnd(int32_t line) {
    const auto isThen = [](const Block& b) { return b.What == Kind::Then; };
    const auto nearest = std::find_if(stack_.rbegin(), stack_.rend(), isThen);
    if (nearest == stack_.rend())
        return;
    if (column_ >= nearest->Column) {
        // The last END of a program whose block had a statement outside it ends the program.
        if (nearest == stack_.rbegin() && nearest->Dedented)
            lastEnd_ = *nearest;
        close(Kind::Then, line, QString());
        return;
    }
    const auto match = std::find_if(nearest, stack_.rend(), [this](const Block& b) {
        return b.What == Kind::Then && b.Column == column_;
    });
    if (match != stack_.rend()) {
        const auto index = static_cast<size_t>(std::distance(match, stack_.rend()) - 1);
        while (stack_.size() > index + 1) {
            unclosed(stack_.back());
            stack_.pop_back();
        }
        stack_.pop_back();
        return;
    }
    // Left of its block, and the block had a statement outside it: the END belongs further
    // out, or ends the program.
    if (nearest == stack_.rbegin() && nearest->Dedented) {
        unclosed(stack_.back());
        stack_.pop_back();
        return;
    }
    close(Kind::Then, line, QString());
}

// In indented code a statement that stands no further right than the THEN or ELSE line of
// the open block may be behind that block, its END missing; real code is sloppy enough that
// only an END out of line with the block confirms it. Only a block whose body was seen
// indented counts, so unindented code raises nothing.
void Walk::dedent(bool unlabelled, const Token& first) {
    if (stack_.empty())
        return;
    if (column_ > stack_.back().Column) {
        stack_.back().Indented = true;
        return;
    }
    const clsKeyword* e = entry(first);
    if (!unlabelled || (e && e->BlockFlags != 0))
        return;
    for (auto b = stack_.rbegin(); b != stack_.rend(); ++b) {
        if (b->What != Kind::Then || column_ > b->Column)
            break;
        if (b->Indented)
            b->Dedented = true;
    }
}

void Walk::middleOfCase(int32_t line) {
    if (!stack_.empty() && stack_.back().What == Kind::Case)
        return;
    auto found = std::find_if(stack_.rbegin(), stack_.rend(),
                              [](const Block& b) { return b.What == Kind::Case; });
    if (found == stack_.rend()) {
        report(line, QStringLiteral("CASE outside BEGIN CASE"));
        return;
    }
    while (stack_.back().What != Kind::Case) {
        unclosed(stack_.back());
        stack_.pop_back();
    }
}

void Walk::Line(int32_t line, const std::vector<Token>& tokens) {
    if (tokens.empty())
        return;
    const bool continuation = continued_;
    continued_ = tokens.back().Text == QLatin1String(",");
    // A trailing ";" (as in "THEN ;* NOTE") leaves the last word last.
    size_t last = tokens.size() - 1;
    while (last > 0 && tokens[last].Raw == LexClass::RawSeparator)
        --last;
    size_t start = 0;
    if (tokens[0].Raw == LexClass::RawLabel) {
        start = 1;
        if (!continuation)
            defineLabel(line, labelName(tokens[0].Text));
    }
    // "NAME :" alone on its line is a label too.
    if (!continuation && tokens.size() >= 2 && tokens[0].Raw == TokenKind::Normal &&
        tokens[1].Text == QLatin1String(":") &&
        (tokens.size() == 2 || tokens[2].Raw == LexClass::RawSeparator) &&
        tokens[0].Text.front().isLetter()) {
        defineLabel(line, tokens[0].Text);
        start = 2;
    }
    lastEnd_.reset();
    if (!continuation && start < tokens.size()) {
        column_ = tokens[start].Start;
        dedent(start == 0, tokens[start]);
    }
    bool first = true;
    bool gluedGo = false;
    for (size_t i = start; i < tokens.size(); ++i) {
        const Token& t = tokens[i];
        if (t.Raw == LexClass::RawSeparator) {
            first = true;
            continue;
        }
        const bool wasFirst = first;
        first = false;
        if (t.Raw == LexClass::RawGo) {
            gluedGo = t.Glued;
            continue;
        }
        if (t.Raw == TokenKind::Label) {
            if (!gluedGo)
                targets_.push_back({labelName(t.Text), line});
            continue;
        }
        if (t.Raw != LexClass::RawTargetComma)
            gluedGo = false;
        const Token* next =
            i < last && tokens[i + 1].Raw != LexClass::RawSeparator ? &tokens[i + 1] : nullptr;
        const QString nextWord = next && isWord(*next) ? next->Text : QString();
        if (wasFirst && t.Text.compare(QLatin1String("LOCAL"), Qt::CaseInsensitive) == 0 &&
            i + 2 <= last) {
            const QString what = nextWord.toUpper();
            if (what == QLatin1String("SUBROUTINE") || what == QLatin1String("FUNCTION") ||
                what == QLatin1String("SUB")) {
                const QString name = labelName(tokens[i + 2].Text);
                labels_.insert(name, line);
                labelsFolded_.insert(name.toUpper(), line);
            }
        }
        if (i == last && i >= 1 &&
            t.Text.compare(QLatin1String("ERROR"), Qt::CaseInsensitive) == 0 &&
            tokens[i - 1].Text.compare(QLatin1String("ON"), Qt::CaseInsensitive) == 0) {
            open(Kind::Then, line, QStringLiteral("ON ERROR"));
            continue;
        }
        const clsKeyword* e = entry(t);
        if (!e)
            continue;
        switch (e->BlockFlags) {
        case K::BlockFor:
            if (wasFirst)
                open(Kind::For, line, (QStringLiteral("FOR ") + nextWord).trimmed(), nextWord);
            break;
        case K::BlockNext:
            if (wasFirst)
                closeOrReport(Kind::For, line, (QStringLiteral("NEXT ") + nextWord).trimmed(),
                              nextWord);
            break;
        case K::BlockLoop:
            if (wasFirst)
                open(Kind::Loop, line, QStringLiteral("LOOP"));
            break;
        case K::BlockRepeat:
            closeOrReport(Kind::Loop, line, QStringLiteral("REPEAT"), QString());
            break;
        case K::BlockBegin:
            if (!wasFirst || !next)
                break;
            if (is(*next, K::BlockCase)) {
                open(Kind::Case, line, QStringLiteral("BEGIN CASE"));
                ++i;
            } else if (nextWord.compare(QLatin1String("TRANSACTION"), Qt::CaseInsensitive) == 0) {
                open(Kind::Transaction, line, QStringLiteral("BEGIN TRANSACTION"));
                ++i;
            }
            break;
        case K::BlockEnd:
            if (!wasFirst)
                break;
            if (next && is(*next, K::BlockCase)) {
                closeOrReport(Kind::Case, line, QStringLiteral("END CASE"), QString());
                ++i;
            } else if (nextWord.compare(QLatin1String("TRANSACTION"), Qt::CaseInsensitive) == 0) {
                closeOrReport(Kind::Transaction, line, QStringLiteral("END TRANSACTION"),
                              QString());
                ++i;
            } else {
                // With no THEN or ELSE open, END ends the program.
                closeEnd(line);
            }
            break;
        case K::BlockCase:
            if (wasFirst)
                middleOfCase(line);
            break;
        case K::BlockThen:
        case K::BlockElse:
        case K::BlockLocked:
            if (i == last)
                open(Kind::Then, line, t.Text.toUpper());
            break;
        case K::BlockOpenLast:
            if (i == last)
                open(Kind::User, line, t.Text);
            break;
        case K::BlockOpenFirst:
            if (wasFirst)
                open(Kind::User, line, t.Text);
            break;
        case K::BlockOpen:
            open(Kind::User, line, t.Text);
            break;
        case K::BlockClose:
            closeOrReport(Kind::User, line, t.Text, QString());
            break;
        default:
            break;
        }
    }
}

void Walk::Finish() {
    if (lastEnd_)
        unclosed(*lastEnd_);
    for (auto b = stack_.rbegin(); b != stack_.rend(); ++b)
        unclosed(*b);
    stack_.clear();
    for (const Target& target : targets_)
        if (!labels_.contains(target.Name) && !labelsFolded_.contains(target.Name.toUpper()))
            report(target.Line, QStringLiteral("Label %1 is not defined").arg(target.Name));
}

} // namespace

StructureCheck::StructureCheck(std::shared_ptr<clsKeywords> keywords)
    : keywords_(std::move(keywords)), lex_(std::make_shared<LexClass>()) {
    lex_->Keywords = keywords_;
    lex_->Highlight = true;
}

StructureCheck::~StructureCheck() = default;

std::vector<StructureCheck::Finding> StructureCheck::Check(const QByteArray& bytes) const {
    std::vector<QString> lines;
    const QByteArrayView all(bytes);
    qsizetype from = 0;
    for (;;) {
        const qsizetype lf = all.indexOf('\n', from);
        qsizetype stop = lf < 0 ? all.size() : lf;
        if (lf >= 0 && stop > from && all[stop - 1] == '\r')
            --stop;
        bool bytewise = false;
        lines.push_back(TextFormatter::Decode(all.sliced(from, stop - from), bytewise));
        if (lf < 0)
            break;
        from = lf + 1;
    }
    return CheckLines(lines);
}

std::vector<StructureCheck::Finding>
StructureCheck::CheckLines(const std::vector<QString>& lines) const {
    std::vector<Finding> findings;
    LineBuffer buffer;
    buffer.SetLex(lex_);
    buffer.SetLines(lines);
    Walk walk(*keywords_, findings);
    std::vector<Token> tokens;
    // Of $IFDEF ... $ELSE ... $ENDIF only the first branch is walked: each branch holds a
    // whole structure of its own.
    std::vector<bool> skipping;
    for (int32_t i = 0; i < buffer.NumLines(); ++i) {
        const QString& text = buffer.LineText(i);
        tokens.clear();
        lex_->ISourceLex4_BeginLineScan(buffer, i, text, 0);
        SourceToken token;
        for (qsizetype guard = 0; guard <= text.size() + 1; ++guard) {
            lex_->ISourceLex4_ScanToken(token);
            if (token.Kind == TokenKind::End || token.Length <= 0)
                break;
            const int32_t k = token.Kind;
            if (k == TokenKind::Plain || k == TokenKind::ValueMark ||
                k == TokenKind::SubvalueMark || k == TokenKind::Comment)
                continue;
            tokens.push_back({lex_->LastKind(), text.mid(token.Start, token.Length), token.Start});
        }
        bool rescan = false;
        lex_->ISourceLex4_EndLineScan(buffer, rescan);
        markGlued(tokens);
        const QString directive = text.trimmed().section(QLatin1Char(' '), 0, 0).toUpper();
        if (directive == QLatin1String("$IFDEF") || directive == QLatin1String("$IFNDEF") ||
            directive == QLatin1String("$IF"))
            skipping.push_back(false);
        else if (directive == QLatin1String("$ELSE") && !skipping.empty())
            skipping.back() = true;
        else if (directive == QLatin1String("$ENDIF") && !skipping.empty())
            skipping.pop_back();
        else if (std::find(skipping.begin(), skipping.end(), true) != skipping.end())
            walk.SkippedLine(tokens);
        else
            walk.Line(i + 1, tokens);
    }
    walk.Finish();
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.Line < b.Line; });
    return findings;
}

QString StructureCheck::Format(const Finding& finding) {
    return QStringLiteral("%1: %2").arg(finding.Line).arg(finding.Message);
}
