#include "SettingsSandbox.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "settings/IniProfile.h"
#include "settings/SettingsStore.h"
#include "shell/FramePlacement.h"
#include "shell/frmMain.h"

#include <QScreen>

Q_DECLARE_METATYPE(TwipsRect)

namespace {

constexpr int Twips = FramePlacement::TwipsPerPixel;

TwipsRect twips(int left, int top, int width, int height) {
    return {left * Twips, top * Twips, width * Twips, height * Twips};
}

void store(const QString& key, const QString& value) {
    SettingsStore::WriteSetting(QStringLiteral("Software\\Tolvek\\MultiValue Editor\\Settings\\"),
                                key, value);
}

const char* const RectKeys[] = {"MainLeft", "MainTop", "MainWidth", "MainHeight"};

void storeRect(const TwipsRect& rect) {
    const int32_t values[] = {rect.Left, rect.Top, rect.Width, rect.Height};
    for (int i = 0; i < 4; ++i)
        store(QLatin1String(RectKeys[i]), QString::number(values[i]));
}

QString stored(const SettingsSandbox& sandbox, const QString& key) {
    return IniProfile::FromBytes(sandbox.StateFileBytes())
        .Value(QStringLiteral("MultiValueEditor_Settings_"), key);
}

TwipsRect storedRect(const SettingsSandbox& sandbox) {
    int32_t v[4];
    for (int i = 0; i < 4; ++i)
        v[i] = stored(sandbox, QLatin1String(RectKeys[i])).toInt();
    return {v[0], v[1], v[2], v[3]};
}

TwipsRect frameRect(const frmMain& frame) {
    return twips(frame.x(), frame.y(), frame.width(), frame.height());
}

} // namespace

class tst_FramePlacement : public QObject {
    Q_OBJECT

    // The frame as start-up makes it, and its unload as the program does it.
    QPointer<frmMain> openFrame() {
        ProcessState::Instance().ShutdownStarted = false;
        QPointer<frmMain> frame = new frmMain;
        frame->Load();
        frame->show();
        return frame;
    }

    void closeFrame(QPointer<frmMain>& frame) {
        frame->UnloadForm();
        QTRY_VERIFY(frame.isNull());
    }

private Q_SLOTS:
    void fit_data() {
        QTest::addColumn<TwipsRect>("rect");
        QTest::addColumn<TwipsRect>("desktop");
        QTest::addColumn<TwipsRect>("expected");
        const TwipsRect hd = twips(0, 0, 1920, 1080);
        const auto row = [](const char* name, const TwipsRect& rect, const TwipsRect& desktop,
                            const TwipsRect& expected) {
            QTest::newRow(name) << rect << desktop << expected;
        };
        row("on the desktop", twips(100, 50, 800, 600), hd, twips(100, 50, 800, 600));
        row("right monitor gone", twips(2500, 100, 1200, 900), hd,
            TwipsRect{3600, 100 * Twips, 1200 * Twips, 900 * Twips});
        row("left of the desktop", twips(-300, -20, 800, 600), hd, twips(0, 0, 800, 600));
        row("below nine tenths of the height", twips(10, 1000, 800, 600), hd,
            TwipsRect{10 * Twips, 2025, 800 * Twips, 600 * Twips});
        row("too wide and too tall", twips(0, 0, 4000, 2000), hd, twips(0, 0, 1920, 1080));
        // A monitor left of the primary one: the desktop starts at a negative x.
        const TwipsRect wide = twips(-1280, 0, 3200, 1080);
        row("beyond origin plus extent", twips(1800, 10, 800, 600), wide,
            TwipsRect{3600, 10 * Twips, 800 * Twips, 600 * Twips});
    }

    void fit() {
        QFETCH(TwipsRect, rect);
        QFETCH(TwipsRect, desktop);
        QFETCH(TwipsRect, expected);
        // The reset position comes from the primary screen, 1920 x 1080 here.
        QCOMPARE(FramePlacement::Fit(rect, desktop, 1920 * Twips, 1080 * Twips), expected);
    }

    void freshStoreTakesTheDefaults() {
        SettingsSandbox sandbox(2);
        QPointer<frmMain> frame = openFrame();
        const QSize screen = QGuiApplication::primaryScreen()->size();
        const TwipsRect expected =
            FramePlacement::DefaultRect(screen.width() * Twips, screen.height() * Twips);
        QCOMPARE(frameRect(*frame), expected);
        closeFrame(frame);
        QCOMPARE(stored(sandbox, QStringLiteral("MainState")), QStringLiteral("0"));
        QCOMPARE(storedRect(sandbox), expected);
    }

    void movesWhileNormalAreKept() {
        SettingsSandbox sandbox(2);
        storeRect(twips(20, 30, 400, 300));
        QPointer<frmMain> frame = openFrame();
        QCOMPARE(frameRect(*frame), twips(20, 30, 400, 300));
        frame->move(40, 50);
        frame->resize(420, 320);
        // Maximised, the frame keeps the place it had when normal.
        frame->setWindowState(Qt::WindowMaximized);
        QTRY_VERIFY(frame->isMaximized());
        closeFrame(frame);
        QCOMPARE(stored(sandbox, QStringLiteral("MainState")), QStringLiteral("2"));
        QCOMPARE(storedRect(sandbox), twips(40, 50, 420, 320));

        frame = openFrame();
        QVERIFY(frame->isMaximized());
        frame->setWindowState(Qt::WindowNoState);
        QTRY_COMPARE(frameRect(*frame), twips(40, 50, 420, 320));
        closeFrame(frame);
        QCOMPARE(stored(sandbox, QStringLiteral("MainState")), QStringLiteral("0"));
    }

    // Twips count logical pixels: at a device pixel ratio of 2 (the ratio2 run) ten starts
    // and ends leave the stored place where it was.
    void startsKeepTheStoredPlace() {
        SettingsSandbox sandbox(2);
        // Small enough for the offscreen screen, 400 x 300 logical pixels at that ratio.
        const TwipsRect place = twips(10, 12, 300, 200);
        storeRect(place);
        for (int start = 0; start < 10; ++start) {
            QPointer<frmMain> frame = openFrame();
            QCOMPARE(frameRect(*frame), place);
            closeFrame(frame);
            QCOMPARE(storedRect(sandbox), place);
        }
    }

    void minimisedAtExitKeepsTheEarlierState() {
        SettingsSandbox sandbox(2);
        store(QStringLiteral("MainState"), QStringLiteral("2"));
        storeRect(twips(20, 30, 400, 300));
        QPointer<frmMain> frame = openFrame();
        frame->setWindowState(Qt::WindowMinimized);
        QVERIFY(frame->isMinimized());
        closeFrame(frame);
        QCOMPARE(stored(sandbox, QStringLiteral("MainState")), QStringLiteral("2"));
        QCOMPARE(storedRect(sandbox), twips(20, 30, 400, 300));
    }
};

BRIX_TEST_MAIN(tst_FramePlacement)
#include "tst_FramePlacement.moc"
