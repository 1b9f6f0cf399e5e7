#pragma once

#include <QString>
#include <cstdint>
#include <vector>

// The lines of a program that a compiler's output names, with what it says about each.
// Understood are QM's "12: message" (and "12.3: message" for line 3 of a record included
// at line 12), "Line 12 ..." anywhere in a line, and the zero-padded "0012 ..." that starts
// UniVerse-style lines.
class CompileMessageLines {
public:
    struct Entry {
        // One-based, as the compiler counts.
        int32_t Line = 0;
        QString Message;

        bool operator==(const Entry&) const = default;
    };

    // In the order of the output; lines that name no line of the program are left out.
    static std::vector<Entry> Parse(const QString& output);
};
