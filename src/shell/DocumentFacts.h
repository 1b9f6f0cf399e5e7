#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <cstdint>

class mvDocument;
struct HostContext;

// The rows of the properties dialog for one document: where it lives, by its provider, then
// its state, size and lines, and those of the selection when there is one.
class DocumentFacts {
public:
    using Row = QPair<QString, QString>;
    // `lastUsed` stands in for the place of a document that has no resource yet.
    static QList<Row> Rows(mvDocument& document, const HostContext& lastUsed);
    // Characters; on a host ("mvdb") each CR LF is the one attribute mark it is there.
    static int64_t CountSize(const QString& text, const QString& provider);
    // CR LF pairs plus one; a final line end opens no line of its own.
    static int64_t CountLines(const QString& text);
};
