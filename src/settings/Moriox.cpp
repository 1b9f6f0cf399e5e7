#include "settings/Moriox.h"

#include "language/clsKeyword.h"
#include "language/clsKeywords.h"
#include "settings/LegacySettings.h"
#include "settings/SettingText.h"
#include "settings/SettingsStore.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <functional>
#include <limits>
#include <variant>

namespace {

enum class Rule { None, Font, NotNegative, IndentChoice };

using Member =
    std::variant<QString Moriox::*, bool Moriox::*, int32_t Moriox::*, int16_t Moriox::*>;

struct Field {
    const char* ReadKey;
    const char* WriteKey;
    Member Target;
    const char* Default;
    Rule LoadRule = Rule::None;
    bool Migrated = true;
    const char* LegacyDefault = nullptr; // when the earlier version's default differs
};

// The scalar members in the order they are loaded and saved.
const Field Fields[] = {
    {"FontName", "FontName", &Moriox::FontName, "", Rule::Font},
    {"FontSize", "FontSize", &Moriox::FontSize, "10"},
    {"FontMono", "FontMono", &Moriox::FontMono, "True"},
    {"BackColor", "BackColor", &Moriox::BackColor, "&H80000005&"},
    {"NormalColor", "NormalColor", &Moriox::NormalColor, "&H80000008&"},
    {"NormalStyle", "NormalStyle", &Moriox::NormalStyle, "0"},
    {"KeywordColor", "KeywordColor", &Moriox::KeywordColor, "&H80000008&"},
    {"KeywordStyle", "KeywordStyle", &Moriox::KeywordStyle, "0"},
    {"StringColor", "StringColor", &Moriox::StringColor, "&H00800080&"},
    {"StringStyle", "StringStyle", &Moriox::StringStyle, "0"},
    {"LabelColor", "LabelColor", &Moriox::LabelColor, "&H00800000&"},
    {"LabelStyle", "LabelStyle", &Moriox::LabelStyle, "0"},
    {"CommentColor", "CommentColor", &Moriox::CommentColor, "&H00008000&"},
    {"CommentStyle", "CommentStyle", &Moriox::CommentStyle, "0"},
    {"ReservedColor", "ReservedColor", &Moriox::ReservedColor, "&H80000008&"},
    {"ReservedStyle", "ReservedStyle", &Moriox::ReservedStyle, "0"},
    {"Highlight", "Highlight", &Moriox::Highlight, "True"},
    {"LineWrap", "LineWrap", &Moriox::LineWrap, "False"},
    {"TabSize", "TabSize", &Moriox::TabSize, "3", Rule::NotNegative},
    {"Margin", "Margin", &Moriox::Margin, "6", Rule::NotNegative},
    {"IndentStar", "IndentStar", &Moriox::IndentStar, "1", Rule::IndentChoice},
    {"IndentBang", "IndentBang", &Moriox::IndentBang, "0", Rule::IndentChoice},
    {"CompileCommand", "CompileCommand", &Moriox::CompileCommand, "BASIC"},
    {"CompileOptions", "CompileOptions", &Moriox::CompileOptions, ""},
    {"RecordLocking", "RecordLocking", &Moriox::RecordLocking, "True"},
    {"LocalFileRawMarks", "LocalFileRawMarks", &Moriox::LocalFileRawMarks, "True"},
    {"ColorPrinting", "ColorPrinting", &Moriox::ColorPrinting, "False", Rule::None, true, "false"},
    {"NoGotoDialog", "NoGotoDialog", &Moriox::NoGotoDialog, "False"},
    {"GotoLineNumber", "GotoLineNumber", &Moriox::GotoLineNumber, "False"},
    {"AutoRecover", "AutoRecover", &Moriox::AutoRecover, "True"},
    {"ToolbarHotTrack", "ToolbarHotTrack", &Moriox::HotTrack, "True"},
    {"ToolbarLargeIcons", "ToolbarLargeIcons", &Moriox::LargeToolbarIcons, "False", Rule::None,
     false},
    {"MinMaxClose", "MinMaxClose", &Moriox::MinMaxClose, "False", Rule::None, false},
    // Read from the older key and written to the newer one, on purpose: a saved name is only
    // read back while the older key exists, and the results window otherwise takes its own.
    {"ResultFontName", "ResultsFontName", &Moriox::ResultsFontName, ""},
    {"ResultsFontSize", "ResultsFontSize", &Moriox::ResultsFontSize, ""},
};

using Reader = std::function<QString(const QString& key, const QString& defaultValue)>;

QString readStore(const QString& key, const QString& defaultValue) {
    return SettingsStore::ReadSetting(Moriox::Section(), key, defaultValue);
}

void write(const QString& key, const QString& value) {
    SettingsStore::WriteSetting(Moriox::Section(), key, value, QString());
}

// Settings are read and written statement by statement: one that fails is skipped and the
// next one runs, so a damaged value costs that value only.
template <typename Step> void tolerate(Step&& step) {
    try {
        step();
    } catch (...) {
    }
}

template <typename T> std::optional<T> fitting(int64_t value) {
    if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max())
        return std::nullopt;
    return static_cast<T>(value);
}

