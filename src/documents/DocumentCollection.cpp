#include "documents/DocumentCollection.h"

#include <algorithm>

void DocumentCollection::Add(const QString& key, std::shared_ptr<mvDocument> document) {
    Remove(key);
    items_.push_back({key, document});
    if (Added)
        Added(document);
}

void DocumentCollection::Remove(const QString& key) {
    auto it =
        std::find_if(items_.begin(), items_.end(), [&](const Entry& e) { return e.key == key; });
    if (it == items_.end())
        return;
    // Destroying a document can call back into the collection; take it out first.
    std::shared_ptr<mvDocument> keep = std::move(it->document);
    items_.erase(it);
}

std::shared_ptr<mvDocument> DocumentCollection::Item(const QString& key) const {
    for (const Entry& e : items_)
        if (e.key == key)
            return e.document;
    return nullptr;
}

std::shared_ptr<mvDocument> DocumentCollection::At(int index) const {
    if (index < 0 || index >= Count())
        return nullptr;
    return items_[static_cast<size_t>(index)].document;
}

std::vector<std::shared_ptr<mvDocument>> DocumentCollection::Snapshot() const {
    std::vector<std::shared_ptr<mvDocument>> out;
    out.reserve(items_.size());
    for (const Entry& e : items_)
        out.push_back(e.document);
    return out;
}
