#pragma once

#include <QString>

// The settings area of the earlier versions, which the first start of this version migrates
// from: application "Norvane MultiValue Editor", section "Settings". Read only.
class LegacySettings {
public:
    // The stored text, or the default when the key is missing.
    static QString Read(const QString& key, const QString& defaultValue);
};
