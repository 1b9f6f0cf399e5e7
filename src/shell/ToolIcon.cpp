#include "shell/ToolIcon.h"

#include <QFileInfo>

// Resources of a static library are not registered until asked for. Outside any
// namespace: the macro declares the registering function where it stands.
static void registerResources() {
    static const bool done = [] {
        Q_INIT_RESOURCE(brix);
        return true;
    }();
    Q_UNUSED(done);
}

// Without a desktop theme, Adwaita when it is installed. Platforms without a desktop theme
// (offscreen, some Wayland set-ups) search no system folder at all: the XDG data folders
// are added. Before the first look-up of any theme icon: a theme read once keeps the
// fallback it was read with.
static void prepareTheme() {
    static const bool done = [] {
        QStringList paths = QIcon::themeSearchPaths();
        const QString dataDirs = qEnvironmentVariable("XDG_DATA_DIRS");
        for (const QString& dir :
             (dataDirs.isEmpty() ? QStringLiteral("/usr/local/share:/usr/share") : dataDirs)
                 .split(QLatin1Char(':'), Qt::SkipEmptyParts))
            if (!paths.contains(dir + QStringLiteral("/icons")))
                paths << dir + QStringLiteral("/icons");
        QIcon::setThemeSearchPaths(paths);
        // No theme at all looks nowhere, not even in the fallback.
        if (QIcon::themeName().isEmpty())
            QIcon::setThemeName(QStringLiteral("hicolor"));
        if (QIcon::themeName() == QLatin1String("hicolor"))
            QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
        return true;
    }();
    Q_UNUSED(done);
}

QIcon ToolIcon::Find(const QString& name) {
    if (name.isEmpty())
        return QIcon();
    registerResources();
    const bool shippedOnly = name.startsWith(QLatin1String("brix:"));
    const QString shipped = QStringLiteral(":/icons/toolbar/") +
                            (shippedOnly ? name.mid(5) : name) + QStringLiteral(".svg");
    if (!shippedOnly) {
        prepareTheme();
        // The theme's full-colour icon when it can be drawn sharp for a large tool bar at a
        // ratio of 2; a theme with small bitmaps only, or with symbolic icons only (drawn
        // dark whatever the palette), gives way to the shipped drawing.
        if (QIcon::hasThemeIcon(name)) {
            const QIcon icon = QIcon::fromTheme(name);
            if (icon.pixmap(QSize(32, 32), 2.0).width() >= 64)
                return icon;
        }
    }
    return QFileInfo::exists(shipped) ? QIcon(shipped) : QIcon();
}

QIcon ToolIcon::Application() {
    registerResources();
    prepareTheme();
    return QIcon::fromTheme(QStringLiteral("com.tolvek.Brix"),
                            QIcon(QStringLiteral(":/icons/com.tolvek.Brix.svg")));
}
