// Replays the inputs in a folder that a fuzzer has kept.

#include "fuzzing/support/Fuzz.h"

#include <QDirIterator>
#include <QFile>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: fuzz_NAME FOLDER\n", stderr);
        return 2;
    }
    int count = 0;
    QDirIterator files(QString::fromLocal8Bit(argv[1]), QDir::Files);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly)) {
            return 2;
        }
        const QByteArray bytes = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                               static_cast<std::size_t>(bytes.size()));
        ++count;
    }
    std::printf("%d inputs replayed\n", count);
    return count > 0 ? 0 : 1;
}
