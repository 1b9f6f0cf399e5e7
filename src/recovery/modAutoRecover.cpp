#include "recovery/modAutoRecover.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/mvDocument.h"
#include "language/ScintillaBuffer.h"
#include "language/SourceView.h"
#include "recovery/RecoveryCopy.h"
#include "recovery/RunIdentity.h"
#include "recovery/frmAutoRecover.h"
#include "settings/Moriox.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QStandardPaths>
#include <map>
#include <sys/stat.h>

namespace {

struct StoreState {
    QString folder;
    QString runName;
    int32_t hostOperations = 0;
    bool pending = false;
    int32_t suspensions = 0;
    bool stopped = false;
    // Copy names by document number; numbers are never reused.
    std::map<int32_t, QString> names;
};

StoreState& store() {
    static StoreState state;
    return state;
}

bool autoRecoverOn() {
    const Moriox* settings = ProcessState::Instance().Settings.get();
    return settings && settings->AutoRecover;
}

QString inFolder(const QString& name) {
    return store().folder + QLatin1Char('/') + name;
}

bool nameTaken(const QString& name) {
    for (const auto& entry : store().names)
        if (entry.second == name)
            return true;
    return false;
}

QString freeName() {
    QString name;
    for (int n = 1; n <= modAutoRecover::MaxSequence; ++n) {
        name = modAutoRecover::RunFileName(n);
        if (!nameTaken(name) && !modAutoRecover::FileExists(inFolder(name)))
            break;
    }
    return name;
}

bool writeCopy(mvDocument& document, const QString& name) {
    SourceView* editor = document.Editor();
    if (!editor)
        return false;
    // The component's own bytes, with no text built on the way.
    const long length = editor->SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    const auto* bytes = reinterpret_cast<const char*>(
        static_cast<intptr_t>(editor->SendScintilla(QsciScintillaBase::SCI_GETCHARACTERPOINTER)));
    return RecoveryCopy::Write(inFolder(name), document.ItemID(), bytes, length);
}

} // namespace

bool modAutoRecover::FileExists(const QString& path) {
    struct stat info = {};
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0;
}

bool modAutoRecover::DirectoryExists(const QString& path) {
    struct stat info = {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool modAutoRecover::IsPlainFile(const QString& path) {
    struct stat info = {};
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
}

bool modAutoRecover::ResolveFolder(bool create) {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty())
        return false;
    if (!DirectoryExists(base) && !(create && QDir().mkpath(base)))
        return false;
    QString path = base;
    for (const char* level : {"Tolvek", "Brix", "AutoRecover"}) {
        path += QLatin1Char('/') + QLatin1String(level);
        if (DirectoryExists(path))
            continue;
        if (!create)
            return false;
        if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && !DirectoryExists(path))
            return false;
    }
    StoreState& state = store();
    state.folder = path;
    if (state.runName.isEmpty())
        state.runName = RunIdentity::CurrentName();
    return true;
}

QString modAutoRecover::Folder() {
    return store().folder;
}

QString modAutoRecover::RunFileName(int n) {
    return RunIdentity::Hex(RunIdentity::Current()) + QLatin1Char('.') +
           QStringLiteral("%1").arg(n, 3, 10, QLatin1Char('0'));
}

QString modAutoRecover::CopyNameOf(int32_t documentNumber) {
    const auto found = store().names.find(documentNumber);
    return found == store().names.end() ? QString() : found->second;
}

bool modAutoRecover::SaveCopies() {
    StoreState& state = store();
    if (!autoRecoverOn() || state.stopped)
        return false;
    // Made again should someone have removed it meanwhile.
    if ((state.folder.isEmpty() || !DirectoryExists(state.folder)) && !ResolveFolder(true))
        return false;
    const DocumentCollection* documents = ProcessState::Instance().Documents.get();
    if (!documents)
        return false;
    int written = 0;
    for (const auto& document : documents->Snapshot()) {
        try {
            if (!document->AutoSaveFlag())
                continue;
            QString& name = state.names[document->DocumentNumber()];
            if (name.isEmpty())
                name = freeName();
            if (writeCopy(*document, name))
                ++written;
        } catch (...) {
            // One document's failure leaves the others their copies.
        }
    }
    return written > 0;
}

