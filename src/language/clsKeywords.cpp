#include "language/clsKeywords.h"

#include "language/CaseFold.h"
#include "support/BrixError.h"

#include <QStringList>
#include <algorithm>

namespace {

constexpr uint32_t kHashBasis = 2166136261u;
constexpr uint32_t kHashPrime = 16777619u;

// Bit of a word length in the set of lengths the table holds.
uint64_t lengthBit(qsizetype length) {
    return uint64_t(1) << std::min<qsizetype>(length, 63);
}

uint32_t foldedHash(QStringView word) {
    uint32_t hash = kHashBasis;
    for (QChar c : word) {
        hash ^= CaseFold::Upper(c.unicode());
        hash *= kHashPrime;
    }
    return hash;
}

QString folded(const QString& word) {
    QString out(word.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < word.size(); ++i)
        out[i] = QChar(CaseFold::Upper(word[i].unicode()));
    return out;
}

bool equalsFolded(const QString& foldedKey, QStringView word) {
    if (foldedKey.size() != word.size())
        return false;
    const QChar* key = foldedKey.constData();
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (key[i].unicode() != CaseFold::Upper(word[i].unicode()))
            return false;
    }
    return true;
}

// VB's Trim: blanks only.
QString trimBlanks(const QString& text) {
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text[start] == u' ')
        ++start;
    while (end > start && text[end - 1] == u' ')
        --end;
    return text.mid(start, end - start);
}

void checkListArguments(int32_t type, const QString& delimiter) {
    if (delimiter.isEmpty() || (type != clsKeyword::TypeLanguage && type != clsKeyword::TypeUser))
        throw BrixError(BrixErrors::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
}

struct BuiltIn {
    const char* word;
    int32_t block;
};

constexpr BuiltIn kBlockWords[] = {
    {"IF", 0},
    {"THEN", clsKeyword::BlockThen},
    {"ELSE", clsKeyword::BlockElse},
    {"LOCKED", clsKeyword::BlockLocked},
    {"BEGIN", clsKeyword::BlockBegin},
    {"END", clsKeyword::BlockEnd},
    {"CASE", clsKeyword::BlockCase},
    {"FOR", clsKeyword::BlockFor},
    {"NEXT", clsKeyword::BlockNext},
    {"DO", 0},
    {"LOOP", clsKeyword::BlockLoop},
    {"UNTIL", clsKeyword::BlockUntil},
    {"WHILE", clsKeyword::BlockUntil},
    {"REPEAT", clsKeyword::BlockRepeat},
    {"GO", 0},
    {"GOTO", 0},
    {"GOSUB", 0},
};

const char* const kLanguageList = "IF THEN ELSE END LOCKED BEGIN CASE GO GOTO GOSUB TO SUB "
                                  "SUBROUTINE CALL LOOP UNTIL WHILE DO REPEAT FOR NEXT STEP "
                                  "INCLUDE";

const QString kListDelimiter = QStringLiteral("\r\n");

} // namespace

void clsKeywords::CharSet::Reset(const char* initial) {
    ascii.fill(0);
    other.clear();
    text.clear();
    for (const char* c = initial; *c; ++c)
        Append(QChar(static_cast<char16_t>(*c)));
}

void clsKeywords::CharSet::Append(QChar c) {
    text.append(c);
    const char16_t key = CaseFold::Upper(c.unicode());
    if (key < 128)
        ascii[key >> 6] |= uint64_t(1) << (key & 63);
    else if (std::find(other.begin(), other.end(), key) == other.end())
        other.push_back(key);
}

bool clsKeywords::CharSet::Contains(char16_t c) const {
    const char16_t key = CaseFold::Upper(c);
    if (key < 128)
        return (ascii[key >> 6] >> (key & 63)) & 1;
    return std::find(other.begin(), other.end(), key) != other.end();
}

clsKeywords::clsKeywords() {
    fillDefaults();
}

clsKeywords::~clsKeywords() = default;

void clsKeywords::fillDefaults() {
    for (const BuiltIn& b : kBlockWords)
        AddKeyword(QString::fromLatin1(b.word), clsKeyword::TypeBlock, b.block);
    SetKeywordList(clsKeyword::TypeLanguage, QStringLiteral(" "),
                   QString::fromLatin1(kLanguageList));
    SetKeywordList(clsKeyword::TypeUser, QStringLiteral(" "), QString());
}

void clsKeywords::clear() {
    entries_.clear();
    slots_.clear();
    lengths_ = 0;
    firstLengths_.fill(0);
    caseSensitive_ = false;
    dirty_ = true;
}

QString clsKeywords::keyOf(const QString& word) const {
    return caseSensitive_ ? word : folded(word);
}

