#include "shell/DocumentFacts.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "documents/mvResource.h"

namespace {

const QString lineEnd = QStringLiteral("\r\n");

QString yesNo(bool value) {
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace

int64_t DocumentFacts::CountSize(const QString& text, const QString& provider) {
    int64_t size = text.size();
    if (provider == QLatin1String("mvdb"))
        size -= text.count(lineEnd);
    return size;
}

int64_t DocumentFacts::CountLines(const QString& text) {
    int64_t lines = text.count(lineEnd) + 1;
    if (text.endsWith(lineEnd))
        --lines;
    return lines;
}

QList<DocumentFacts::Row> DocumentFacts::Rows(mvDocument& document, const HostContext& lastUsed) {
    QList<Row> rows;
    const std::shared_ptr<mvResource> resource = document.DocumentResource();
    const QString provider = resource ? resource->Provider() : lastUsed.Provider;
    const bool host = provider == QLatin1String("mvdb");
    if (resource && host) {
        rows.append(
            {QStringLiteral("Host"), resource->ServerName().section(QLatin1Char('*'), 0, 0)});
        rows.append({QStringLiteral("Account"), resource->HostDatabaseLabel()});
        rows.append({QStringLiteral("File name"), resource->FolderLabel()});
        rows.append({QStringLiteral("Item ID"), resource->ItemID()});
    } else if (resource) {
        rows.append({QStringLiteral("Location"), resource->FolderLabel()});
        rows.append({QStringLiteral("File name"), resource->ItemID()});
    } else if (host) {
        rows.append({QStringLiteral("Host"), lastUsed.ServerName});
        rows.append({QStringLiteral("Account"), lastUsed.Database});
        rows.append({QStringLiteral("File name"), lastUsed.Folder});
        rows.append({QStringLiteral("Item ID"), document.DisplayName()});
    } else {
        rows.append({QStringLiteral("Location"), document.Path()});
        rows.append({QStringLiteral("File name"), document.DisplayName()});
    }
    rows.append({QStringLiteral("Modified"), yesNo(document.IsDirty())});
    rows.append({QStringLiteral("Read only"), yesNo(document.ReadOnly())});
    const QString text = document.Text();
    rows.append({QStringLiteral("Size"), QString::number(CountSize(text, provider))});
    rows.append({QStringLiteral("Lines"), QString::number(CountLines(text))});
    const QString selection = document.SelText();
    if (!selection.isEmpty()) {
        rows.append(
            {QStringLiteral("Selection size"), QString::number(CountSize(selection, provider))});
        rows.append({QStringLiteral("Selected lines"), QString::number(CountLines(selection))});
    }
    return rows;
}
