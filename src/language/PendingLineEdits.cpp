#include "language/PendingLineEdits.h"

#include <algorithm>

bool PendingLineEdits::Find(int32_t line, std::string_view& bytes) const {
    if (lines_.empty() || line > lines_.back().Number)
        return false;
    auto it = std::prev(lines_.end());
    // The line an operation works on is nearly always the last one added.
    if (it->Number != line) {
        it = std::lower_bound(lines_.begin(), it, line,
                              [](const Line& l, int32_t n) { return l.Number < n; });
        if (it->Number != line)
            return false;
    }
    bytes = std::string_view(text_).substr(it->Begin, it->Length);
    return true;
}

void PendingLineEdits::Add(int32_t line, std::string_view bytes, std::string_view between,
                           bool joinRun) {
    if (joinRun && !runs_.empty()) {
        text_.append(between);
    } else {
        runs_.push_back({line, line, text_.size(), text_.size()});
    }
    lines_.push_back({line, text_.size(), bytes.size()});
    text_.append(bytes);
    runs_.back().Last = line;
    runs_.back().End = text_.size();
}

void PendingLineEdits::ReplaceInLast(size_t offset, size_t count, std::string_view bytes) {
    Line& last = lines_.back();
    offset = std::min(offset, last.Length);
    count = std::min(count, last.Length - offset);
    text_.replace(last.Begin + offset, count, bytes);
    last.Length = last.Length - count + bytes.size();
    runs_.back().End = text_.size();
}

void PendingLineEdits::Clear() {
    // Room for an ordinary operation stays; what a whole large program took goes back.
    constexpr size_t keep = size_t(8) << 20;
    if (text_.capacity() > keep) {
        std::string().swap(text_);
        std::vector<Line>().swap(lines_);
    }
    lines_.clear();
    runs_.clear();
    text_.clear();
}
