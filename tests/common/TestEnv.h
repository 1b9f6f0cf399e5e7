#pragma once

#include <QApplication>
#include <QString>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

// Points HOME and the XDG folders at a fresh temporary folder and turns on Qt's test mode
// for standard paths, so that no test touches a real user's files. Call first in main().
class TestEnv {
public:
    static void Init();
    // The temporary home of this test process.
    static QString Home();
    // A file of tests/fixtures.
    static QString Fixture(const QString& name);
    // A file of the shared corpus folder beside the project.
    static QString Shared(const QString& name);
};

// A QtTest main that prepares the environment first.
#define BRIX_TEST_MAIN(TestClass)                                                                  \
    int main(int argc, char** argv) {                                                              \
        TestEnv::Init();                                                                           \
        QApplication app(argc, argv);                                                              \
        app.setAttribute(Qt::AA_Use96Dpi, true);                                                   \
        TestClass tc;                                                                              \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&tc, argc, argv);                                                      \
    }
