#include "documents/mvHost.h"

#include "documents/CommandOutput.h"
#include "documents/ConnectionProfiles.h"
#include "documents/ConnectionErrors.h"
#include "documents/HostTransport.h"

#include <QProcess>

mvHost::mvHost(std::shared_ptr<const HostProfile> profile, std::shared_ptr<HostTransport> transport,
               QString account)
    : profile_(std::move(profile)), transport_(std::move(transport)), account_(std::move(account)) {
}

bool mvHost::AllowsCommands() const {
    return profile_ && transport_ && profile_->AllowCommands &&
           !QProcess::splitCommand(profile_->CommandLine).isEmpty();
}

QString mvHost::Execute(const QString& command, const QString&, int32_t) {
    if (!AllowsCommands())
        throw BrixError(ConnectionErrors::CommandsNotAllowed,
                        profile_ ? QStringLiteral("The connection \"%1\" does not allow commands.")
                                       .arg(profile_->Name)
                                 : QStringLiteral("Commands can't be run for local files."));
    const QStringList program = QProcess::splitCommand(profile_->CommandLine);
    QString folder;
    if (!account_.isEmpty())
        folder = AccountFolder(account_);
    int exitCode = 0;
    const QByteArray output =
        transport_->Run(CommandOutput::Prepare(program, command), folder, exitCode);
    // What env says when it can't start the program: "/usr/bin/env: 'qm': No such file...".
    const qsizetype colon = output.indexOf(": ");
    if ((exitCode == 126 || exitCode == 127) && colon > 0 && output.left(colon).endsWith("env"))
        throw BrixError(
            ConnectionErrors::CommandFailed,
            QStringLiteral("Can't start \"%1\": %2")
                .arg(program.first(), QString::fromLocal8Bit(output.mid(colon + 2)).trimmed()));
    return CommandOutput::Clean(output, profile_->Charset);
}

QString mvHost::AccountFolder(const QString& account) const {
    if (profile_) {
        for (const auto& [name, folder] : profile_->Accounts) {
            if (name.compare(account, Qt::CaseInsensitive) == 0 && !folder.isEmpty()) {
                if (folder == ConnectionProfiles::DemoAccountFolder())
                    ConnectionProfiles::EnsureDemoAccount();
                return folder;
            }
        }
        const bool plainName = !account.isEmpty() && !account.contains(QLatin1Char('/')) &&
                               account != QLatin1String(".") && account != QLatin1String("..") &&
                               !account.contains(QChar(0));
        if (plainName && !profile_->AccountsFolder.isEmpty() && transport_) {
            // The name as written, or the one folder whose name matches it in another case.
            const QString direct = profile_->AccountsFolder + QLatin1Char('/') + account;
            if (transport_->Stat(direct).IsFolder)
                return direct;
            for (const auto& entry : transport_->List(profile_->AccountsFolder)) {
                if (entry.IsFolder && entry.Name.compare(account, Qt::CaseInsensitive) == 0)
                    return profile_->AccountsFolder + QLatin1Char('/') + entry.Name;
            }
        }
    }
    throw BrixError(ConnectionErrors::UnknownAccount,
                    QStringLiteral("There is no account \"%1\" on %2.")
                        .arg(account, profile_ ? profile_->Name : QStringLiteral("this host")));
}

QStringList mvHost::AccountNames() const {
    QStringList names;
    if (!profile_)
        return names;
    for (const auto& [name, folder] : profile_->Accounts) {
        if (!folder.isEmpty())
            names << name;
    }
    if (!profile_->AccountsFolder.isEmpty() && transport_) {
        for (const auto& entry : transport_->List(profile_->AccountsFolder)) {
            if (entry.IsFolder && !entry.Name.startsWith(QLatin1Char('.')) &&
                !names.contains(entry.Name, Qt::CaseInsensitive))
                names << entry.Name;
        }
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}
