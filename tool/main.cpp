#include "tool/Commands.h"
#include "tool/Interruption.h"

#include <QApplication>
#include <QFile>
#include <QTextCodec>

#include <malloc.h>

#include <csignal>
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
    // A file may be limited in size, and a pipe may lose its reader. To write then shall fail and
    // be reported like a full disk, instead of ending the program without a word.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    // What one band of a map was composed in serves the next one. To give the memory back between
    // them, and be given it cleared again, takes longer than the work.
    mallopt(M_MMAP_THRESHOLD, KeptMemory);
    mallopt(M_TRIM_THRESHOLD, KeptMemory);
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
