#include "recovery/RunIdentity.h"

#include <QFile>
#include <unistd.h>

uint32_t RunIdentity::Current() {
    return static_cast<uint32_t>(::getpid());
}

QString RunIdentity::CurrentName() {
    return ProcessName(Current());
}

QString RunIdentity::ProcessName(uint32_t id) {
    if (id == 0)
        return {};
    const QString base = QStringLiteral("/proc/") + QString::number(id);
    // "pid (comm) S ...": a zombie has ended, only its parent has not collected it yet.
    QFile stat(base + QStringLiteral("/stat"));
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = stat.read(4096);
    const qsizetype close = line.lastIndexOf(')');
    if (close < 0 || close + 2 >= line.size())
        return {};
    const char state = line.at(close + 2);
    if (state == 'Z' || state == 'X' || state == 'x')
        return {};
    QFile comm(base + QStringLiteral("/comm"));
    if (!comm.open(QIODevice::ReadOnly))
        return {};
    QByteArray name = comm.read(256);
    if (name.endsWith('\n'))
        name.chop(1);
    return QString::fromUtf8(name);
}

bool RunIdentity::IsAlive(uint32_t id, const QString& name) {
    const QString running = ProcessName(id);
    return !running.isEmpty() && running.compare(name, Qt::CaseInsensitive) == 0;
}

QString RunIdentity::Hex(uint32_t id) {
    return QStringLiteral("%1").arg(id, 8, 16, QLatin1Char('0')).toUpper();
}

uint32_t RunIdentity::FromFileName(const QString& fileName) {
    const qsizetype dot = fileName.indexOf(QLatin1Char('.'));
    bool ok = false;
    const qulonglong value = (dot < 0 ? fileName : fileName.left(dot)).toULongLong(&ok, 16);
    return ok && value <= 0xFFFFFFFFull ? static_cast<uint32_t>(value) : 0;
}
