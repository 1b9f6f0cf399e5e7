#pragma once

#include <QString>
#include <cstdint>

// Which run of the program wrote a recovery copy: the process id, written as eight
// upper-case hexadecimal digits in front of each copy's name. A run counts as alive while a
// process of that id runs under the same process name, so that an id reused by another
// program does not hide a dead run's copies.
class RunIdentity {
public:
    // This process.
    static uint32_t Current();
    static QString CurrentName();

    // The name of a running process, empty when there is none (or only its zombie).
    static QString ProcessName(uint32_t id);
    static bool IsAlive(uint32_t id, const QString& name);

    // "0012ABCD".
    static QString Hex(uint32_t id);
    // The part of a file name before its first ".", read as hexadecimal; 0 when it isn't.
    static uint32_t FromFileName(const QString& fileName);
};
