#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <vector>

class mvDocument;

// The open documents in creation order, keyed by the decimal text of their number. It
// holds the owning reference of each.
class DocumentCollection {
public:
    void Add(const QString& key, std::shared_ptr<mvDocument> document);
    // Removing a key that is not there does nothing.
    void Remove(const QString& key);
    std::shared_ptr<mvDocument> Item(const QString& key) const;
    // Zero-based position in creation order; out of range gives none.
    std::shared_ptr<mvDocument> At(int index) const;
    int Count() const { return static_cast<int>(items_.size()); }
    bool Contains(const QString& key) const { return Item(key) != nullptr; }
    // A copy, so that a walk may close documents as it goes.
    std::vector<std::shared_ptr<mvDocument>> Snapshot() const;

    // Told of every document added, after it is in the collection (the automation server
    // puts it on the bus).
    std::function<void(const std::shared_ptr<mvDocument>&)> Added;

private:
    struct Entry {
        QString key;
        std::shared_ptr<mvDocument> document;
    };
    std::vector<Entry> items_;
};
