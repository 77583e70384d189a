#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

/// Called with each input. Findings are crashes, reports of a sanitizer and failed calls of
/// Require.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

/// Ends the program unless the condition holds.
inline void Require(bool isTrue, const char* what)
{
    if (!isTrue) {
        qFatal("%s", what);
    }
}

/// Makes the application once. It logs only fatal messages.
template <typename Application>
void MakeApplicationOnce()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    static const bool isPrepared = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            if (type == QtFatalMsg) {
                fputs(qPrintable(text), stderr);
                abort();
            }
        });
        return true;
    }();
    Q_UNUSED(isPrepared)
    static const Application application(argc, argv);
}

/// Runs deferred deletions, because there is no event loop that would.
inline void DeleteLater()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
