#include "documents/SshSession.h"

#include "documents/ConnectionErrors.h"
#include "documents/PipeProcess.h"
#include "documents/SshTransport.h"

namespace {

// The host's side: reads "<script bytes> <input bytes>" lines, each followed by the script
// and its input, and answers "<exit code> <output bytes> <error bytes>" and the two. The
// input goes to a file first, so a script that reads none of it can't leave it in the way.
const char kLoop[] = "export LC_ALL=C\n"
                     "w=$(mktemp -d \"${TMPDIR:-/tmp}/brix.XXXXXX\") || exit 1\n"
                     "trap 'rm -rf \"$w\"' EXIT\n"
                     "trap 'exit 1' HUP TERM\n"
                     "while IFS=' ' read -r s n; do\n"
                     "  c=$(head -c \"$s\")\n"
                     "  if [ \"$n\" -gt 0 ]; then head -c \"$n\" >\"$w/i\"; else : >\"$w/i\"; fi\n"
                     "  sh -c \"$c\" brix <\"$w/i\" >\"$w/o\" 2>\"$w/e\"\n"
                     "  r=$?\n"
                     "  set -- $(stat -c %s \"$w/o\" \"$w/e\")\n"
                     "  printf '%s %s %s\\n' \"$r\" \"$1\" \"$2\"\n"
                     "  cat \"$w/o\" \"$w/e\"\n"
                     "done\n";

// The answer's first line is a few numbers.
constexpr int kLongestHeader = 64;

} // namespace

SshSession::SshSession(QStringList sshCommand) : command_(std::move(sshCommand)) {}

SshSession::~SshSession() = default;

SshSession::Result SshSession::fail() {
    const bool timedOut = process_ && process_->TimedOut();
    if (process_)
        diagnostics_ = process_->Errors();
    // Without its input the host's loop ends, and the client with it.
    process_.reset();
    over_ = true;
    return timedOut ? Result::TimedOut : Result::Broken;
}

SshSession::Result SshSession::Call(const QByteArray& script, const QByteArray& input, int timeout,
                                    Reply& reply) {
    reply = Reply();
    if (process_ && !process_->Quiet()) {
        // It ended between calls (the connection was closed): nothing was sent, so a new one
        // may do it.
        process_.reset();
        proven_ = false;
    }
    if (over_)
        return Result::Broken;
    if (!process_) {
        try {
            process_ = std::make_unique<PipeProcess>(
                QStringList(command_)
                    << QStringLiteral("sh -c ") + SshTransport::Quote(QString::fromLatin1(kLoop)),
                QString());
        } catch (const BrixError& e) {
            diagnostics_ = e.Description.toLocal8Bit();
            over_ = true;
            return Result::Broken;
        }
    }
    // The host reads the whole request before it runs anything: no need to read meanwhile.
    if (!process_->Write(QByteArray::number(script.size()) + ' ' +
                             QByteArray::number(input.size()) + '\n' + script + input,
                         timeout))
        return fail();
    QByteArray header;
    char c = 0;
    while (header.size() < kLongestHeader && process_->Read(&c, 1, timeout) && c != '\n')
        header += c;
    const QList<QByteArray> words = header.split(' ');
    bool ok = false;
    reply.ExitCode = words.value(0).toInt(&ok);
    const qsizetype outSize = words.value(1).toLongLong();
    const qsizetype errSize = words.value(2).toLongLong();
    if (!ok || c != '\n' || words.size() != 3 || outSize < 0 || errSize < 0)
        return fail();
    QByteArray body(outSize + errSize, '\0');
    if (!process_->Read(body.data(), body.size(), timeout))
        return fail();
    reply.Out = body.left(outSize);
    reply.Err = body.mid(outSize);
    proven_ = true;
    return Result::Done;
}
