#include "app/DocumentAdaptor.h"

#include "app/AutomationReply.h"
#include "app/AutomationServer.h"
#include "app/DocumentObject.h"
#include "documents/mvDocument.h"
#include "support/BrixError.h"

namespace {

constexpr int32_t ObjectGone = 91;

} // namespace

DocumentAdaptor::DocumentAdaptor(DocumentObject& object)
    : QDBusAbstractAdaptor(&object), object_(object) {
    setAutoRelaySignals(false);
}

std::shared_ptr<mvDocument> DocumentAdaptor::document() const {
    auto document = object_.Document();
    if (!document)
        throw BrixError(ObjectGone, QStringLiteral("The document has been closed"));
    return document;
}

template <typename Value, typename Read> Value DocumentAdaptor::read(Read&& reader) const {
    try {
        if (auto document = object_.Document())
            return reader(*document);
    } catch (...) {
    }
    return Value{};
}

void DocumentAdaptor::changed() const {
    object_.Server().CheckProperties();
}

QDBusObjectPath DocumentAdaptor::Application() const {
    return QDBusObjectPath(AutomationServer::ApplicationPath);
}

bool DocumentAdaptor::ReadOnly() const {
    return read<bool>([](mvDocument& d) { return d.ReadOnly(); });
}

bool DocumentAdaptor::NewItem() const {
    return read<bool>([](mvDocument& d) { return d.NewItem(); });
}

bool DocumentAdaptor::IsDirty() const {
    return read<bool>([](mvDocument& d) { return d.IsDirty(); });
}

QString DocumentAdaptor::Path() const {
    return read<QString>([](mvDocument& d) { return d.Path(); });
}

QString DocumentAdaptor::FileName() const {
    return read<QString>([](mvDocument& d) { return d.FileName(); });
}

QString DocumentAdaptor::ItemID() const {
    return read<QString>([](mvDocument& d) { return d.ItemID(); });
}

bool DocumentAdaptor::LocalFile() const {
    return read<bool>([](mvDocument& d) { return d.LocalFile(); });
}

bool DocumentAdaptor::Highlight() const {
    return read<bool>([](mvDocument& d) { return d.Highlight(); });
}

void DocumentAdaptor::SetHighlight(bool highlight) {
    read<bool>([highlight](mvDocument& d) {
        d.SetHighlight(highlight);
        return true;
    });
    changed();
}

QString DocumentAdaptor::Text() const {
    return read<QString>([](mvDocument& d) { return d.Text(); });
}

void DocumentAdaptor::SetText(const QString& text) {
    read<bool>([&text](mvDocument& d) {
        d.SetText(text);
        return true;
    });
    changed();
}

QString DocumentAdaptor::SelText() const {
    return read<QString>([](mvDocument& d) { return d.SelText(); });
}

void DocumentAdaptor::SetSelText(const QString& text) {
    read<bool>([&text](mvDocument& d) {
        d.SetSelText(text);
        return true;
    });
    changed();
}

QString DocumentAdaptor::DisplayName() const {
    return read<QString>([](mvDocument& d) { return d.DisplayName(); });
}

bool DocumentAdaptor::FileNew(const QDBusMessage& call) {
    const bool done = AutomationReply::Run(call, "", [&] { return document()->FileNew(); });
    changed();
    return done;
}

bool DocumentAdaptor::FileOpen(const QString& Path, bool ReadOnly, const QDBusMessage& call,
                               QString& PathOut, bool& ReadOnlyOut) {
    PathOut = Path;
    ReadOnlyOut = ReadOnly;
    const bool done =
        AutomationReply::Run(call, "sb", [&] { return document()->FileOpen(Path, ReadOnly); });
    changed();
    return done;
}

bool DocumentAdaptor::FileSave(const QDBusMessage& call) {
    const bool done = AutomationReply::Run(call, "", [&] { return document()->FileSave(); });
    changed();
    return done;
}

bool DocumentAdaptor::FileSaveAs(const QString& Path, const QDBusMessage& call, QString& PathOut) {
    PathOut = Path;
    const bool done = AutomationReply::Run(call, "s", [&] { return document()->FileSaveAs(Path); });
    changed();
    return done;
}

bool DocumentAdaptor::FileClose(bool Prompt, const QDBusMessage& call) {
    const bool done =
        AutomationReply::Run(call, "b", [&] { return document()->FileClose(Prompt); });
    changed();
    return done;
}

bool DocumentAdaptor::FileClose(const QDBusMessage& call) {
    const bool done = AutomationReply::Run(call, "", [&] { return document()->FileClose(false); });
    changed();
    return done;
}

void DocumentAdaptor::PrintText(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { document()->PrintText(); });
}

void DocumentAdaptor::Compile(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { document()->Compile(); });
}

void DocumentAdaptor::Format(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { document()->Format(); });
    changed();
}

void DocumentAdaptor::InsValue(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { document()->InsValue(); });
    changed();
}

void DocumentAdaptor::InsSubValue(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { document()->InsSubValue(); });
    changed();
}

void DocumentAdaptor::Activate(const QDBusMessage& call) {
    AutomationReply::Run(call, "", [&] { document()->Activate(); });
    changed();
}

void DocumentAdaptor::GotoLabel(const QString& Target, const QDBusMessage& call,
                                QString& TargetOut) {
    TargetOut = Target;
    AutomationReply::Run(call, "s", [&] { document()->GotoLabel(Target); });
}

void DocumentAdaptor::GotoLine(int Line, const QDBusMessage& call) {
    AutomationReply::Run(call, "i", [&] { document()->GotoLine(Line); });
}
