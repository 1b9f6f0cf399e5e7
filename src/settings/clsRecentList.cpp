#include "settings/clsRecentList.h"

#include "support/BrixError.h"

#include <algorithm>

namespace {

[[noreturn]] void invalidIndex() {
    throw BrixError(BrixErrors::InvalidPropertyArrayIndex,
                    QStringLiteral("Invalid property array index"));
}

} // namespace

clsRecentList::clsRecentList() {
    SetListSize(4);
}

void clsRecentList::SetListSize(int16_t size) {
    if (size < 0)
        return;
    size = std::min(size, maxListSize_);
    if (size < 1) {
        listSize_ = 0;
        listCount_ = 0;
        return;
    }
    while (items_.size() < size)
        items_.append(QString());
    listSize_ = size;
    listCount_ = std::min(listCount_, listSize_);
}

QString clsRecentList::ListItem(int16_t index) const {
    if (index < 1 || index > listCount_)
        invalidIndex();
    return items_[index - 1];
}

void clsRecentList::SetListItem(int16_t index, const QString& value) {
    if (index < 1 || index > listCount_ + 1 || index > listSize_)
        invalidIndex();
    items_[index - 1] = value;
    if (index == listCount_ + 1)
        ++listCount_;
}

int clsRecentList::find(const QString& value) const {
    for (int i = 0; i < listCount_; ++i)
        if (items_[i].compare(value, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

void clsRecentList::AddItem(const QString& value) {
    // A list of size 0 has nowhere to keep it.
    if (listSize_ < 1)
        return;
    int last = find(value);
    if (last < 0) {
        if (listCount_ < listSize_)
            ++listCount_;
        last = listCount_ - 1;
    }
    for (int i = last; i > 0; --i)
        items_[i] = items_[i - 1];
    items_[0] = value;
}

void clsRecentList::RemoveItem(const QString& value) {
    const int found = find(value);
    if (found < 0)
        return;
    for (int i = found; i + 1 < listCount_; ++i)
        items_[i] = items_[i + 1];
    --listCount_;
}

void clsRecentList::SetMaxListSize(int16_t size) {
    if (size > 0)
        maxListSize_ = size;
}
