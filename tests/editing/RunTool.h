#pragma once

#include <QProcess>

// A command-line tool of the build, run to its end with `input` on its standard input.
struct ToolResult {
    int Code = -1; // -1: it didn't start or it crashed
    QByteArray Out;
    QByteArray Err;
};

inline QString ToolPath(const QString& name) {
    return qEnvironmentVariable("BRIX_BUILD_DIR") + QLatin1Char('/') + name;
}

inline ToolResult RunTool(const QString& name, const QStringList& arguments,
                          const QByteArray& input = QByteArray()) {
    QProcess p;
    p.start(ToolPath(name), arguments);
    ToolResult r;
    if (!p.waitForStarted(30000))
        return r;
    p.write(input);
    p.closeWriteChannel();
    p.waitForFinished(120000);
    r.Code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.Out = p.readAllStandardOutput();
    r.Err = p.readAllStandardError();
    return r;
}
