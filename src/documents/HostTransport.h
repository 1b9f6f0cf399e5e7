#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

class PipeProcess;

// What the connection layer needs of the machine that holds a host's files: plain file
// operations on absolute paths there, and running a program there without a shell. The
// local transport does this on this machine; a remote one does the same over its channel.
// Every member raises a BrixError with a readable description when it fails.
class HostTransport {
public:
    struct FileInfo {
        bool Exists = false;
        bool IsFolder = false;
        bool IsFile = false;
        // By the file's permission bits as they apply to this user (owner, group, other),
        // and false on a read-only file system.
        bool Writable = false;
        unsigned Mode = 0;
        qint64 Size = 0;
    };
    struct Entry {
        QString Name;
        bool IsFolder = false;
    };

    virtual ~HostTransport() = default;

    // Names the machine and the way there, so that two transports to one place agree.
    virtual QString Place() const = 0;

    // A missing path is no error: Exists is false.
    virtual FileInfo Stat(const QString& path) = 0;
    // Stat of each path, in one go where the transport can.
    virtual std::vector<FileInfo> StatAll(const QStringList& paths);
    // The entries of a folder, without "." and "..".
    virtual std::vector<Entry> List(const QString& folder) = 0;
    virtual QByteArray ReadFile(const QString& path) = 0;
    // Replaces or creates the file whole and atomically, keeping the mode of the file it
    // replaces. Permission and read-only failures are BrixErrors::CannotWrite.
    virtual void WriteFile(const QString& path, const QByteArray& bytes) = 0;
    // Creates the file with its full content at once; false if something is there.
    virtual bool CreateExclusive(const QString& path, const QByteArray& bytes) = 0;
    // False if `from` is not there.
    virtual bool Rename(const QString& from, const QString& to) = 0;
    // A missing file is no error.
    virtual void Remove(const QString& path) = 0;
    virtual void MakeFolder(const QString& path) = 0;
    // Runs the program with its arguments, none of which a shell sees, its input empty;
    // gives the output, standard error included. A program still running after
    // CommandTimeout() is stopped and raises ConnectionErrors::CommandTimedOut.
    virtual QByteArray Run(const QStringList& command, const QString& workingFolder,
                           int& exitCode) = 0;
    // Starts the program with its arguments (no shell sees them) for a lasting conversation
    // over its input and output; it ends when the PipeProcess goes, or when this process
    // does. Raises when it can't be started.
    virtual std::unique_ptr<PipeProcess> Start(const QStringList& command,
                                               const QString& workingFolder) = 0;

    // What a file held when it was read or written, to tell later whether someone else has
    // changed it since: its size and modification time there, and a hash of its bytes.
    struct Stamp {
        bool Known = false;
        qint64 Size = -1;
        // As the machine gives it, to compare only with another of the same transport.
        QByteArray Time;
        QByteArray Hash;

        static QByteArray HashOf(const QByteArray& bytes);
    };
    // ReadFile, and the file's stamp.
    virtual QByteArray ReadStamped(const QString& path, Stamp& stamp);
    // WriteFile, unless `expected` is Known and the file no longer matches it (or is gone):
    // then nothing is written and the answer is false. Other size or time with the same
    // bytes is no change. `written` is the stamp of the file as written.
    virtual bool WriteUnchanged(const QString& path, const QByteArray& bytes, const Stamp& expected,
                                Stamp& written);

    void SetCommandTimeout(int milliseconds) { commandTimeout_ = milliseconds; }
    int CommandTimeout() const { return commandTimeout_; }

private:
    int commandTimeout_ = 300000;
};
