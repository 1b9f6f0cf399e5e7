// brix-check: checks the block structure and the labels of MultiValue BASIC programs without a
// host, and reports in the compiler's "N: message" form. It reads the user's keyword lists
// but never writes settings, and starts no user interface.

#include "documents/LocalTransport.h"
#include "editing/StructureCheck.h"
#include "editing/TextFormatter.h"
#include "settings/Moriox.h"
#include "settings/SettingText.h"
#include "settings/SettingsStore.h"
#include "support/BrixError.h"

#include "support/HelpFile.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <algorithm>
#include <cstdio>

namespace {

constexpr int kClean = 0;
constexpr int kReported = 1;
constexpr int kFailed = 2;

void complain(const QString& message) {
    const QByteArray text = QStringLiteral("brix-check: %1\n").arg(message).toLocal8Bit();
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
}

// A store that holds no settings yet would be filled by a first load; the defaults stand.
void loadSettings(Moriox& settings) {
    const QString marker = SettingsStore::ReadSetting(Moriox::Section(), QString(), QString());
    if (SettingText::ParseNumber(marker) >= Moriox::SettingsVersion)
        settings.LoadSettings();
}

int checkOne(const StructureCheck& check, const QString& name, bool named) {
    const bool standardInput = name == QLatin1String("-");
    const QString shown = standardInput ? QStringLiteral("<stdin>") : name;
    QByteArray input;
    try {
        input = LocalTransport().ReadFile(standardInput ? QStringLiteral("/dev/stdin") : name);
    } catch (const BrixError& error) {
        complain(error.Description);
        return kFailed;
    }
    if (input.contains('\0')) {
        complain(QStringLiteral("%1 holds NUL bytes: it doesn't look like a program.").arg(shown));
        return kFailed;
    }
    const auto findings = check.Check(input);
    QByteArray out;
    for (const auto& finding : findings) {
        if (named)
            out += shown.toLocal8Bit() + ": ";
        out += StructureCheck::Format(finding).toUtf8() + '\n';
    }
    std::fwrite(out.constData(), 1, static_cast<size_t>(out.size()), stdout);
    return findings.empty() ? kClean : kReported;
}

// As a host's compile command: "BASIC BP HELLO" checks the item HELLO of the file BP of the
// account that is the current folder. Words that start with "-" are compiler options.
int checkCommand(const StructureCheck& check, const QString& command) {
    QStringList words = command.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    words.removeIf([](const QString& w) { return w.startsWith(QLatin1Char('-')); });
    if (words.size() < 3) {
        std::puts(qPrintable(
            QStringLiteral("brix-check runs only commands like \"BASIC BP HELLO\", not \"%1\".")
                .arg(command.trimmed())));
        return kFailed;
    }
    int result = kClean;
    for (qsizetype i = 2; i < words.size(); ++i) {
        std::printf("Checking %s %s\n", qPrintable(words[1]), qPrintable(words[i]));
        std::fflush(stdout);
        const int one = checkOne(check, words[1] + QLatin1Char('/') + words[i], false);
        if (one == kClean)
            std::puts("No structure errors.");
        result = std::max(result, one);
    }
    return result;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brix-check"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIX_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral(
            "Checks MultiValue BASIC programs for blocks that don't close, closing words with\n"
            "nothing open, GOSUB and GOTO targets that aren't defined, labels defined twice and\n"
            "NEXT naming another variable than its FOR. One line per finding: \"N: message\",\n"
            "N the line; with several files each line starts with the file's name.\n"
            "Exit status: 0 nothing found, 1 something reported, 2 a file couldn't be read or\n"
            "the options were wrong.\n"
            "The manual: ") +
        HelpFile::Locate(HelpFile::ProgramFolder(), QStringLiteral("brix-check.html")));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Programs to check; - reads the standard input."),
                                 QStringLiteral("FILE..."));
    const QCommandLineOption tcl(
        QStringLiteral("tcl"),
        QStringLiteral("Act as a host's compile command: check the items that COMMAND, such as "
                       "\"BASIC BP HELLO\", names, in the account that is the current folder."),
        QStringLiteral("COMMAND"));
    parser.addOption(tcl);
    if (!parser.parse(QCoreApplication::arguments())) {
        complain(parser.errorText());
        return kFailed;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(kClean);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty() && !parser.isSet(tcl)) {
        complain(QStringLiteral("No file named; give - to read the standard input. See --help."));
        return kFailed;
    }

    Moriox settings;
    loadSettings(settings);
    const StructureCheck check(TextFormatter::KeywordsOf(settings));
    int result = parser.isSet(tcl) ? checkCommand(check, parser.value(tcl)) : kClean;
    for (const QString& file : files)
        result = std::max(result, checkOne(check, file, files.size() > 1));
    if (std::fflush(stdout) != 0) {
        complain(QStringLiteral("Can't write the standard output."));
        result = kFailed;
    }
    return result;
}
