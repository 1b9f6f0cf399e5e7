#pragma once

#include "language/clsKeyword.h"

#include <QString>
#include <QStringView>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

// The table of the words the editor knows, in insertion order. Keys compare without regard
// to case whatever CaseSensitive says; Item makes up for that. Besides the words the table
// derives which non-letters may begin a word and which non-alphanumerics may continue one.
//
// One table is shared: the settings own it, and every lexer holds the same object, so the
// table is passed around as a std::shared_ptr and changed in place (UpdateFrom keeps it).
class clsKeywords {
public:
    // Filled with the built-in block words and the default language list.
    clsKeywords();
    ~clsKeywords();
    clsKeywords(const clsKeywords&) = delete;
    clsKeywords& operator=(const clsKeywords&) = delete;

    bool CaseSensitive() const { return caseSensitive_; }
    // Rebuilds the collection under the keys of the new mode, in the same order.
    void SetCaseSensitive(bool caseSensitive);

    // Replaces the list of `type` (2 language, 4 user) with the words of `text`, each
    // possibly followed by its block suffix. Throws BrixError 9 for an empty delimiter or
    // another type.
    void SetKeywordList(int32_t type, const QString& delimiter, const QString& text);
    // The words of the lists that share a bit with `type`, each with its suffix, in table
    // order. Throws BrixError 9 like SetKeywordList.
    QString GetKeywordList(int32_t type, const QString& delimiter) const;

    QString KeywordFirstChars() const;
    QString KeywordNextChars() const;
    // Membership tests of the two sets without regard to case, as the lexer needs them.
    bool IsFirstChar(char16_t c) const;
    bool IsNextChar(char16_t c) const;
    // The same tests for the ASCII range as one table, for the lexer's inner loop, with
    // the letters and digits marked as well.
    static constexpr uint8_t CharFirst = 1;
    static constexpr uint8_t CharNext = 2;
    static constexpr uint8_t CharLetter = 4;
    static constexpr uint8_t CharDigit = 8;
    const uint8_t* AsciiClasses() const {
        derive();
        return asciiClasses_.data();
    }

    // The entry of a word, or null. Upper-cases the word unless CaseSensitive; then the
    // entry's word must equal `word` exactly. Allocates nothing.
    const clsKeyword* Item(QStringView word) const;
    clsKeyword* Item(QStringView word);

    // Adds the word, or extends the entry that is there: the type bits are ORed in and the
    // block flags replaced, unless the entry is a built-in block word. Null when a word of
    // another case holds the key.
    clsKeyword* AddKeyword(const QString& word, int32_t type, int32_t blockFlags);
    // Takes the word off the lists of `type`; an entry left with no list goes.
    void RemoveKeyword(const QString& word, int32_t type);

    // Collection operations. Add of a key that is there already changes nothing.
    void Add(const clsKeyword& entry);
    void Remove(const QString& word);
    int32_t Count() const { return static_cast<int32_t>(entries_.size()); }
    // The entries in table order, zero-based.
    const clsKeyword& At(int32_t index) const { return entries_[static_cast<size_t>(index)]->word; }

    // A new table with this one's mode and lists.
    std::shared_ptr<clsKeywords> Clone() const;
    // Becomes a new table, then takes over the mode and the lists of `other`.
    void UpdateFrom(const clsKeywords& other);

private:
    struct Entry {
        clsKeyword word;
        QString folded;
        uint32_t hash = 0;
    };
    struct CharSet {
        std::array<uint64_t, 2> ascii{};
        std::vector<char16_t> other;
        QString text;
        void Reset(const char* initial);
        void Append(QChar c);
        bool Contains(char16_t c) const;
    };

    void fillDefaults();
    void clear();
    void derive() const;
    const Entry* find(QStringView word) const;
    void insert(Entry* entry);
    void erase(const Entry* entry);
    void rehash(size_t capacity);
    // Adds an entry's length to the sets find() rules words out by.
    void noteLength(const Entry& entry);
    QString keyOf(const QString& word) const;

    bool caseSensitive_ = false;
    std::vector<std::unique_ptr<Entry>> entries_;
    // Open addressing, linear probing over the folded keys; size is a power of two.
    std::vector<Entry*> slots_;
    // Lengths of the words in the table (63 for all longer); a removal leaves its bit.
    uint64_t lengths_ = 0;
    // The same by folded first character, for the ASCII ones.
    std::array<uint64_t, 128> firstLengths_{};
    mutable bool dirty_ = true;
    mutable CharSet first_;
    mutable CharSet next_;
    mutable std::array<uint8_t, 128> asciiClasses_{};
};
