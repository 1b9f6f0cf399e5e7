#pragma once

#include <QDBusMessage>
#include <QString>
#include <cstdint>
#include <exception>
#include <type_traits>

// Turns failures of an automation call into D-Bus errors that carry the number and the
// description, so that no exception leaves a call.
class AutomationReply {
public:
    // "com.tolvek.Brix70.Error.E<number>" ("N<number>" for a negative one).
    static QString ErrorName(int32_t number);
    // "<number>: <description>".
    static QString ErrorText(int32_t number, const QString& description);
    // Answers `call` with that error instead of the slot's return value.
    static void SendError(const QDBusMessage& call, int32_t number, const QString& description);

    // Runs `body` for `call` when the call's arguments have the member's `signature`; a
    // failure becomes the call's error and the result the default.
    template <typename Body>
    static auto Run(const QDBusMessage& call, const char* signature, Body&& body) {
        using Result = decltype(body());
        if (matches(call, signature)) {
            try {
                return body();
            } catch (...) {
                sendCurrent(call);
            }
        }
        if constexpr (!std::is_void_v<Result>)
            return Result{};
    }

private:
    // A call with arguments beyond the member's gets InvalidArgs.
    static bool matches(const QDBusMessage& call, const char* signature);
    static void sendCurrent(const QDBusMessage& call);
};
