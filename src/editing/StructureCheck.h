#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

class LexClass;
class clsKeywords;

// Checks the block structure and the labels of a BASIC program without compiling it: blocks
// never closed, closing words with nothing open or of the wrong kind, GOSUB and GOTO targets
// the program doesn't define, labels defined twice, NEXT naming another variable than its
// FOR. It reads the lines through the same lexer and keyword table as Format, so what counts
// as a block word is what the user's lists say. It errs on the side of silence: a line it
// can't judge raises nothing.
class StructureCheck {
public:
    struct Finding {
        int32_t Line = 0; // one-based
        QString Message;
    };

    explicit StructureCheck(std::shared_ptr<clsKeywords> keywords);
    ~StructureCheck();
    StructureCheck(const StructureCheck&) = delete;
    StructureCheck& operator=(const StructureCheck&) = delete;

    // A program held as bytes, read line by line as brix-format reads it.
    std::vector<Finding> Check(const QByteArray& bytes) const;
    // The program's lines, without their ends; findings in line order.
    std::vector<Finding> CheckLines(const std::vector<QString>& lines) const;

    // One finding in the compiler form "N: message".
    static QString Format(const Finding& finding);

private:
    std::shared_ptr<clsKeywords> keywords_;
    std::shared_ptr<LexClass> lex_;
};
