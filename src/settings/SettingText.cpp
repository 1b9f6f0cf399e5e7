#include "settings/SettingText.h"

std::optional<int64_t> SettingText::ParseInteger(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(QLatin1String("&H"), Qt::CaseInsensitive)) {
        QStringView digits = QStringView(trimmed).mid(2);
        if (digits.endsWith(QLatin1Char('&')))
            digits.chop(1);
        if (digits.isEmpty() || digits.size() > 8)
            return std::nullopt;
        uint32_t value = 0;
        for (const QChar c : digits) {
            const int digit = QStringLiteral("0123456789ABCDEF").indexOf(c.toUpper());
            if (digit < 0)
                return std::nullopt;
            value = value * 16 + static_cast<uint32_t>(digit);
        }
        return static_cast<int64_t>(static_cast<int32_t>(value));
    }
    bool ok = false;
    const qlonglong value = trimmed.toLongLong(&ok, 10);
    if (!ok)
        return std::nullopt;
    return static_cast<int64_t>(value);
}

int64_t SettingText::ParseNumber(const QString& text) {
    return ParseInteger(text).value_or(0);
}

std::optional<bool> SettingText::ParseBoolean(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return true;
    if (trimmed.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return false;
    return std::nullopt;
}

QString SettingText::FromBoolean(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

QString SettingText::FromStored(const QVariant& value) {
    return value.typeId() == QMetaType::QStringList
               ? value.toStringList().join(QStringLiteral(", "))
               : value.toString();
}
