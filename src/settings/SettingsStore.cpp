#include "settings/SettingsStore.h"

#include "settings/IniProfile.h"
#include "settings/SettingText.h"
#include "support/BrixError.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QSettings>
#include <QStringDecoder>
#include <map>
#include <memory>
#include <optional>

namespace {

struct StoreState {
    bool Initialised = false;
    QString ExecutableFolder;
    int16_t PersistSettings = 0;
    QString AppDataDirectory;
    QString UserDataDirectory;
    QString StateFile;
    // Per-user store files already looked at for damage in this run.
    QSet<QString> CheckedFiles;
    // While a batch runs: the open per-user stores by section, and the state file's edits.
    int BatchDepth = 0;
    std::map<QString, std::unique_ptr<QSettings>> OpenUserStores;
    std::optional<IniProfile> PendingStateFile;
};

StoreState& store() {
    static StoreState state;
    return state;
}

const QLatin1String IsolationSection("Isolation");

// The profile read as the store uses it: an empty answer gives the caller's default.
QString readIni(const QString& file, const QString& section, const QString& key,
                const QString& defaultValue, int bufferChars) {
    const QString value = IniProfile::ReadString(file, section, key, QString(), bufferChars);
    return value.isEmpty() ? defaultValue : value;
}

int16_t readIniInteger(const QString& file, const QString& section, const QString& key,
                       int16_t defaultValue) {
    const QString text =
        IniProfile::ReadString(file, section, key, QString(), SettingsStore::IntegerBufferChars);
    if (text.isEmpty())
        return defaultValue;
    const int64_t value = SettingText::ParseNumber(text);
    return value >= INT16_MIN && value <= INT16_MAX ? static_cast<int16_t>(value) : 0;
}

void setUp() {
    StoreState& s = store();
    if (s.Initialised)
        return;
    // Set first: a set-up that fails is not tried again.
    s.Initialised = true;
    const QString selection = SettingsStore::ExecutableFolder() + QStringLiteral("/norvane70.ini");
    s.PersistSettings =
        readIniInteger(selection, IsolationSection, QStringLiteral("PersistSettings"), 1);
    s.AppDataDirectory = SettingsStore::EnsureFolder(
        readIni(selection, IsolationSection, QStringLiteral("AppDataDirectory"),
                QStringLiteral("."), SettingsStore::ReadBufferChars));
    s.UserDataDirectory = SettingsStore::EnsureFolder(
        readIni(selection, IsolationSection, QStringLiteral("UserDataDirectory"),
                QStringLiteral("."), SettingsStore::ReadBufferChars));
    s.StateFile = s.AppDataDirectory + QStringLiteral("appstate.ini");
}

// The per-user store of a registry-style section: "Software", maker, product, then groups.
// Outside a batch `owner` gets a store of its own, to be dropped after the call.
QSettings& userStore(const QString& section, std::unique_ptr<QSettings>& owner) {
    StoreState& s = store();
    if (s.BatchDepth > 0) {
        if (const auto open = s.OpenUserStores.find(section); open != s.OpenUserStores.end())
            return *open->second;
    }
    const QStringList pieces = section.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
    auto settings = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                pieces.value(1), pieces.value(2));
    settings->beginGroup(pieces.mid(3).join(QLatin1Char('/')));
    QSettings& result = *settings;
    if (s.BatchDepth > 0)
        s.OpenUserStores[section] = std::move(settings);
    else
        owner = std::move(settings);
    return result;
}

// The store refuses an empty key; its "Default" is the unnamed value of the section.
QString userStoreKey(const QString& key) {
    return key.isEmpty() ? QStringLiteral("Default") : key;
}

// Whether every line is one the per-user store's own writer would keep.
bool looksIntact(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    if (decoder.hasError())
        return false;
    for (const QChar c : text)
        if (c.unicode() < 32 && c != QLatin1Char('\t') && c != QLatin1Char('\r') &&
            c != QLatin1Char('\n'))
            return false;
    for (const QStringView line : QStringView(text).split(QLatin1Char('\n'))) {
        const QStringView trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char(';')) ||
            trimmed.startsWith(QLatin1Char('#')))
            continue;
        if (trimmed.startsWith(QLatin1Char('[')) ? !trimmed.endsWith(QLatin1Char(']'))
                                                 : !trimmed.contains(QLatin1Char('=')))
            return false;
    }
    return true;
}

// The per-user store rewrites its whole file on a write and keeps only what it understood.
// Before the first write of a run, a damaged file is copied aside so that nothing of it is
// lost; a file that can't be read at all is not written.
bool mayWriteUserStore(const QSettings& settings) {
    const QString path = settings.fileName();
    const QFileInfo info(path);
    if (!info.exists())
        return true;
    QFile file(path);
    if (info.size() > IniProfile::MaxFileSize || !file.open(QIODevice::ReadOnly))
        return false;
    StoreState& s = store();
    if (s.CheckedFiles.contains(path))
        return true;
    s.CheckedFiles.insert(path);
    if (settings.status() == QSettings::NoError && looksIntact(file.readAll()))
        return true;
    for (int n = 1; n < 100; ++n) {
        const QString copy =
            path + (n == 1 ? QStringLiteral(".damaged") : QStringLiteral(".damaged-%1").arg(n));
        if (!QFileInfo::exists(copy))
            return QFile::copy(path, copy);
    }
    return false;
}

