#include "benchmarks/support/WindowUser.h"

#include "app/ProjectSettings.h"
#include "ui/QuillmapWindow.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QLineEdit>

#include <chrono>

Pulse::Pulse()
{
    m_sinceTick.start();
    connect(&m_timer, &QTimer::timeout, this, [this] { Tick(); });
    m_timer.start(1);
}

void Pulse::Reset()
{
    m_longest = 0;
    m_sinceTick.restart();
}

/// Waits until nothing is left to paint.
static void Settle()
{
    constexpr int milliseconds = 200;
    QCoreApplication::processEvents(QEventLoop::AllEvents, milliseconds);
}

double LoadSeconds(QuillmapWindow& window, const QString& path, Pulse* pulse)
{
    // Painting the project that was loaded before is not part of this load.
    Settle();
    QTimer::singleShot(0, &window, [&] {
        QTimer::singleShot(0, &window, [&] {
            auto* dialog = window.findChild<QFileDialog*>();
            dialog->selectFile(path);
            dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
            static_cast<QDialog*>(dialog)->accept();
        });
    });
    ProjectSettings::Instance().SetModified(false);
    std::chrono::steady_clock::time_point begin;
    window.setWindowTitle(QString());
    // The title changes as soon as the file dialog is closed.
    const auto beginning = QObject::connect(&window, &QWidget::windowTitleChanged, [&] {
        begin = std::chrono::steady_clock::now();
        if (pulse) {
            pulse->Reset();
        }
    });
    window.LoadProject();
    const auto end = std::chrono::steady_clock::now();
    QObject::disconnect(beginning);
    if (pulse) {
        pulse->Tick();
    }
    Settle();
    return std::chrono::duration<double>(end - begin).count();
}
