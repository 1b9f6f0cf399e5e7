#pragma once

#include "support/BrixError.h"

#include <cstdint>

// Numbers of the connection layer's errors besides the two that callers react to
// (BrixErrors::CannotWrite and BrixErrors::LockedByOther). The others are only shown.
namespace ConnectionErrors {
constexpr int32_t BadPath = static_cast<int32_t>(0x80049D01u);
constexpr int32_t UnknownServer = static_cast<int32_t>(0x80049D02u);
constexpr int32_t UnknownAccount = static_cast<int32_t>(0x80049D03u);
constexpr int32_t BadItemId = static_cast<int32_t>(0x80049D04u);
constexpr int32_t ReadFailed = static_cast<int32_t>(0x80049D10u);
constexpr int32_t WriteFailed = static_cast<int32_t>(0x80049D11u);
constexpr int32_t NotAnItem = static_cast<int32_t>(0x80049D13u);
constexpr int32_t Unrepresentable = static_cast<int32_t>(0x80049D14u);
constexpr int32_t CommandsNotAllowed = static_cast<int32_t>(0x80049D20u);
constexpr int32_t CommandFailed = static_cast<int32_t>(0x80049D21u);
constexpr int32_t CommandTimedOut = static_cast<int32_t>(0x80049D22u);
// A save found the item changed by someone else since it was read; nothing was written.
constexpr int32_t ChangedOnHost = static_cast<int32_t>(0x80049D15u);
// The connection ended while a write was under way: the item holds its old text or the new.
constexpr int32_t ConnectionLost = static_cast<int32_t>(0x80049D16u);
constexpr int32_t LockFailed = static_cast<int32_t>(0x80049D2Cu);

// A save that found `what` changed since it was read here, and wrote nothing.
inline BrixError ChangedSinceRead(const QString& what) {
    return BrixError(ChangedOnHost,
                     QStringLiteral("%1 was changed on the host since you opened it; it was "
                                    "not saved.")
                         .arg(what));
}
} // namespace ConnectionErrors
