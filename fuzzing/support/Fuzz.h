#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

/// Called with each input; a finding is a crash, a sanitizer's report or a failed Require.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

/// What must hold for every input.
inline void Require(bool isTrue, const char* what)
{
    if (!isTrue) {
        qFatal("%s", what);
    }
}

/// An application that logs nothing but its end, made once.
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

/// Models are deleted later; without an event loop now is later.
inline void DeleteLater()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
