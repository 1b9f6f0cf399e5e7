// Reading and writing a 53 MB item through the local transport of a host connection.
#include "BenchSupport.h"

#include "documents/HostResource.h"
#include "documents/LocalTransport.h"
#include "documents/mvHost.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir tmp;
    QDir().mkpath(tmp.path() + QStringLiteral("/ACC/BP"));
    auto profile = std::make_shared<HostProfile>();
    profile->Name = QStringLiteral("bench");
    profile->AccountsFolder = tmp.path();
    auto host = std::make_shared<mvHost>(profile, std::make_shared<LocalTransport>(),
                                         QStringLiteral("ACC"));
    HostResource item(host, QStringLiteral("*"), QStringLiteral("ACC"), QStringLiteral("BP"),
                      QStringLiteral("BIG"));

    // The program as the document hands it over: CR LF lines, marks as private-use
    // characters.
    QString text = Bench::Program();
    text.replace(QChar(29), QChar(0xF8FD)).replace(QChar(28), QChar(0xF8FC));
    item.WriteText(text);

    std::vector<double> reads, writes;
    for (int run = 0; run < 5; ++run) {
        Bench::Stopwatch read;
        const QString back = item.ReadText();
        reads.push_back(read.Ms());
        if (back.size() != text.size()) {
            std::fprintf(stderr, "read gave %lld characters, not %lld\n",
                         static_cast<long long>(back.size()), static_cast<long long>(text.size()));
            return 1;
        }
        Bench::Stopwatch write;
        item.WriteText(back);
        writes.push_back(write.Ms());
    }
    Bench::Report("read_item_53mb", Bench::Median(reads), "ms");
    Bench::Report("write_item_53mb", Bench::Median(writes), "ms");
    return 0;
}