const clsKeywords::Entry* clsKeywords::find(QStringView word) const {
    // Most names of a program are no keywords; many of them have a length no word has.
    if (slots_.empty() || !(lengths_ & lengthBit(word.size())))
        return nullptr;
    // Nor do most of them share first letter and length with a word of the table.
    const char16_t first = word.isEmpty() ? 0 : CaseFold::Upper(word.front().unicode());
    if (first < firstLengths_.size() && !(firstLengths_[first] & lengthBit(word.size())))
        return nullptr;
    const size_t mask = slots_.size() - 1;
    const uint32_t hash = foldedHash(word);
    for (size_t i = hash & mask;; i = (i + 1) & mask) {
        const Entry* entry = slots_[i];
        if (!entry)
            return nullptr;
        if (entry->hash == hash && equalsFolded(entry->folded, word))
            return entry;
    }
}

void clsKeywords::noteLength(const Entry& entry) {
    const uint64_t bit = lengthBit(entry.folded.size());
    lengths_ |= bit;
    const char16_t first = entry.folded.isEmpty() ? 0 : entry.folded.front().unicode();
    if (first < firstLengths_.size())
        firstLengths_[first] |= bit;
}

void clsKeywords::rehash(size_t capacity) {
    slots_.assign(capacity, nullptr);
    const size_t mask = capacity - 1;
    lengths_ = 0;
    firstLengths_.fill(0);
    for (const auto& entry : entries_) {
        noteLength(*entry);
        size_t i = entry->hash & mask;
        while (slots_[i])
            i = (i + 1) & mask;
        slots_[i] = entry.get();
    }
}

void clsKeywords::insert(Entry* entry) {
    // Keep the load at most one half so that probes stay short.
    if (slots_.size() < 2 * (entries_.size() + 1)) {
        size_t capacity = 64;
        while (capacity < 2 * (entries_.size() + 1))
            capacity *= 2;
        entries_.emplace_back(entry);
        rehash(capacity);
        return;
    }
    entries_.emplace_back(entry);
    noteLength(*entry);
    const size_t mask = slots_.size() - 1;
    size_t i = entry->hash & mask;
    while (slots_[i])
        i = (i + 1) & mask;
    slots_[i] = entry;
}

void clsKeywords::erase(const Entry* entry) {
    const size_t mask = slots_.size() - 1;
    size_t hole = entry->hash & mask;
    while (slots_[hole] != entry)
        hole = (hole + 1) & mask;
    // Backward-shift deletion: move later members of the probe run into the hole.
    slots_[hole] = nullptr;
    for (size_t j = (hole + 1) & mask; slots_[j]; j = (j + 1) & mask) {
        const size_t home = slots_[j]->hash & mask;
        const bool movable = hole <= j ? (home <= hole || home > j) : (home <= hole && home > j);
        if (movable) {
            slots_[hole] = slots_[j];
            slots_[j] = nullptr;
            hole = j;
        }
    }
    const auto it = std::find_if(entries_.begin(), entries_.end(),
                                 [entry](const auto& e) { return e.get() == entry; });
    if (it != entries_.end())
        entries_.erase(it);
}

void clsKeywords::Add(const clsKeyword& entry) {
    const QString key = keyOf(entry.Keyword);
    if (find(key))
        return;
    auto fresh = std::make_unique<Entry>();
    fresh->word.Keyword = entry.Keyword;
    fresh->word.BlockFlags = entry.BlockFlags;
    fresh->word.KeywordType = entry.KeywordType;
    fresh->folded = folded(key);
    fresh->hash = foldedHash(key);
    insert(fresh.release());
    dirty_ = true;
}

void clsKeywords::Remove(const QString& word) {
    if (const Entry* entry = find(keyOf(word))) {
        erase(entry);
        dirty_ = true;
    }
}

const clsKeyword* clsKeywords::Item(QStringView word) const {
    // Keys are folded already: upper-casing the word first would change nothing.
    const Entry* entry = find(word);
    if (!entry)
        return nullptr;
    if (caseSensitive_ && entry->word.Keyword != word)
        return nullptr;
    return &entry->word;
}

clsKeyword* clsKeywords::Item(QStringView word) {
    return const_cast<clsKeyword*>(std::as_const(*this).Item(word));
}

clsKeyword* clsKeywords::AddKeyword(const QString& word, int32_t type, int32_t blockFlags) {
    if (clsKeyword* entry = Item(word)) {
        entry->KeywordType |= type;
        if (!(entry->KeywordType & clsKeyword::TypeBlock))
            entry->BlockFlags = blockFlags;
        return entry;
    }
    clsKeyword fresh;
    fresh.Keyword = word;
    fresh.KeywordType = type;
    fresh.BlockFlags = blockFlags;
    Add(fresh);
    return Item(word);
}

