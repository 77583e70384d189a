// Definition files of area flag types.

#include "fuzzing/support/Fuzz.h"
#include "layers/AreaFlagTypes.h"

#include <QTemporaryFile>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QCoreApplication>();
    QTemporaryFile file;
    Require(file.open(), "no temporary file");
    file.write(reinterpret_cast<const char*>(bytes), static_cast<qint64>(count));
    file.flush();
    AreaFlagTypes types;
    types.ReadFile(file.fileName());
    return 0;
}
