#include "documents/ConnectionProfiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>

namespace {

const QString kDemoName = QStringLiteral("demo");

bool toBool(const QVariant& value, bool fallback) {
    const QString word = value.toString().trimmed().toLower();
    if (word.isEmpty())
        return fallback;
    return word == QLatin1String("true") || word == QLatin1String("yes") ||
           word == QLatin1String("1") || word == QLatin1String("on");
}

// The INI reader turns a value with commas into a list; the text is what was written.
QString text(const QVariant& value) {
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

QString expandHome(const QString& path) {
    if (path == QLatin1String("~") || path.startsWith(QLatin1String("~/")))
        return QDir::homePath() + path.mid(1);
    return path;
}

// The Command lines of the file by group, as written. QSettings would take a leading quoted
// program path as a quoted value and run it together with the arguments behind it.
QHash<QString, QString> rawCommands(const QString& file) {
    QHash<QString, QString> commands;
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return commands;
    QString group;
    while (!in.atEnd()) {
        const QString line = QString::fromUtf8(in.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']')))
            group = line.mid(1, line.size() - 2).trimmed();
        else if (const qsizetype eq = line.indexOf(QLatin1Char('='));
                 eq > 0 && line.left(eq).trimmed().compare(QLatin1String("Command"),
                                                           Qt::CaseInsensitive) == 0)
            commands.insert(group, line.mid(eq + 1));
    }
    return commands;
}

// A comment behind a ";" outside quotes goes, as QSettings would drop it, and a value quoted
// whole is unwrapped as QSettings would unwrap it.
QString commandText(const QString& raw) {
    QString value = raw.trimmed();
    bool quoted = false;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] == QLatin1Char('"'))
            quoted = !quoted;
        else if (value[i] == QLatin1Char(';') && !quoted)
            value = value.left(i).trimmed();
    }
    if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) &&
        value.endsWith(QLatin1Char('"')) && value.count(QLatin1Char('"')) == 2)
        value = value.mid(1, value.size() - 2);
    return value;
}

} // namespace

QString ConnectionProfiles::DefaultFile() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Tolvek/Brix/connections.conf");
}

namespace {

// Copies the files of `from` into `to`, folders and all; false on the first failure.
bool copyTree(const QString& from, const QString& to) {
    if (!QDir().mkpath(to))
        return false;
    const QDir source(from);
    for (const QFileInfo& entry :
         source.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden)) {
        const QString target = to + QLatin1Char('/') + entry.fileName();
        if (entry.isDir() ? !copyTree(entry.filePath(), target)
                          : !QFile::copy(entry.filePath(), target))
            return false;
        if (!entry.isDir())
            QFile::setPermissions(target, QFile::permissions(target) | QFileDevice::WriteOwner);
    }
    return true;
}

} // namespace

QString ConnectionProfiles::DemoAccountFolder() {
    // The user edits a copy made on first use: the shipped account (and the source tree it
    // may stand in) is never written, nor are its locks made there.
    if (ShippedDemoFolder().isEmpty())
        return {};
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Tolvek/Brix/demo");
}

bool ConnectionProfiles::EnsureDemoAccount() {
    const QString copy = DemoAccountFolder();
    if (copy.isEmpty())
        return false;
    if (QFileInfo(copy).isDir())
        return true;
    const QString part = copy + QStringLiteral(".part");
    QDir(part).removeRecursively();
    if (!copyTree(ShippedDemoFolder(), part) || !QDir().rename(part, copy)) {
        QDir(part).removeRecursively();
        return false;
    }
    return true;
}

QString ConnectionProfiles::ShippedDemoFolder() {
    QStringList candidates;
    if (QCoreApplication::instance()) {
        const QString exe = QCoreApplication::applicationDirPath();
        candidates << exe + QStringLiteral("/examples/demo")
                   << exe + QStringLiteral("/../share/brix/examples/demo");
    }
#ifdef BRIX_SOURCE_DIR
    candidates << QStringLiteral(BRIX_SOURCE_DIR "/examples/demo");
#endif
    for (const QString& candidate : candidates) {
        if (QFileInfo(candidate).isDir())
            return QDir(candidate).canonicalPath();
    }
    return {};
}

QString ConnectionProfiles::StructureChecker() {
    // Beside the editor, or one folder up from a test program.
    const QString dir = QCoreApplication::applicationDirPath();
    for (const QString& candidate :
         {dir + QStringLiteral("/brix-check"), dir + QStringLiteral("/../brix-check")}) {
        const QFileInfo info(candidate);
        if (info.isFile() && info.isExecutable())
            return info.canonicalFilePath();
    }
    return {};
}

HostProfile ConnectionProfiles::Demo() {
    HostProfile demo;
    demo.Name = kDemoName;
    demo.Label = QStringLiteral("Demo");
    demo.Accounts.append({QStringLiteral("DEMO"), DemoAccountFolder()});
    demo.DefaultAccount = QStringLiteral("DEMO");
    // Without a host, brix-check stands in for the compiler.
    const QString checker = StructureChecker();
    if (!checker.isEmpty()) {
        // Quoted for QProcess::splitCommand, where """ stands for one quote.
        demo.CommandLine = QLatin1Char('"') +
                           QString(checker).replace(QLatin1String("\""), QLatin1String("\"\"\"")) +
                           QStringLiteral("\" --tcl");
        demo.AllowCommands = true;
    }
    return demo;
}