QString readUserStore(const QString& section, const QString& key, const QString& defaultValue) {
    std::unique_ptr<QSettings> owner;
    const QVariant stored = userStore(section, owner).value(userStoreKey(key));
    if (!stored.isValid())
        return defaultValue;
    QString value = SettingText::FromStored(stored);
    // Longer values don't fit the reader's buffer and read as missing.
    if (value.size() >= SettingsStore::ReadBufferChars)
        return defaultValue;
    if (value.endsWith(QChar(0)))
        value.chop(1);
    return value.isEmpty() ? defaultValue : value;
}

void writeUserStore(const QString& section, const QString& key, const QString& value,
                    const QString& defaultValue) {
    QString stored = value;
    if (!defaultValue.isEmpty() && (value.isEmpty() || value == defaultValue))
        stored.clear();
    std::unique_ptr<QSettings> owner;
    QSettings& settings = userStore(section, owner);
    if (!mayWriteUserStore(settings))
        return;
    // An empty value stays as an empty string; it reads back as the default.
    settings.setValue(userStoreKey(key), stored);
    if (owner)
        settings.sync();
}

bool isQuoteOrBlank(QChar c) {
    return c == QLatin1Char('"') || c == QLatin1Char('\'') || c == QLatin1Char(' ') ||
           c == QLatin1Char('\t');
}

void writeStateFile(const QString& section, const QString& key, const QString& value,
                    const QString& defaultValue) {
    StoreState& s = store();
    const QString& file = s.StateFile;
    // A new file starts as a lone byte-order mark, so that it is kept in UTF-16.
    if (!SettingsStore::FileExists(file))
        SettingsStore::WriteTextFile(file, QString(), SettingsStore::Utf16Bom, false);
    IniProfile own;
    if (s.BatchDepth > 0 && !s.PendingStateFile)
        s.PendingStateFile = IniProfile::Load(file);
    else if (s.BatchDepth == 0)
        own = IniProfile::Load(file);
    IniProfile& profile = s.BatchDepth > 0 ? *s.PendingStateFile : own;
    const QString iniSection = SettingsStore::IniSection(section);
    const QString iniKey = SettingsStore::IniKey(key);
    if (value.isEmpty() || value == defaultValue) {
        profile.RemoveKey(iniSection, iniKey);
    } else {
        // Quotes keep the blanks and quotes at the ends that the reader would strip.
        const bool quote = isQuoteOrBlank(value.front()) || isQuoteOrBlank(value.back());
        profile.SetValue(iniSection, iniKey,
                         quote ? QLatin1Char('"') + value + QLatin1Char('"') : value);
    }
    if (s.BatchDepth == 0)
        profile.Save(file);
}

QString readStateFile(const QString& section, const QString& key, const QString& defaultValue) {
    const StoreState& s = store();
    if (!s.PendingStateFile)
        return readIni(s.StateFile, SettingsStore::IniSection(section), SettingsStore::IniKey(key),
                       defaultValue, SettingsStore::ReadBufferChars);
    const QString value =
        s.PendingStateFile->Value(SettingsStore::IniSection(section), SettingsStore::IniKey(key))
            .left(SettingsStore::ReadBufferChars - 1);
    return value.isEmpty() ? defaultValue : value;
}

QByteArray utf16Bytes(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size() * 2);
    for (const QChar c : text) {
        bytes.append(static_cast<char>(c.unicode() & 0xFF));
        bytes.append(static_cast<char>(c.unicode() >> 8));
    }
    return bytes;
}

} // namespace

QString SettingsStore::ReadSetting(const QString& section, const QString& key,
                                   const QString& defaultValue) {
    try {
        setUp();
        switch (store().PersistSettings) {
        case 1:
            return readUserStore(section, key, defaultValue);
        case 2:
            return readStateFile(section, key, defaultValue);
        default:
            return defaultValue;
        }
    } catch (...) {
        return defaultValue;
    }
}

void SettingsStore::WriteSetting(const QString& section, const QString& key, const QString& value,
                                 const QString& defaultValue) {
    try {
        setUp();
        switch (store().PersistSettings) {
        case 1:
            writeUserStore(section, key, value, defaultValue);
            break;
        case 2:
            writeStateFile(section, key, value, defaultValue);
            break;
        default:
            break;
        }
    } catch (...) {
        // A write that fails loses this key only.
    }
}

int16_t SettingsStore::PersistSettings() {
    setUp();
    return store().PersistSettings;
}

QString SettingsStore::AppDataDirectory() {
    setUp();
    return store().AppDataDirectory;
}

QString SettingsStore::UserDataDirectory() {
    setUp();
    return store().UserDataDirectory;
}

QString SettingsStore::StateFile() {
    setUp();
    return store().StateFile;
}

QString SettingsStore::ExecutableFolder() {
    const QString& folder = store().ExecutableFolder;
    if (!folder.isEmpty())
        return folder;
    return QCoreApplication::instance() ? QCoreApplication::applicationDirPath()
                                        : QDir::currentPath();
}

