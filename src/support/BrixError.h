#pragma once

#include <QString>
#include <cstdint>
#include <exception>

// An error with a number and a readable description, as the connection layer and the
// document operations raise them. Callers catch it at the edge of an operation; it never
// crosses the event loop or the D-Bus boundary.
class BrixError : public std::exception {
public:
    BrixError(int32_t number, QString description)
        : Number(number), Description(std::move(description)), utf8_(Description.toUtf8()) {}

    const char* what() const noexcept override { return utf8_.constData(); }

    int32_t Number;
    QString Description;

private:
    QByteArray utf8_;
};

namespace BrixErrors {
// Numbers with a fixed meaning to the callers.
constexpr int32_t CannotWrite = static_cast<int32_t>(0x80049D12u);
constexpr int32_t LockedByOther = static_cast<int32_t>(0x80049D2Bu);
constexpr int32_t SubscriptOutOfRange = 9;
constexpr int32_t InvalidPropertyValue = 380;
constexpr int32_t InvalidPropertyArrayIndex = 381;
constexpr int32_t LabelNotFound = 32767;
} // namespace BrixErrors
