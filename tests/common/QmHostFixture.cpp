#include "QmHostFixture.h"
#include "FileTestSupport.h"

#include "documents/CommandOutput.h"
#include "documents/ConnectionProfiles.h"
#include "documents/mvConnection.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int kStartMs = 180000;
constexpr int kCommandMs = 60000;

// Runs the host script; its output, or the reason it failed in `error`.
QByteArray script(const QStringList& arguments, QString& error) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(BRIX_SCRIPTS "/scarletdme.sh"), arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(kStartMs))
        process.kill();
    const QByteArray output = process.readAll();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        error = QStringLiteral("scarletdme.sh %1 failed: %2")
                    .arg(arguments.first(), QString::fromLocal8Bit(output));
    return output;
}

} // namespace

QmHostFixture::QmHostFixture(const QString& account)
    : tmp_(std::make_unique<QTemporaryDir>(QDir::tempPath() +
                                           QStringLiteral("/brix-qmhost-XXXXXX"))),
      holder_(std::make_unique<QProcess>()), account_(account) {
    if (!tmp_->isValid()) {
        error_ = QStringLiteral("No temporary folder for the QM host.");
        return;
    }
    holder_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    holder_->start(QStringLiteral(BRIX_SCRIPTS "/scarletdme.sh"),
                   {QStringLiteral("host"), QStringLiteral(BRIX_QM_BUILD), Folder()});
    // Its input stays open: closing it stops the host.
    QByteArray said;
    while (!said.contains('\n') && holder_->waitForReadyRead(kStartMs))
        said += holder_->readAll();
    if (said.trimmed() != "ready") {
        error_ =
            QStringLiteral("The QM host did not start (%1).").arg(QString::fromLocal8Bit(said));
        return;
    }
    if (!CreateAccount(account_) && error_.isEmpty())
        error_ = QStringLiteral("The account %1 was not created.").arg(account_);
}

QmHostFixture::~QmHostFixture() {
    holder_->closeWriteChannel();
    if (!holder_->waitForFinished(30000))
        holder_->kill();
    holder_->waitForFinished(5000);
}

QString QmHostFixture::Folder() const {
    return tmp_->path() + QStringLiteral("/host");
}

QString QmHostFixture::QmProgram() const {
    return Folder() + QStringLiteral("/bin/qm");
}

QString QmHostFixture::AccountsFolder() const {
    return tmp_->path() + QStringLiteral("/accounts");
}

QString QmHostFixture::AccountFolder() const {
    return AccountsFolder() + QLatin1Char('/') + account_;
}

bool QmHostFixture::CreateAccount(const QString& name) const {
    QString error;
    script({QStringLiteral("account"), Folder(), name, AccountsFolder() + QLatin1Char('/') + name},
           error);
    if (!error.isEmpty())
        qWarning("%s", qPrintable(error));
    return error.isEmpty();
}

QByteArray QmHostFixture::Run(const QString& command) const {
    const QStringList line =
        CommandOutput::Prepare({QmProgram(), QStringLiteral("-quiet")}, command);
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setWorkingDirectory(AccountFolder());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(line.first(), line.mid(1));
    if (!process.waitForFinished(kCommandMs)) {
        process.kill();
        process.waitForFinished();
        return "<qm did not finish: " + command.toUtf8() + '>';
    }
    return process.readAll();
}

QByteArray QmHostFixture::RunProgram(const QString& name, const QByteArray& source) const {
    WriteItem(QStringLiteral("BP"), name, source);
    const QByteArray compiled = Run(QStringLiteral("BASIC BP ") + name);
    if (!compiled.contains("with no errors"))
        return compiled;
    return Run(QStringLiteral("RUN BP ") + name);
}

QString QmHostFixture::ItemFile(const QString& file, const QString& fileName) const {
    return AccountFolder() + QLatin1Char('/') + file + QLatin1Char('/') + fileName;
}

QByteArray QmHostFixture::ReadItem(const QString& file, const QString& fileName) const {
    return FileTestSupport::ReadFile(ItemFile(file, fileName));
}

void QmHostFixture::WriteItem(const QString& file, const QString& fileName,
                              const QByteArray& bytes) const {
    FileTestSupport::WriteFile(ItemFile(file, fileName), bytes);
}

QByteArray QmHostFixture::Profile(const QString& name) const {
    return '[' + name.toUtf8() +
           "]\nLabel=QM\nTransport=local\nAccountsFolder=" + AccountsFolder().toUtf8() +
           "\nDefaultAccount=" + account_.toUtf8() + "\nCommand=" + QmProgram().toUtf8() +
           " -quiet\nAllowCommands=true\nMarks=raw\nItemNames=qm\n";
}

void QmHostFixture::UseProfile(const QString& name) const {
    FileTestSupport::UseProfiles("[General]\nDefault=" + name.toUtf8() + "\n\n" + Profile(name));
}

QString QmHostFixture::ItemPath(const QString& file, const QString& item) const {
    return mvConnection::Instance().MakePath(QStringLiteral("mvdb"), QStringLiteral("*"), account_,
                                             file, item);
}
