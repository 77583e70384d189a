#include "app/BatchExport.h"
#include "app/CommandLine.h"
#include "app/Gui.h"
#include "app/Log.h"
#include "platform/Signals.h"
#include "ui/QuillmapWindow.h"
#include "ui/widgets/IndicatorStyle.h"

#include <QApplication>
#include <QTextCodec>

namespace {

int RunEditor(const CommandLine& commandLine)
{
    ShowIndicatorsInDarkPalettes();
    QuillmapWindow window(commandLine.configPath);
    window.show();
    if (!commandLine.advice.isEmpty()) {
        LogInfo(commandLine.advice);
    }
    return QApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    platform::LetTooLargeFilesFail();
    // Paths and console messages are UTF-8, also in the C locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    ChoosePlatform(argc, argv);
    // Sizes in the code are pixels of a screen of 96 dpi; Qt scales them on denser ones. Both hold
    // only when set before the application is made.
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    KeepEveryMouseMove();

    const CommandLine commandLine = ParseCommandLine(QCoreApplication::arguments());
    if (!commandLine.error.isEmpty()) {
        LogError(commandLine.error);
        return ExitBadArguments;
    }
    const int exitCode = commandLine.noGui
                             ? RunBatchExport(commandLine.configPath, commandLine.outputPath)
                             : RunEditor(commandLine);
    // The lists delete their models later, and processing events does not run such deletions.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return exitCode;
}