void clsKeywords::RemoveKeyword(const QString& word, int32_t type) {
    clsKeyword* entry = Item(word);
    if (!entry)
        return;
    const int32_t left = entry->KeywordType & ~type;
    if (left == 0) {
        Remove(word);
        return;
    }
    entry->KeywordType = left;
    if (left == clsKeyword::TypeBlock)
        entry->BlockFlags &=
            ~(clsKeyword::BlockOpen | clsKeyword::BlockClose | clsKeyword::BlockMiddle);
}

void clsKeywords::SetCaseSensitive(bool caseSensitive) {
    if (caseSensitive == caseSensitive_)
        return;
    // Keys compare without regard to case in both modes, so the same entries stand under
    // the new keys in the same order; only the exact-match rule of Item changes.
    caseSensitive_ = caseSensitive;
    dirty_ = true;
}

void clsKeywords::SetKeywordList(int32_t type, const QString& delimiter, const QString& text) {
    checkListArguments(type, delimiter);
    std::vector<QString> listed;
    for (const auto& entry : entries_) {
        if (entry->word.KeywordType & type)
            listed.push_back(entry->word.Keyword);
    }
    for (const QString& word : listed)
        RemoveKeyword(word, type);

    const QStringList fields = text.split(delimiter);
    for (const QString& field : fields) {
        QString word = trimBlanks(field);
        if (word.isEmpty())
            continue;
        const int32_t block = clsKeyword::BlockOfSuffix(word.back());
        if (block != 0)
            word.chop(1);
        AddKeyword(word, type, block);
    }
}

QString clsKeywords::GetKeywordList(int32_t type, const QString& delimiter) const {
    checkListArguments(type, delimiter);
    QString out;
    bool first = true;
    for (const auto& entry : entries_) {
        if (!(entry->word.KeywordType & type))
            continue;
        if (!first)
            out += delimiter;
        first = false;
        out += entry->word.Keyword;
        out += entry->word.Suffix();
    }
    return out;
}

void clsKeywords::derive() const {
    if (!dirty_)
        return;
    first_.Reset("@%_");
    next_.Reset(".%_");
    for (const auto& entry : entries_) {
        const QString& word = entry->word.Keyword;
        if (word.isEmpty())
            continue;
        const QChar lead = word[0];
        if (!CaseFold::IsAsciiLetter(lead.unicode()) && !first_.text.contains(lead))
            first_.Append(lead);
        for (qsizetype i = 1; i < word.size(); ++i) {
            const char16_t c = word[i].unicode();
            if (!CaseFold::IsAsciiLetter(c) && !CaseFold::IsAsciiDigit(c) &&
                !next_.text.contains(word[i]))
                next_.Append(word[i]);
        }
    }
    for (char16_t c = 0; c < 128; ++c)
        asciiClasses_[c] = static_cast<uint8_t>((first_.Contains(c) ? CharFirst : 0) |
                                                (next_.Contains(c) ? CharNext : 0) |
                                                (CaseFold::IsAsciiLetter(c) ? CharLetter : 0) |
                                                (CaseFold::IsAsciiDigit(c) ? CharDigit : 0));
    dirty_ = false;
}

QString clsKeywords::KeywordFirstChars() const {
    derive();
    return first_.text;
}

QString clsKeywords::KeywordNextChars() const {
    derive();
    return next_.text;
}

bool clsKeywords::IsFirstChar(char16_t c) const {
    derive();
    return first_.Contains(c);
}

bool clsKeywords::IsNextChar(char16_t c) const {
    derive();
    return next_.Contains(c);
}

std::shared_ptr<clsKeywords> clsKeywords::Clone() const {
    auto copy = std::make_shared<clsKeywords>();
    copy->SetCaseSensitive(caseSensitive_);
    copy->SetKeywordList(clsKeyword::TypeLanguage, kListDelimiter,
                         GetKeywordList(clsKeyword::TypeLanguage, kListDelimiter));
    copy->SetKeywordList(clsKeyword::TypeUser, kListDelimiter,
                         GetKeywordList(clsKeyword::TypeUser, kListDelimiter));
    return copy;
}

void clsKeywords::UpdateFrom(const clsKeywords& other) {
    // Read first: `other` may be this table.
    const bool caseSensitive = other.caseSensitive_;
    const QString language = other.GetKeywordList(clsKeyword::TypeLanguage, kListDelimiter);
    const QString user = other.GetKeywordList(clsKeyword::TypeUser, kListDelimiter);
    clear();
    fillDefaults();
    SetCaseSensitive(caseSensitive);
    SetKeywordList(clsKeyword::TypeLanguage, kListDelimiter, language);
    SetKeywordList(clsKeyword::TypeUser, kListDelimiter, user);
}
