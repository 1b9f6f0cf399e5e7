#include "app/CommandLine.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/modOpen.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "documents/mvHost.h"
#include "documents/mvResource.h"
#include "support/BrixError.h"
#include "support/ShowError.h"

#include <QDir>

namespace {

const QChar kBlank = QLatin1Char(' ');
const QChar kQuote = QLatin1Char('"');

bool isSwitchWithValue(const QString& argument) {
    return argument.size() >= 3 && argument.at(0) == QLatin1Char('/') &&
           argument.at(2) == QLatin1Char('=');
}

QString trimBlanks(const QString& line) {
    qsizetype first = 0;
    qsizetype last = line.size();
    while (first < last && line.at(first) == kBlank)
        ++first;
    while (last > first && line.at(last - 1) == kBlank)
        --last;
    return line.mid(first, last - first);
}

// A host named with no item opened: connect now to fill in the account it starts in.
void connectEarly() {
    HostContext& host = ProcessState::Instance().Host;
    try {
        mvConnection& connection = mvConnection::Instance();
        const auto resource = connection.GetResource(
            connection.MakePath(host.Provider, host.ServerName, QString(), QString(), QString()),
            false, false, 0);
        if (!resource)
            return;
        const auto server = resource->Host();
        const QString account = server ? server->Session().AccountName : QString();
        if (!account.isEmpty() && host.Database.isEmpty())
            host.Database = account;
    } catch (...) {
    }
}

// An absolute Linux path starts like a switch; handed on relative to the current folder
// it reads as the file name it is. "/L" and the "/X=" switches stay switches.
bool isAbsolutePath(const QString& argument) {
    return argument.startsWith(QLatin1Char('/')) && !isSwitchWithValue(argument) &&
           argument.indexOf(QLatin1Char('/'), 1) > 0;
}

} // namespace

QString CommandLine::JoinArguments(const QStringList& arguments) {
    QStringList fields;
    for (QString argument : arguments) {
        if (isAbsolutePath(argument))
            argument = QDir::current().relativeFilePath(argument);
        if (!argument.contains(kBlank))
            fields << argument;
        else if (isSwitchWithValue(argument))
            fields << argument.left(3) + kQuote + argument.mid(3) + kQuote;
        else
            fields << kQuote + argument + kQuote;
    }
    return fields.join(kBlank);
}

void CommandLine::Process(const QString& line) {
    const QString trimmed = trimBlanks(line);
    // Several blanks in a row give empty fields; the count is not taken again.
    const QStringList fields = trimmed.isEmpty() ? QStringList() : trimmed.split(kBlank);
    const int count = static_cast<int>(fields.size());
    auto field = [&](int i) { return i >= 1 && i <= count ? fields.at(i - 1) : QString(); };

    ProcessState& state = ProcessState::Instance();
    HostContext& host = state.Host;
    bool openReadOnly = false;
    bool hostGiven = false;
    try {
        for (int i = 1; i <= count; ++i) {
            QString token = field(i);
            if (token.startsWith(QLatin1Char('/'))) {
                if (token.size() >= 4 && token.at(3) == kQuote) {
                    // A quoted value takes at least one more field, up to one that ends in a
                    // quote; the opening quote stays.
                    QString next;
                    do {
                        next = field(++i);
                        token += kBlank + next;
                    } while (!next.isEmpty() && !next.endsWith(kQuote));
                    if (token.endsWith(kQuote))
                        token.chop(1);
                }
                const QString name = token.left(3).toUpper();
                QString value = token.mid(3);
                if (name == QLatin1String("/T=")) {
                    host.Provider = value;
                } else if (name == QLatin1String("/H=")) {
                    host.ServerName = value;
                    hostGiven = true;
                } else if (name == QLatin1String("/A=")) {
                    host.Database = value;
                } else if (name == QLatin1String("/F=")) {
                    if (value.startsWith(kQuote)) {
                        if (value.size() >= 2 && value.endsWith(kQuote))
                            value = value.mid(1, value.size() - 2);
                        else
                            value = value.mid(1);
                    }
                    host.Folder = value;
                } else if (name == QLatin1String("/I=")) {
                    modOpen::OpenPath(
                        mvConnection::Instance().MakePath(host.Provider, host.ServerName,
                                                          host.Database, host.Folder, value),
                        openReadOnly);
                    hostGiven = false;
                } else if (name == QLatin1String("/L")) {
                    openReadOnly = true;
                }
                continue;
            }
            QString fileName = token;
            if (fileName.startsWith(kQuote)) {
                fileName = fileName.mid(1);
                QString next;
                do {
                    next = field(++i);
                    if (next.isEmpty())
                        break;
                    fileName += kBlank + next;
                } while (!next.endsWith(kQuote));
            }
            if (fileName.endsWith(kQuote))
                fileName.chop(1);
            modOpen::OpenPath(mvConnection::Instance().MakeFilePath(QString(), QString(), fileName),
                              openReadOnly);
        }
    } catch (const BrixError& error) {
        ShowError(error.Description);
        return;
    } catch (const std::exception& error) {
        ShowError(QString::fromLocal8Bit(error.what()));
        return;
    }

    if (state.Documents && state.Documents->Count() > 0) {
        try {
            state.Documents->At(0)->Activate();
        } catch (...) {
        }
    }
    if (hostGiven)
        connectEarly();
}
