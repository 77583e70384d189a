#include "platform/PageMemory.h"
#include "platform/Signals.h"
#include "tool/Commands.h"
#include "tool/Interruption.h"

#include <QApplication>
#include <QFile>
#include <QTextCodec>

#include <memory>

namespace {

constexpr int KeptMemory = 32 << 20;

/// Only pictures need more than the console, and starting that takes longer than most runs.
std::unique_ptr<QCoreApplication> MakeApplication(int& count, char** names,
                                                  const QStringList& arguments)
{
    if (arguments.value(1) == QLatin1String("render")) {
        return std::make_unique<QApplication>(count, names);
    }
    return std::make_unique<QCoreApplication>(count, names);
}

} // namespace

int main(int argc, char* argv[])
{
    platform::LetTooLargeFilesFail();
    platform::LetClosedPipesFail();
    // Each band of a map is composed in the memory of the band before it.
    platform::KeepFreedMemory(KeptMemory);
    // Paths and console messages are UTF-8, also in the C locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    // Nothing is shown, so no display is needed, whatever one the environment names.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Interruption::Watch();
    Console::TakeMessages();
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QFile::decodeName(argv[i]));
    }
    // The toolkit's own options are none of the tool's.
    char name[] = "quillmap-tool";
    char* names[] = {name, nullptr};
    int nameCount = 1;
    const auto application = MakeApplication(nameCount, names, arguments);

    const ToolExit result = RunTool(arguments);
    // The lists hand their models to deferred deletion, which processing events does not run.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return Interruption::HasCome() ? Interruption::ExitCode() : static_cast<int>(result);
}
