#include "language/clsKeyword.h"

namespace {

struct BlockForm {
    int32_t flags;
    int32_t style;
    char16_t suffix;
};

constexpr BlockForm kForms[] = {
    {clsKeyword::BlockFor, 1, u'+'},       {clsKeyword::BlockNext, 2, u'-'},
    {clsKeyword::BlockLoop, 1, u'+'},      {clsKeyword::BlockUntil, 3, u'='},
    {clsKeyword::BlockBegin, 1, u'+'},     {clsKeyword::BlockCase, 3, u'='},
    {clsKeyword::BlockEnd, 2, u'-'},       {clsKeyword::BlockThen, 1, u'+'},
    {clsKeyword::BlockElse, 1, u'+'},      {clsKeyword::BlockLocked, 1, u'+'},
    {clsKeyword::BlockRepeat, 2, u'-'},    {clsKeyword::BlockOpen, 1, u'+'},
    {clsKeyword::BlockClose, 2, u'-'},     {clsKeyword::BlockMiddle, 3, u'='},
    {clsKeyword::BlockOpenFirst, 1, u'['}, {clsKeyword::BlockOpenLast, 1, u']'},
};

const BlockForm* formOf(int32_t flags) {
    for (const BlockForm& form : kForms) {
        if (form.flags == flags)
            return &form;
    }
    return nullptr;
}

} // namespace

int32_t clsKeyword::BlockStyle() const {
    const BlockForm* form = formOf(BlockFlags);
    return form ? form->style : 0;
}

QString clsKeyword::Suffix() const {
    const BlockForm* form = formOf(BlockFlags);
    return form ? QString(QChar(form->suffix)) : QString();
}

std::unique_ptr<clsKeyword> clsKeyword::Clone() const {
    auto copy = std::make_unique<clsKeyword>();
    copy->Keyword = Keyword;
    copy->BlockFlags = BlockFlags;
    copy->KeywordType = KeywordType;
    return copy;
}

int32_t clsKeyword::BlockOfSuffix(QChar suffix) {
    switch (suffix.unicode()) {
    case u'+':
        return BlockOpen;
    case u'-':
        return BlockClose;
    case u'=':
        return BlockMiddle;
    case u'[':
        return BlockOpenFirst;
    case u']':
        return BlockOpenLast;
    default:
        return 0;
    }
}
