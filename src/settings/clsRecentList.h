#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

// The most-recently-used list behind the File menu: newest first, bounded, and free of
// entries that differ only in case.
class clsRecentList {
public:
    clsRecentList();

    int16_t ListSize() const { return listSize_; }
    // A negative size is ignored, one above MaxListSize is cut to it, one below 1 empties the
    // list. Lowering the size loses the oldest items for good.
    void SetListSize(int16_t size);
    int16_t ListCount() const { return listCount_; }

    // Item 1 is the newest. An index outside 1 to ListCount raises error 381.
    QString ListItem(int16_t index) const;
    // Replaces an item, or appends at ListCount + 1 while the size allows; otherwise error 381.
    void SetListItem(int16_t index, const QString& value);

    // Puts the value first; an entry equal to it but for case moves up and takes its spelling.
    void AddItem(const QString& value);
    void RemoveItem(const QString& value);
    // Forgets the items; the size stays.
    void Clear() { listCount_ = 0; }

    int16_t MaxListSize() const { return maxListSize_; }
    // Takes only sizes above 0; the present ListSize is left as it is.
    void SetMaxListSize(int16_t size);

private:
    int find(const QString& value) const;

    int16_t listSize_ = 0;
    int16_t listCount_ = 0;
    int16_t maxListSize_ = 30;
    QStringList items_; // 0-based; never shorter than listSize_
};
