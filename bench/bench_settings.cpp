// Timings of saving and loading every setting, in the per-user store and in a state file.
#include "BenchSupport.h"

#include "settings/Moriox.h"
#include "settings/SettingsStore.h"

#include <QApplication>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdlib>

namespace {

// A settings object whose every save changes the stored text.
void vary(Moriox& settings, int round) {
    settings.TabSize = static_cast<int16_t>(round % 9);
    settings.CompileOptions = QStringLiteral("-opt %1").arg(round);
    settings.RecentList->SetListSize(10);
    for (int i = 0; i < 10; ++i)
        settings.RecentList->AddItem(
            QStringLiteral("file:///home/user/src/PROGRAM.%1.%2").arg(i).arg(round));
}

void measure(const char* mode, const QString& executableFolder) {
    SettingsStore::Reinitialise(executableFolder);
    std::vector<double> saves, loads;
    for (int round = 0; round < 21; ++round) {
        Moriox settings;
        vary(settings, round);
        const Bench::Stopwatch save;
        settings.SaveSettings();
        saves.push_back(save.Ms());
        Moriox loaded;
        const Bench::Stopwatch load;
        loaded.LoadSettings();
        loads.push_back(load.Ms());
    }
    Bench::Report(qPrintable(QStringLiteral("settings_save_%1").arg(QLatin1String(mode))),
                  Bench::Median(saves), "ms");
    Bench::Report(qPrintable(QStringLiteral("settings_load_%1").arg(QLatin1String(mode))),
                  Bench::Median(loads), "ms");
}

} // namespace

int main(int argc, char** argv) {
    // Never the real user's settings, even when run by hand.
    QTemporaryDir home;
    ::setenv("HOME", home.path().toLocal8Bit().constData(), 1);
    ::setenv("XDG_CONFIG_HOME",
             (home.path() + QStringLiteral("/.config")).toLocal8Bit().constData(), 1);
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);

    QTemporaryDir userStore;
    measure("user_store", userStore.path());

    QTemporaryDir stateFile;
    QFile selection(stateFile.filePath(QStringLiteral("norvane70.ini")));
    selection.open(QIODevice::WriteOnly);
    selection.write("[Isolation]\nPersistSettings=2\nAppDataDirectory=./data\n");
    selection.close();
    measure("state_file", stateFile.path());
    SettingsStore::Reinitialise();
    return 0;
}