void loadField(Moriox& target, const Field& field, const QString& text) {
    if (auto* member = std::get_if<QString Moriox::*>(&field.Target)) {
        target.*(*member) = field.LoadRule == Rule::Font ? Moriox::ApplyFontRule(text) : text;
    } else if (auto* member = std::get_if<bool Moriox::*>(&field.Target)) {
        // A word that is neither True nor False leaves the member as a fresh object has it
        // before any load: false.
        target.*(*member) = SettingText::ParseBoolean(text).value_or(false);
    } else if (auto* member = std::get_if<int32_t Moriox::*>(&field.Target)) {
        target.*(*member) = fitting<int32_t>(SettingText::ParseNumber(text)).value_or(0);
    } else if (auto* member = std::get_if<int16_t Moriox::*>(&field.Target)) {
        auto value = fitting<int16_t>(SettingText::ParseNumber(text));
        if (!value) {
            target.*(*member) = 0; // out of range: as unset
            return;
        }
        if (field.LoadRule == Rule::NotNegative && *value < 0)
            *value = 0;
        if (field.LoadRule == Rule::IndentChoice) {
            const int choice = std::abs(static_cast<int>(*value));
            *value = static_cast<int16_t>(choice > 2 ? 0 : choice);
        }
        target.*(*member) = *value;
    }
}

QString fieldText(const Moriox& source, const Field& field) {
    return std::visit(
        [&](auto member) -> QString {
            const auto& value = source.*member;
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, QString>)
                return value;
            else if constexpr (std::is_same_v<T, bool>)
                return SettingText::FromBoolean(value);
            else
                return QString::number(value);
        },
        field.Target);
}

void loadFields(Moriox& target, const Reader& read, bool migrating) {
    for (const Field& field : Fields) {
        if (migrating && !field.Migrated)
            continue;
        const char* defaultText =
            migrating && field.LegacyDefault ? field.LegacyDefault : field.Default;
        tolerate([&] {
            loadField(target, field,
                      read(QLatin1String(field.ReadKey), QLatin1String(defaultText)));
        });
    }
}

void copyFields(Moriox& target, const Moriox& source) {
    for (const Field& field : Fields)
        std::visit([&](auto member) { target.*member = source.*member; }, field.Target);
}

// The keyword lists. An empty language list keeps the built-in one; the user list is taken
// as it stands.
void loadKeywords(Moriox& target, const Reader& read) {
    tolerate([&] {
        target.Keywords->SetCaseSensitive(
            SettingText::ParseBoolean(read(QStringLiteral("CaseSensitiveKeywords"),
                                           QStringLiteral("False")))
                .value_or(false));
    });
    tolerate([&] {
        const QString language = read(QStringLiteral("LanguageKeywords"), QString());
        if (!language.isEmpty())
            target.Keywords->SetKeywordList(clsKeyword::TypeLanguage, QStringLiteral(" "),
                                            language);
    });
    tolerate([&] {
        target.Keywords->SetKeywordList(clsKeyword::TypeUser, QStringLiteral(" "),
                                        read(QStringLiteral("UserKeywords"), QString()));
    });
}

void saveKeywords(const Moriox& source) {
    tolerate([&] {
        write(QStringLiteral("LanguageKeywords"),
              source.Keywords->GetKeywordList(clsKeyword::TypeLanguage, QStringLiteral(" ")));
    });
    tolerate([&] {
        write(QStringLiteral("UserKeywords"),
              source.Keywords->GetKeywordList(clsKeyword::TypeUser, QStringLiteral(" ")));
    });
    tolerate([&] {
        write(QStringLiteral("CaseSensitiveKeywords"),
              SettingText::FromBoolean(source.Keywords->CaseSensitive()));
    });
}

QString recentFileKey(int index) {
    return QStringLiteral("RecentFile_%1").arg(index);
}

void loadRecentList(clsRecentList& list, const Reader& read) {
    tolerate([&] {
        if (const auto size = fitting<int16_t>(SettingText::ParseNumber(
                read(QStringLiteral("RecentListSize"), QStringLiteral("4")))))
            list.SetListSize(*size);
    });
    int16_t count = 0;
    tolerate([&] {
        count = fitting<int16_t>(SettingText::ParseNumber(
                                     read(QStringLiteral("RecentFileCount"), QStringLiteral("0"))))
                    .value_or(0);
    });
    // Adding the entries from the last to the first would leave the first ListSize distinct
    // non-empty ones, first on top; collecting them from the top gives the same list without
    // reading a long tail that would fall off.
    QStringList entries;
    for (int i = 1; i <= count && entries.size() < list.ListSize(); ++i) {
        tolerate([&] {
            const QString entry = read(recentFileKey(i), QString());
            if (!entry.isEmpty() && !entries.contains(entry, Qt::CaseInsensitive))
                entries.append(entry);
        });
    }
    for (auto it = entries.crbegin(); it != entries.crend(); ++it)
        list.AddItem(*it);
}

