#pragma once

#include <QString>
#include <cstdint>
#include <memory>

// One word of the keyword table: the word as entered, what it does to block indentation,
// and which lists hold it.
class clsKeyword {
public:
    // Bits of KeywordType.
    static constexpr int32_t TypeBlock = 1;
    static constexpr int32_t TypeLanguage = 2;
    static constexpr int32_t TypeUser = 4;

    // Values of BlockFlags. A word carries one of them; a line ORs those of its words.
    static constexpr int32_t BlockFor = 1;
    static constexpr int32_t BlockNext = 2;
    static constexpr int32_t BlockLoop = 4;
    static constexpr int32_t BlockUntil = 8;
    static constexpr int32_t BlockBegin = 16;
    static constexpr int32_t BlockCase = 32;
    static constexpr int32_t BlockEnd = 64;
    static constexpr int32_t BlockThen = 128;
    static constexpr int32_t BlockElse = 256;
    static constexpr int32_t BlockLocked = 512;
    static constexpr int32_t BlockRepeat = 1024;
    static constexpr int32_t BlockOpen = 2048;
    static constexpr int32_t BlockClose = 4096;
    static constexpr int32_t BlockMiddle = 8192;
    static constexpr int32_t BlockOpenFirst = 16384;
    static constexpr int32_t BlockOpenLast = 32768;

    QString Keyword;
    int32_t BlockFlags = 0;
    int32_t KeywordType = 0;

    // 1 opens a block, 2 closes one, 3 stands in its middle, 0 none.
    int32_t BlockStyle() const;
    // The one-character text form of BlockFlags in a keyword list ("+", "-", "=", "[",
    // "]"), empty for none.
    QString Suffix() const;
    std::unique_ptr<clsKeyword> Clone() const;

    // The block value a list suffix stands for, 0 for any other character.
    static int32_t BlockOfSuffix(QChar suffix);
};
