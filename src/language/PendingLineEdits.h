#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Lines that an operation changed and that Scintilla has not been given yet, kept the way
// Scintilla will take them: runs of lines, each run one stretch of UTF-8 from the start of
// its first line to the end of its last one, line ends and unchanged lines between
// included. Handing a run over is then a single replace.
//
// Operations walk their lines from top to bottom, so edits go to the line added last,
// which sits at the end of the text. Only edits within a line are kept: line numbers
// never move while lines are pending.
class PendingLineEdits {
public:
    struct Run {
        int32_t First = 0;
        int32_t Last = 0;
        size_t Begin = 0;
        size_t End = 0;
    };

    bool IsEmpty() const { return lines_.empty(); }
    // The line edits go to; -1 when nothing is pending.
    int32_t LastLine() const { return lines_.empty() ? -1 : lines_.back().Number; }
    // Whether a line is pending, and its bytes (line end excluded).
    bool Find(int32_t line, std::string_view& bytes) const;

    // Adds a line behind the last one, with its bytes as Scintilla holds them. `between`
    // are the bytes from the end of the last pending line to the start of this one, when
    // the line joins the last run.
    void Add(int32_t line, std::string_view bytes, std::string_view between, bool joinRun);
    // Replaces `count` bytes at `offset` of the last line.
    void ReplaceInLast(size_t offset, size_t count, std::string_view bytes);

    const std::vector<Run>& Runs() const { return runs_; }
    std::string_view Text(const Run& run) const {
        return std::string_view(text_).substr(run.Begin, run.End - run.Begin);
    }
    // Forgets every line; the text keeps its room for the next operation unless that is
    // large.
    void Clear();

private:
    struct Line {
        int32_t Number = 0;
        size_t Begin = 0;
        size_t Length = 0;
    };
    std::vector<Line> lines_;
    std::vector<Run> runs_;
    std::string text_;
};
