// brix-format: re-indents MultiValue BASIC programs the way the editor's Format command
// does, for pre-commit hooks and CI. It reads the user's settings but never writes them,
// and starts no user interface.

#include "documents/LocalTransport.h"
#include "editing/TextFormatter.h"
#include "settings/Moriox.h"
#include "settings/SettingText.h"
#include "settings/SettingsStore.h"
#include "support/BrixError.h"

#include "support/HelpFile.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

namespace {

constexpr int kUnchanged = 0;
constexpr int kWouldChange = 1;
constexpr int kFailed = 2;

void complain(const QString& message) {
    const QByteArray text = QStringLiteral("brix-format: %1\n").arg(message).toLocal8Bit();
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
}

bool writeOut(const QByteArray& bytes) {
    return std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout) ==
           static_cast<size_t>(bytes.size());
}

// A whole number from `low` to `high`, or nothing.
std::optional<int16_t> numberOption(const QCommandLineParser& parser, const QString& name, int low,
                                    int high) {
    bool ok = false;
    const int value = parser.value(name).trimmed().toInt(&ok);
    if (!ok || value < low || value > high) {
        complain(QStringLiteral("--%1 wants a whole number from %2 to %3, not \"%4\".")
                     .arg(name)
                     .arg(low)
                     .arg(high)
                     .arg(parser.value(name)));
        return std::nullopt;
    }
    return static_cast<int16_t>(value);
}

// The user's settings. A store that holds none yet would be filled by a first load, so the
// defaults are taken as they stand instead: this tool writes no settings.
void loadSettings(Moriox& settings) {
    const QString marker = SettingsStore::ReadSetting(Moriox::Section(), QString(), QString());
    if (SettingText::ParseNumber(marker) >= Moriox::SettingsVersion)
        settings.LoadSettings();
}

struct Run {
    bool InPlace = false;
    bool Check = false;
    const TextFormatter* Formatter = nullptr;
};

// Formats one file, or standard input for "-"; the exit code it calls for.
int formatOne(const Run& run, const QString& name) {
    const bool standardInput = name == QLatin1String("-");
    const QString shown = standardInput ? QStringLiteral("<stdin>") : name;
    QByteArray input;
    QString target = name;
    // In place, the file a link points at is rewritten, not the link.
    const QString canonical = QFileInfo(name).canonicalFilePath();
    if (!standardInput && !canonical.isEmpty())
        target = canonical;
    try {
        input = LocalTransport().ReadFile(standardInput ? QStringLiteral("/dev/stdin") : name);
    } catch (const BrixError& error) {
        complain(error.Description);
        return kFailed;
    }
    if (input.contains('\0')) {
        complain(QStringLiteral("%1 holds NUL bytes: it doesn't look like a program, and is left "
                                "as it is.")
                     .arg(shown));
        return kFailed;
    }

    const QByteArray output = run.Formatter->Format(input);
    if (run.Check) {
        if (output == input)
            return kUnchanged;
        complain(QStringLiteral("%1 would be reformatted.").arg(shown));
        return kWouldChange;
    }
    if (!run.InPlace) {
        if (writeOut(output))
            return kUnchanged;
        complain(QStringLiteral("Can't write the standard output: %1.")
                     .arg(QString::fromLocal8Bit(std::strerror(errno))));
        return kFailed;
    }
    if (output == input)
        return kUnchanged;
    try {
        LocalTransport().WriteFile(target, output);
    } catch (const BrixError& error) {
        complain(error.Description);
        return kFailed;
    }
    return kUnchanged;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brix-format"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIX_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral(
            "Re-indents MultiValue BASIC programs as the editor's Format command does.\n"
            "Only spaces change: at the start and end of lines and behind labels. Without -i or\n"
            "--check the formatted text goes to the standard output.\n"
            "Exit status: 0 done (or nothing to change), 1 --check found a file to change,\n"
            "2 a file couldn't be read or written, or the options were wrong.\n"
            "The manual: ") +
        HelpFile::Locate(HelpFile::ProgramFolder(), QStringLiteral("brix-format.html")));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Programs to format; - reads the standard input."),
                                 QStringLiteral("FILE..."));
    const QCommandLineOption inPlace({QStringLiteral("i"), QStringLiteral("in-place")},
                                     QStringLiteral("Rewrite each file that changes."));
    const QCommandLineOption check(
        QStringLiteral("check"),
        QStringLiteral("Change nothing; name each file that would change and exit with 1."));
    const QCommandLineOption tabSize(
        QStringLiteral("tab-size"), QStringLiteral("Spaces per block level."), QStringLiteral("N"));
    const QCommandLineOption margin(QStringLiteral("margin"),
                                    QStringLiteral("Column of the outermost level."),
                                    QStringLiteral("N"));
    const QCommandLineOption indentStar(
        QStringLiteral("indent-star"),
        QStringLiteral("Comments that start with *: 0 at the margin, 1 indented like code, 2 in "
                       "the first column."),
        QStringLiteral("0|1|2"));
    const QCommandLineOption indentBang(QStringLiteral("indent-bang"),
                                        QStringLiteral("Comments that start with !: as for *."),
                                        QStringLiteral("0|1|2"));
    parser.addOptions({inPlace, check, tabSize, margin, indentStar, indentBang});

    if (!parser.parse(QCoreApplication::arguments())) {
        complain(parser.errorText());
        return kFailed;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(kUnchanged);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();

    Run run;
    run.InPlace = parser.isSet(inPlace);
    run.Check = parser.isSet(check);
    const QStringList files = parser.positionalArguments();
    if (run.InPlace && run.Check) {
        complain(QStringLiteral("-i and --check don't go together."));
        return kFailed;
    }
    if (files.isEmpty()) {
        complain(QStringLiteral("No file named; give - to read the standard input. See --help."));
        return kFailed;
    }
    if (run.InPlace && files.contains(QStringLiteral("-"))) {
        complain(QStringLiteral("The standard input can't be formatted in place."));
        return kFailed;
    }

    Moriox settings;
    loadSettings(settings);
    const struct {
        const QCommandLineOption& Option;
        int16_t Moriox::*Member;
        int High;
    } overrides[] = {
        {tabSize, &Moriox::TabSize, 32767},
        {margin, &Moriox::Margin, 32767},
        {indentStar, &Moriox::IndentStar, 2},
        {indentBang, &Moriox::IndentBang, 2},
    };
    for (const auto& o : overrides) {
        if (!parser.isSet(o.Option))
            continue;
        const auto value = numberOption(parser, o.Option.names().constFirst(), 0, o.High);
        if (!value)
            return kFailed;
        settings.*(o.Member) = *value;
    }

    const TextFormatter formatter(settings);
    run.Formatter = &formatter;
    int result = kUnchanged;
    for (const QString& file : files)
        result = std::max(result, formatOne(run, file));
    if (std::fflush(stdout) != 0) {
        complain(QStringLiteral("Can't write the standard output: %1.")
                     .arg(QString::fromLocal8Bit(std::strerror(errno))));
        result = kFailed;
    }
    return result;
}