void ConnectionProfiles::Load(const QString& file) {
    profiles_.clear();
    Warnings.clear();
    defaultName_.clear();
    if (QFileInfo::exists(file)) {
        QSettings ini(file, QSettings::IniFormat);
        const QHash<QString, QString> commands = rawCommands(file);
        if (ini.status() != QSettings::NoError)
            Warnings << QStringLiteral("The connections file %1 could not be read.").arg(file);
        for (const QString& group : ini.childGroups()) {
            ini.beginGroup(group);
            HostProfile p;
            p.Name = group;
            p.Label = text(ini.value(QStringLiteral("Label")));
            p.Transport = ini.value(QStringLiteral("Transport"), QStringLiteral("local"))
                              .toString()
                              .trimmed()
                              .toLower();
            p.AccountsFolder = expandHome(text(ini.value(QStringLiteral("AccountsFolder"))));
            ini.beginGroup(QStringLiteral("Accounts"));
            for (const QString& key : ini.childKeys())
                p.Accounts.append({key, expandHome(text(ini.value(key)))});
            ini.endGroup();
            p.DefaultAccount = text(ini.value(QStringLiteral("DefaultAccount")));
            p.CommandLine = commands.contains(group) ? commandText(commands.value(group))
                                                     : text(ini.value(QStringLiteral("Command")));
            p.AllowCommands = toBool(ini.value(QStringLiteral("AllowCommands")), false);
            const QString timeout = text(ini.value(QStringLiteral("CommandTimeout"))).trimmed();
            if (!timeout.isEmpty()) {
                bool number = false;
                const int seconds = timeout.toInt(&number);
                if (number && seconds > 0)
                    p.CommandTimeout = std::min(seconds, 1000000);
                else
                    Warnings << QStringLiteral("Connection %1: CommandTimeout must be a number of "
                                               "seconds; %2 is used.")
                                    .arg(group)
                                    .arg(p.CommandTimeout);
            }
            const QString marks = ini.value(QStringLiteral("Marks"), QStringLiteral("raw"))
                                      .toString()
                                      .trimmed()
                                      .toLower();
            p.RawMarks = marks != QLatin1String("utf8") && marks != QLatin1String("utf-8");
            bool known = true;
            p.Charset = ItemTextCodec::CharsetFromName(
                ini.value(QStringLiteral("Charset"),
                          p.RawMarks ? QStringLiteral("ISO-8859-1") : QStringLiteral("UTF-8"))
                    .toString(),
                &known);
            if (!known)
                Warnings << QStringLiteral(
                                "Connection %1: unknown character set, ISO-8859-1 is used.")
                                .arg(group);
            p.ItemNames =
                ItemIdCodec::ModeFromName(text(ini.value(QStringLiteral("ItemNames"))), &known);
            if (!known)
                Warnings << QStringLiteral(
                                "Connection %1: unknown item name mapping, plain is used.")
                                .arg(group);
            const QString lockFolder = text(ini.value(QStringLiteral("LockFolder"))).trimmed();
            if (!lockFolder.isEmpty() && !lockFolder.contains(QLatin1Char('/')) &&
                lockFolder != QLatin1String("..") && lockFolder != QLatin1String("."))
                p.LockFolder = lockFolder;
            const QString locks = text(ini.value(QStringLiteral("Locks"))).trimmed().toLower();
            p.QmLocks = locks == QLatin1String("qm");
            if (!locks.isEmpty() && !p.QmLocks && locks != QLatin1String("files"))
                Warnings << QStringLiteral("Connection %1: Locks must be qm or files; the lock "
                                           "files are used.")
                                .arg(group);
            p.SshHost = text(ini.value(QStringLiteral("Host"))).trimmed();
            p.SshUser = text(ini.value(QStringLiteral("User"))).trimmed();
            p.SshIdentityFile = expandHome(text(ini.value(QStringLiteral("IdentityFile"))));
            p.SshConfigFile = expandHome(text(ini.value(QStringLiteral("SshConfig"))));
            const QString port = text(ini.value(QStringLiteral("Port"))).trimmed();
            if (!port.isEmpty()) {
                bool number = false;
                p.SshPort = port.toInt(&number);
                if (!number || p.SshPort <= 0 || p.SshPort > 65535) {
                    p.SshPort = 0;
                    Warnings << QStringLiteral("Connection %1: Port must be a number from 1 to "
                                               "65535; ssh's own choice is used.")
                                    .arg(group);
                }
            }
            if (p.Transport == QLatin1String("ssh") && p.SshHost.isEmpty())
                Warnings
                    << QStringLiteral("Connection %1: the ssh transport needs a Host.").arg(group);
            if (p.Transport != QLatin1String("local") && p.Transport != QLatin1String("ssh"))
                Warnings << QStringLiteral("Connection %1: transport \"%2\" is not available.")
                                .arg(group, p.Transport);
            ini.endGroup();
            profiles_.push_back(std::move(p));
        }
        defaultName_ = text(ini.value(QStringLiteral("Default")));
    }
    if (!Find(kDemoName))
        profiles_.push_back(Demo());
    if (defaultName_.isEmpty() || !Find(defaultName_)) {
        const QString named = defaultName_;
        defaultName_ = profiles_.size() > 1 ? profiles_.front().Name : kDemoName;
        if (!named.isEmpty())
            Warnings << QStringLiteral("Default names connection %1, which is not in the file; "
                                       "%2 is the default instead.")
                            .arg(named, defaultName_);
    }
}

const HostProfile* ConnectionProfiles::Find(const QString& server) const {
    const QString name = server.isEmpty() || server == QLatin1String("*") ? defaultName_ : server;
    for (const HostProfile& p : profiles_) {
        if (p.Name.compare(name, Qt::CaseInsensitive) == 0)
            return &p;
    }
    return nullptr;
}

QStringList ConnectionProfiles::Names() const {
    QStringList names;
    for (const HostProfile& p : profiles_)
        names << p.Name;
    return names;
}
