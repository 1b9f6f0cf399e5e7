#pragma once

#include <QString>
#include <cstdint>

// Where the settings live. "norvane70.ini" beside the executable chooses the backing in its
// section "Isolation": `PersistSettings` 1 (also when the file or key is missing) keeps them in
// the per-user store, 2 in "appstate.ini" in `AppDataDirectory`, any other value nowhere.
// Callers address a value by a registry-style section ("Software\Maker\Product\Group\") and a
// key, whatever the backing. Nothing here raises to the caller but WriteTextFile.
class SettingsStore {
public:
    // A stored empty value reads as the default.
    static QString ReadSetting(const QString& section, const QString& key,
                               const QString& defaultValue);
    static void WriteSetting(const QString& section, const QString& key, const QString& value,
                             const QString& defaultValue = QString());

    static int16_t PersistSettings();
    static QString AppDataDirectory();
    static QString UserDataDirectory();
    // AppDataDirectory + "appstate.ini".
    static QString StateFile();
    // Where "norvane70.ini" is looked for.
    static QString ExecutableFolder();

    // The INI address of a section and key: "Software\Tolvek\MultiValue Editor\Settings\"
    // becomes "MultiValueEditor_Settings_", the empty key "@".
    static QString IniSection(const QString& section);
    static QString IniKey(const QString& key);

    // The folder made absolute against the executable's, environment names expanded, with a
    // trailing "/", and made when missing; the executable's folder when it can't be made.
    static QString EnsureFolder(const QString& path);
    // Resolves a leading "./" or ".." against the base folder and drops ".." pieces, never
    // above the root. "\" counts as "/", since selection files are shared with Windows.
    static QString NormalisePath(const QString& path, const QString& baseFolder);
    // Replaces each "%NAME%" by that environment variable (empty when unset).
    static QString ExpandEnvironment(const QString& text);
    static bool DirectoryExists(const QString& path);
    static bool FileExists(const QString& path);

    enum TextEncoding : int {
        RawBytes = -1, // the text's own 16-bit units, without a byte-order mark
        Utf8Bom = 2,
        Utf16Bom = 3,
        LocalText = 0, // any other code: the locale's encoding
    };
    // Writes the text in the encoding; false on failure, or BrixError when raiseErrors is
    // set. An encoding that yields no bytes at all raises error 5 in any case.
    static bool WriteTextFile(const QString& path, const QString& text, int encoding,
                              bool raiseErrors);

    // Holds back the file writes of the WriteSetting calls made while it lives and does them
    // in one go at its end, so that saving every setting doesn't rewrite a file per key.
    // Reads in the meantime see the held values. Batches nest; the outermost one writes.
    class Batch {
    public:
        Batch();
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;
    };

    // Forgets the set-up, so that the next read or write runs it again against the selection
    // file in `executableFolder` (empty: the real folder of the executable).
    static void Reinitialise(const QString& executableFolder = QString());

    static constexpr int ReadBufferChars = 4096;
    static constexpr int IntegerBufferChars = 1024;
};
