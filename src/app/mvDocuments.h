#pragma once

#include <QVariant>
#include <cstdint>
#include <memory>
#include <vector>

class mvDocument;

// The automation view of Documents: every instance shows the one process-wide collection.
class mvDocuments {
public:
    // A number counts from 1 in creation order; a string is a DocumentNumber. Raises a
    // BrixError for an index of another type or one that finds nothing.
    std::shared_ptr<mvDocument> Item(const QVariant& index) const;
    int32_t Count() const;
    // A new document, made new with FileNew.
    std::shared_ptr<mvDocument> AddNew();
    std::vector<std::shared_ptr<mvDocument>> NewEnum() const;
};
