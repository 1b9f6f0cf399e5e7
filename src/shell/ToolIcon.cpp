#include "shell/ToolIcon.h"

// Resources of a static library are not registered until asked for. Outside any
// namespace: the macro declares the registering function where it stands.
static void registerResources() {
    static const bool done = [] {
        Q_INIT_RESOURCE(brix);
        return true;
    }();
    Q_UNUSED(done);
}

// Without a desktop theme, Adwaita when it is installed. Before the first look-up of any
// theme icon: a theme read once keeps the fallback it was read with.
static void prepareTheme() {
    static const bool done = [] {
        if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
            QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
        return true;
    }();
    Q_UNUSED(done);
}

QIcon ToolIcon::Find(const QString& name) {
    if (name.isEmpty())
        return QIcon();
    if (name.startsWith(QLatin1String("brix:"))) {
        registerResources();
        return QIcon(QStringLiteral(":/icons/toolbar/") + name.mid(5) + QStringLiteral(".svg"));
    }
    prepareTheme();
    // The full-colour icon first: the symbolic ones are drawn dark whatever the palette.
    for (const QString& candidate : {name, name + QStringLiteral("-symbolic"),
                                      name + QStringLiteral("-symbolic.symbolic")})
        if (QIcon::hasThemeIcon(candidate))
            return QIcon::fromTheme(candidate);
    return QIcon();
}

QIcon ToolIcon::Application() {
    registerResources();
    prepareTheme();
    return QIcon::fromTheme(QStringLiteral("com.tolvek.Brix"),
                            QIcon(QStringLiteral(":/icons/com.tolvek.Brix.svg")));
}
