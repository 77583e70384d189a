#include "app/BatchExport.h"
#include "app/CommandLine.h"
#include "app/Log.h"

#include <QApplication>
#include <QTextCodec>

#include <csignal>

int main(int argc, char* argv[])
{
    // A file may be limited in size. To write beyond shall fail and be reported like a full disk,
    // instead of ending the program without a word.
    std::signal(SIGXFSZ, SIG_IGN);
    // Paths and console messages are UTF-8, also in the C locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    ChoosePlatform(argc, argv);
    QApplication application(argc, argv);

    const CommandLine commandLine = ParseCommandLine(QCoreApplication::arguments());
    if (!commandLine.error.isEmpty()) {
        LogError(commandLine.error);
        return ExitBadArguments;
    }
    int exitCode = ExitDone;
    if (commandLine.noGui) {
        exitCode = RunBatchExport(commandLine.configPath, commandLine.outputPath);
    } else {
        LogError(QStringLiteral("This build has no editor window yet; use --no-gui."));
        exitCode = ExitBadArguments;
    }
    // The lists hand their models to deferred deletion, which processing events does not run.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return exitCode;
}
