#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

class QWidget;

// The auto-recover store: copies of changed documents in a private folder, written by the
// timed pass and before every host round trip, removed at a clean exit and offered at the
// next start when their run died. A copy's name says which run wrote it, so no index file is
// kept and several runs share the folder. Everything is best effort and silent.
class modAutoRecover {
public:
    // The folder under the per-user data folder; `create` makes the missing levels (0700).
    static bool ResolveFolder(bool create);
    // Empty until resolved.
    static QString Folder();

    // One pass over the open documents: a copy of each that holds changes. True when at
    // least one copy was written.
    static bool SaveCopies();
    // The timed pass of the main window.
    static void AutoRecoverPass() { SaveCopies(); }

    // Begins a host operation: copies first, and a token when any was written (else 0).
    static int32_t BeginHostOperation();
    // Only the token of the latest begin ends the pending operation.
    static void EndHostOperation(int32_t token);
    static bool OperationPending();

    // Around every host round trip; counts the round trips under way.
    static int32_t SuspendAutoRecover();
    static void ResumeAutoRecover(int32_t token);
    static int32_t Suspensions();

    // Removes this run's copies unless a host operation never ended; the store stops.
    static void CleanExit();
    // The last pass before an ending the user did not choose (a logout, a signal): the
    // copies are written and kept for the next start; the store stops.
    static void FinalPass();
    static bool Stopped();

    // Copies of runs that are gone, by file name; partial writes of such runs are removed.
    static QStringList RecoverableCopies();
    // The start-up scan: offers the copies of dead runs in the recovery dialog.
    static void ScanForRecoverableCopies(QWidget* owner);
    // A new document holding the copy's text behind the marker line; false when the copy
    // could not be read or no document came.
    static bool RecoverCopy(const QString& path);
    // `all`: every file of the folder; else this run's copies.
    static void DeleteCopies(bool all);
    // Renames a copy to a free name of this run, so that this run's clean exit takes it.
    static void AdoptCopy(const QString& fileName);

    // The copy name of this run with sequence number `n`: "0012ABCD.001".
    static QString RunFileName(int n);
    // The copy a document writes to; empty until its first copy.
    static QString CopyNameOf(int32_t documentNumber);

    static bool FileExists(const QString& path);
    static bool DirectoryExists(const QString& path);
    static bool IsPlainFile(const QString& path);

    // Forgets the folder, the names and the pending state, as a new run would start.
    static void Reset();

    static constexpr int MaxSequence = 32767;

    // Suspends for its lifetime, so that every ending path resumes.
    class Suspension {
    public:
        Suspension() : token_(SuspendAutoRecover()) {}
        ~Suspension() { ResumeAutoRecover(token_); }
        Suspension(const Suspension&) = delete;
        Suspension& operator=(const Suspension&) = delete;

    private:
        int32_t token_;
    };
};