void saveRecentList(const clsRecentList& list) {
    tolerate([&] { write(QStringLiteral("RecentListSize"), QString::number(list.ListSize())); });
    tolerate([&] { write(QStringLiteral("RecentFileCount"), QString::number(list.ListCount())); });
    for (int16_t i = 1; i <= list.ListCount(); ++i)
        tolerate([&] { write(recentFileKey(i), list.ListItem(i)); });
}

// Same size and entries in the same order.
void copyRecentList(clsRecentList& target, const clsRecentList& source) {
    target.Clear();
    target.SetListSize(source.ListSize());
    for (int16_t i = source.ListCount(); i >= 1; --i)
        target.AddItem(source.ListItem(i));
}

} // namespace

Moriox::Moriox()
    : Keywords(std::make_shared<clsKeywords>()), RecentList(std::make_unique<clsRecentList>()) {}

Moriox::~Moriox() = default;

QString Moriox::Section() {
    return QStringLiteral("Software\\Tolvek\\MultiValue Editor\\Settings\\");
}

void Moriox::LoadSettings() {
    int64_t version = 0;
    tolerate([&] { version = SettingText::ParseNumber(readStore(QString(), QString())); });
    if (version < SettingsVersion) {
        migrate();
        return;
    }
    loadFields(*this, readStore, false);
    loadKeywords(*this, readStore);
    tolerate([&] { loadRecentList(*RecentList, readStore); });
}

void Moriox::SaveSettings() const {
    const SettingsStore::Batch batch;
    tolerate([&] { write(QString(), QString::number(SettingsVersion)); });
    for (const Field& field : Fields)
        tolerate([&] { write(QLatin1String(field.WriteKey), fieldText(*this, field)); });
    saveKeywords(*this);
    tolerate([&] { saveRecentList(*RecentList); });
}

void Moriox::migrate() {
    const SettingsStore::Batch batch;
    const Reader legacy = &LegacySettings::Read;
    // The window keys have no member: they go straight to the store, and only when the
    // earlier version had them.
    const auto copyNumber = [&](const QString& key) {
        tolerate([&] {
            const auto value = SettingText::ParseInteger(legacy(key, QStringLiteral("-10000")));
            if (value && fitting<int32_t>(*value) && *value > -10000)
                write(key, QString::number(*value));
        });
    };
    for (const char* key : {"MainState", "MainLeft", "MainTop", "MainWidth", "MainHeight"})
        copyNumber(QLatin1String(key));
    for (const char* key : {"StatusbarVisible", "ToolbarVisible"}) {
        tolerate([&] {
            const auto visible =
                SettingText::ParseBoolean(legacy(QLatin1String(key), QStringLiteral("True")));
            if (visible && !*visible)
                write(QLatin1String(key), SettingText::FromBoolean(false));
        });
    }
    copyNumber(QStringLiteral("ChildState"));

    loadFields(*this, legacy, true);
    loadKeywords(*this, legacy);
    tolerate([&] { loadRecentList(*RecentList, legacy); });
    SaveSettings();
}

std::unique_ptr<Moriox> Moriox::Clone() const {
    auto copy = std::make_unique<Moriox>();
    copyFields(*copy, *this);
    copy->Keywords = Keywords->Clone();
    copyRecentList(*copy->RecentList, *RecentList);
    return copy;
}

void Moriox::UpdateFrom(const Moriox& source) {
    if (&source == this)
        return;
    copyFields(*this, source);
    // Lexers hold this table: it is changed in place, never replaced.
    Keywords->UpdateFrom(*source.Keywords);
    copyRecentList(*RecentList, *source.RecentList);
}

bool Moriox::operator==(const Moriox& other) const {
    for (const Field& field : Fields)
        if (fieldText(*this, field) != fieldText(other, field))
            return false;
    const auto list = [](const Moriox& m, int32_t type) {
        return m.Keywords->GetKeywordList(type, QStringLiteral(" "));
    };
    if (list(*this, clsKeyword::TypeLanguage) != list(other, clsKeyword::TypeLanguage) ||
        list(*this, clsKeyword::TypeUser) != list(other, clsKeyword::TypeUser) ||
        Keywords->CaseSensitive() != other.Keywords->CaseSensitive() ||
        RecentList->ListSize() != other.RecentList->ListSize() ||
        RecentList->ListCount() != other.RecentList->ListCount())
        return false;
    for (int16_t i = 1; i <= RecentList->ListCount(); ++i)
        if (RecentList->ListItem(i) != other.RecentList->ListItem(i))
            return false;
    return true;
}

QString Moriox::ApplyFontRule(const QString& name) {
    if (name.isEmpty())
        return DefaultFontName();
    if (name.compare(QLatin1String("MV Lucida Console"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("MVW Lucida Console");
    return name;
}

QString Moriox::DefaultFontName() {
    // Without a GUI application there is no font list to ask.
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return DefaultFontName(QStringList());
    return DefaultFontName(QFontDatabase::families());
}

QString Moriox::DefaultFontName(const QStringList& families) {
    const QLatin1String wanted("MVW Lucida Console");
    for (const QString& family : families)
        if (QStringView(family).left(wanted.size()).compare(wanted, Qt::CaseInsensitive) == 0)
            return family;
    return QStringLiteral("Courier New");
}