int32_t modAutoRecover::BeginHostOperation() {
    if (!autoRecoverOn() || !SaveCopies())
        return 0;
    StoreState& state = store();
    state.pending = true;
    return ++state.hostOperations;
}

void modAutoRecover::EndHostOperation(int32_t token) {
    if (autoRecoverOn() && token == store().hostOperations)
        store().pending = false;
}

bool modAutoRecover::OperationPending() {
    return store().pending;
}

int32_t modAutoRecover::SuspendAutoRecover() {
    ++store().suspensions;
    return BeginHostOperation();
}

void modAutoRecover::ResumeAutoRecover(int32_t token) {
    EndHostOperation(token);
    if (store().suspensions > 0)
        --store().suspensions;
}

int32_t modAutoRecover::Suspensions() {
    return store().suspensions;
}

void modAutoRecover::CleanExit() {
    StoreState& state = store();
    if (state.stopped)
        return;
    state.stopped = true;
    // A host call that never came back may have been what ended the program.
    if (!state.pending)
        DeleteCopies(false);
}

void modAutoRecover::FinalPass() {
    if (store().stopped)
        return;
    SaveCopies();
    store().stopped = true;
}

bool modAutoRecover::Stopped() {
    return store().stopped;
}

void modAutoRecover::DeleteCopies(bool all) {
    if (!ResolveFolder(false))
        return;
    const QString run = RunIdentity::Hex(RunIdentity::Current()) + QLatin1Char('.');
    const QDir dir(store().folder);
    for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        const bool ours = name.startsWith(run) ||
                          (RecoveryCopy::IsPartialName(name) && name.mid(1).startsWith(run));
        if (all || ours)
            QFile::remove(dir.filePath(name));
    }
}

QStringList modAutoRecover::RecoverableCopies() {
    QStringList orphans;
    if (!ResolveFolder(false))
        return orphans;
    const StoreState& state = store();
    const uint32_t self = RunIdentity::Current();
    const QDir dir(state.folder);
    const QStringList names =
        dir.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Name);
    for (const QString& name : names) {
        const bool partial = RecoveryCopy::IsPartialName(name);
        const uint32_t run = RunIdentity::FromFileName(partial ? name.mid(1) : name);
        const bool alive = run == self || RunIdentity::IsAlive(run, state.runName);
        if (partial) {
            // A write that its run did not live to finish.
            if (!alive)
                QFile::remove(dir.filePath(name));
            continue;
        }
        if (!alive)
            orphans << name;
    }
    return orphans;
}

void modAutoRecover::ScanForRecoverableCopies(QWidget* owner) {
    const QStringList orphans = RecoverableCopies();
    if (orphans.isEmpty())
        return;
    // Owned by the owner as well: ending the program under the dialog deletes it.
    const QPointer<frmAutoRecover> dialog = new frmAutoRecover(owner);
    dialog->ShowDialog(store().folder, orphans, owner);
    delete dialog;
}

bool modAutoRecover::RecoverCopy(const QString& path) {
    const std::optional<RecoveryCopy> copy = RecoveryCopy::Read(path);
    if (!copy)
        return false;
    try {
        const std::shared_ptr<mvDocument> document = mvDocument::Create();
        document->FileNew();
        ScintillaBuffer* buffer = document->Buffer();
        if (!buffer)
            return false;
        // The marker is a comment in BASIC; the item id follows it on the first line.
        QString text = QStringLiteral("*---> Recovered document: ") + copy->ItemId;
        if (copy->HasBody)
            text += QLatin1Char('\n') + QString::fromUtf8(copy->Body);
        // Straight into the buffer: the copy holds the editor's own form already.
        buffer->SetAllText(text);
        buffer->ClearAllBookmarks();
        buffer->ClearUndoStack();
        buffer->SetModified(true);
        document->DropLabels();
        return true;
    } catch (...) {
        return false;
    }
}

void modAutoRecover::AdoptCopy(const QString& fileName) {
    if (store().folder.isEmpty() && !ResolveFolder(false))
        return;
    for (int n = 1; n <= MaxSequence; ++n) {
        const QString name = RunFileName(n);
        if (nameTaken(name) || FileExists(inFolder(name)))
            continue;
        // Another run may have taken it first; then it simply stays.
        QFile::rename(inFolder(fileName), inFolder(name));
        return;
    }
}

void modAutoRecover::Reset() {
    store() = StoreState();
}