QString SettingsStore::IniSection(const QString& section) {
    QStringList pieces = section.split(QLatin1Char('\\'));
    for (int i = 0; i < 2 && i < pieces.size(); ++i)
        pieces[i].clear();
    QString result = pieces.join(QLatin1Char('_')).mid(2);
    result.remove(QLatin1Char(' '));
    return result.isEmpty() ? section : result;
}

QString SettingsStore::IniKey(const QString& key) {
    return key.isEmpty() ? QStringLiteral("@") : key;
}

QString SettingsStore::EnsureFolder(const QString& path) {
    const QString executable = ExecutableFolder();
    QString folder = NormalisePath(path, executable);
    if (folder.contains(QLatin1Char('%')))
        folder = ExpandEnvironment(folder);
    if (folder.isEmpty())
        folder = executable;
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    if (DirectoryExists(folder))
        return folder;
    QStringList pieces = folder.split(QLatin1Char('/'));
    pieces.removeLast(); // the empty piece behind the trailing "/"
    QString partial;
    for (int i = 0; i < pieces.size(); ++i) {
        partial = i == 0 ? pieces[0] : partial + QLatin1Char('/') + pieces[i];
        const QString level = partial.isEmpty() ? QStringLiteral("/") : partial;
        if (!DirectoryExists(level) && !QDir().mkdir(level))
            return executable.endsWith(QLatin1Char('/')) ? executable
                                                         : executable + QLatin1Char('/');
    }
    return folder;
}

QString SettingsStore::NormalisePath(const QString& path, const QString& baseFolder) {
    QString result = path;
    result.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (result.startsWith(QLatin1String("../")) || result == QLatin1String(".."))
        result.prepend(QLatin1String("./"));
    if (result.startsWith(QLatin1String("./")))
        result = baseFolder + result.mid(1);
    while (result.contains(QLatin1String("//")))
        result.replace(QLatin1String("//"), QLatin1String("/"));
    const bool absolute = result.startsWith(QLatin1Char('/'));
    QStringList kept;
    for (const QString& piece : result.split(QLatin1Char('/'))) {
        if (piece != QLatin1String(".."))
            kept.append(piece);
        else if (kept.size() > 1)
            kept.removeLast();
    }
    result = kept.join(QLatin1Char('/'));
    // The root stays, as a drive does.
    if (result.isEmpty() && (absolute || kept.isEmpty()))
        result = QStringLiteral("/");
    return result;
}

QString SettingsStore::ExpandEnvironment(const QString& text) {
    QString result;
    qsizetype position = 0;
    for (;;) {
        const qsizetype open = text.indexOf(QLatin1Char('%'), position);
        const qsizetype close = open < 0 ? -1 : text.indexOf(QLatin1Char('%'), open + 1);
        if (close < 0) {
            result += text.mid(position);
            return result;
        }
        result += text.mid(position, open - position);
        result +=
            qEnvironmentVariable(text.mid(open + 1, close - open - 1).toLocal8Bit().constData());
        position = close + 1;
    }
}

bool SettingsStore::DirectoryExists(const QString& path) {
    return !path.isEmpty() && QFileInfo(path).isDir();
}

bool SettingsStore::FileExists(const QString& path) {
    const QFileInfo info(path);
    return !path.isEmpty() && info.exists() && !info.isDir();
}

bool SettingsStore::WriteTextFile(const QString& path, const QString& text, int encoding,
                                  bool raiseErrors) {
    QByteArray bytes;
    bool replace = true;
    switch (encoding) {
    case RawBytes:
        bytes = utf16Bytes(text);
        break;
    case Utf8Bom:
        bytes = text.toUtf8();
        if (bytes.isEmpty())
            throw BrixError(5, QStringLiteral("Invalid procedure call or argument"));
        bytes.prepend("\xEF\xBB\xBF");
        break;
    case Utf16Bom:
        bytes = utf16Bytes(QChar(0xFEFF) + text);
        break;
    default:
        bytes = text.toLocal8Bit();
        replace = false;
        break;
    }
    if (replace && QFileInfo::exists(path))
        QFile::remove(path);
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                         file.write(bytes) == bytes.size() && file.flush();
    if (!written && raiseErrors)
        throw BrixError(75, QStringLiteral("Path/File access error: ") + path);
    return written;
}

SettingsStore::Batch::Batch() {
    ++store().BatchDepth;
}

SettingsStore::Batch::~Batch() {
    StoreState& s = store();
    if (--s.BatchDepth > 0)
        return;
    try {
        for (auto& [section, settings] : s.OpenUserStores)
            settings->sync();
        s.OpenUserStores.clear();
        if (s.PendingStateFile)
            s.PendingStateFile->Save(s.StateFile);
    } catch (...) {
        // Lost writes are dropped in silence, as single ones are.
    }
    s.PendingStateFile.reset();
}

void SettingsStore::Reinitialise(const QString& executableFolder) {
    StoreState& s = store();
    s = StoreState();
    s.ExecutableFolder = executableFolder;
}
