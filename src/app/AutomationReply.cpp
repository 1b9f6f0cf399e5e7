#include "app/AutomationReply.h"

#include "support/BrixError.h"

#include <QDBusConnection>

namespace {

constexpr int32_t AutomationFailure = 440;

} // namespace

QString AutomationReply::ErrorName(int32_t number) {
    const QString digits = QString::number(number < 0 ? -static_cast<int64_t>(number) : number);
    return QStringLiteral("com.tolvek.Brix70.Error.") + QLatin1Char(number < 0 ? 'N' : 'E') +
           digits;
}

QString AutomationReply::ErrorText(int32_t number, const QString& description) {
    return QString::number(number) + QStringLiteral(": ") + description;
}

void AutomationReply::SendError(const QDBusMessage& call, int32_t number,
                                const QString& description) {
    call.setDelayedReply(true);
    QDBusConnection::sessionBus().send(
        call.createErrorReply(ErrorName(number), ErrorText(number, description)));
}

bool AutomationReply::matches(const QDBusMessage& call, const char* signature) {
    if (call.signature() == QLatin1String(signature))
        return true;
    call.setDelayedReply(true);
    QDBusConnection::sessionBus().send(call.createErrorReply(
        QDBusError::InvalidArgs, QStringLiteral("Expected the arguments (%1), got (%2)")
                                     .arg(QLatin1String(signature), call.signature())));
    return false;
}

void AutomationReply::sendCurrent(const QDBusMessage& call) {
    try {
        throw;
    } catch (const BrixError& error) {
        SendError(call, error.Number, error.Description);
    } catch (const std::exception& error) {
        SendError(call, AutomationFailure, QString::fromLocal8Bit(error.what()));
    } catch (...) {
        SendError(call, AutomationFailure, QStringLiteral("Automation error"));
    }
}
