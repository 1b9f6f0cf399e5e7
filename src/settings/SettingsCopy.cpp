#include "settings/SettingsCopy.h"

#include "settings/SettingText.h"

#include <algorithm>

namespace {

struct Row {
    const char* label;
    int32_t Moriox::*color;
    int16_t Moriox::*style;
};

const Row kRows[SettingsCopy::RowCount] = {
    {"Background color", &Moriox::BackColor, nullptr},
    {"Normal text", &Moriox::NormalColor, &Moriox::NormalStyle},
    {"Language keyword", &Moriox::ReservedColor, &Moriox::ReservedStyle},
    {"Comment", &Moriox::CommentColor, &Moriox::CommentStyle},
    {"String", &Moriox::StringColor, &Moriox::StringStyle},
    {"Label", &Moriox::LabelColor, &Moriox::LabelStyle},
    {"User keyword", &Moriox::KeywordColor, &Moriox::KeywordStyle},
};

bool validRow(int row) {
    return row >= 0 && row < SettingsCopy::RowCount;
}

int16_t toShort(const QString& text) {
    return static_cast<int16_t>(std::clamp<int64_t>(SettingText::ParseNumber(text), 0, 32767));
}

} // namespace

SettingsCopy::SettingsCopy(const Moriox& source) : copy_(source.Clone()) {}

QString SettingsCopy::RowLabel(int row) {
    return validRow(row) ? QString::fromLatin1(kRows[row].label) : QString();
}

int32_t SettingsCopy::Color(int row) const {
    return validRow(row) ? (*copy_).*kRows[row].color : 0;
}

void SettingsCopy::SetColor(int row, int32_t value) {
    if (validRow(row))
        (*copy_).*kRows[row].color = value;
}

int16_t SettingsCopy::Style(int row) const {
    return HasStyle(row) ? (*copy_).*kRows[row].style : int16_t(0);
}

void SettingsCopy::SetStyleBit(int row, int16_t bit, bool on) {
    if (!HasStyle(row))
        return;
    int16_t& style = (*copy_).*kRows[row].style;
    style = static_cast<int16_t>(on ? (style | bit) : (style & ~bit));
}

QString SettingsCopy::NonNegativeText(const QString& text) {
    const auto value = SettingText::ParseInteger(text);
    return value && *value < 0 ? QStringLiteral("0") : text;
}

void SettingsCopy::ReadFormatNumbers(const QString& tabSize, const QString& margin) {
    copy_->TabSize = toShort(tabSize);
    copy_->Margin = toShort(margin);
}

void SettingsCopy::ReadListSize(const QString& recentFiles) {
    copy_->RecentList->SetListSize(toShort(recentFiles));
}

bool SettingsCopy::SetMinMaxClose(bool value, bool documentsOpen, const Moriox& settings) {
    if (documentsOpen) {
        copy_->MinMaxClose = settings.MinMaxClose;
        return value == settings.MinMaxClose;
    }
    copy_->MinMaxClose = value;
    return true;
}

QString SettingsCopy::MinMaxCloseRefusal() {
    return QStringLiteral("The \"min, max, close\" setting cannot be changed while any documents "
                          "are open. Please close all documents and try again.");
}

void SettingsCopy::CommitTo(Moriox& settings) const {
    settings.UpdateFrom(*copy_);
}
