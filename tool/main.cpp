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

/// Only pictures need a QGuiApplication, and starting one takes longer than most runs.
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
    // The tool shows nothing and needs no display, even if the environment names one.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Interruption::Watch();
    Console::TakeMessages();
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QFile::decodeName(argv[i]));
    }
    // Qt gets no arguments, so that the tool does not accept Qt's own options.
    char name[] = "quillmap-tool";
    char* names[] = {name, nullptr};
    int nameCount = 1;
    const auto application = MakeApplication(nameCount, names, arguments);

    const ToolExit result = RunTool(arguments);
    // The lists delete their models later, and processing events does not run such deletions.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return Interruption::HasCome() ? Interruption::ExitCode() : static_cast<int>(result);
}
