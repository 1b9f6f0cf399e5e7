#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>

class mvHost;

// Finds the source item of a program that an account knows by a catalogued name, as QM
// keeps them: the local catalogue is a VOC entry (V, CS, the path of the compiled object;
// VOC is a hashed file, so it is read with a CT command, only where the connection allows
// commands), the private catalogue a folder of the account holding a copy of the compiled
// object (`cat`, or the folder that VOC's $PRIVATE.CATALOGUE names). A compiled object
// lives in the file's ".OUT" companion under the program's own name, so the source is the
// item of that name in the file without ".OUT"; a private copy is matched to its object by
// its bytes. The global catalogue lies outside the account and is not searched.
class CatalogLookup {
public:
    struct Source {
        QString File;
        QString Item;
        // "local catalogue" or "private catalogue".
        QString Catalogue;
    };

    explicit CatalogLookup(std::shared_ptr<mvHost> host);

    // The source item of the catalogued name, when the account has it and the item is there.
    // Failures of the host give nothing rather than an error: the lookup is a courtesy.
    std::optional<Source> Find(const QString& name);

    // A catalogued copy is the compiled object with another name in its header.
    static bool SameObject(const QByteArray& catalogued, const QByteArray& compiled);

private:
    struct VocRecord {
        bool Found = false;
        QString Type;
        QString Field2;
        QString Field3;
    };
    void readVoc(const QString& name, VocRecord& entry, VocRecord& privateCatalogue);
    std::optional<Source> fromLocal(const VocRecord& entry);
    std::optional<Source> fromPrivate(const QString& name, const QString& folder);
    std::optional<Source> sourceOf(const QString& objectFolder, const QString& objectName,
                                   const QString& catalogue);

    std::shared_ptr<mvHost> host_;
    QString accountFolder_;
};
