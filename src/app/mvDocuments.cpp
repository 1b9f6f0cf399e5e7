#include "app/mvDocuments.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "support/BrixError.h"

#include <cmath>

namespace {

constexpr int32_t InvalidCall = 5;
constexpr int32_t TypeMismatch = 13;

const DocumentCollection* documents() {
    return ProcessState::Instance().Documents.get();
}

} // namespace

std::shared_ptr<mvDocument> mvDocuments::Item(const QVariant& index) const {
    const DocumentCollection* all = documents();
    switch (index.typeId()) {
    case QMetaType::QString: {
        auto document = all ? all->Item(index.toString()) : nullptr;
        if (!document)
            throw BrixError(InvalidCall, QStringLiteral("Invalid procedure call or argument"));
        return document;
    }
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double: {
        const double number = std::round(index.toDouble());
        std::shared_ptr<mvDocument> document;
        if (all && number >= 1 && number <= all->Count())
            document = all->At(static_cast<int>(number) - 1);
        if (!document)
            throw BrixError(BrixErrors::SubscriptOutOfRange,
                            QStringLiteral("Subscript out of range"));
        return document;
    }
    default:
        throw BrixError(TypeMismatch, QStringLiteral("Type mismatch"));
    }
}

int32_t mvDocuments::Count() const {
    const DocumentCollection* all = documents();
    return all ? all->Count() : 0;
}

std::shared_ptr<mvDocument> mvDocuments::AddNew() {
    auto document = mvDocument::Create();
    document->FileNew();
    return document;
}

std::vector<std::shared_ptr<mvDocument>> mvDocuments::NewEnum() const {
    const DocumentCollection* all = documents();
    return all ? all->Snapshot() : std::vector<std::shared_ptr<mvDocument>>{};
}
