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

double LoadSeconds(QuillmapWindow& window, const QString& path, Pulse* pulse)
{
    // The picture of what was loaded before is not part of this load.
    QCoreApplication::processEvents();
    std::chrono::steady_clock::time_point begin;
    QTimer::singleShot(0, &window, [&] {
        QTimer::singleShot(0, &window, [&] {
            auto* dialog = window.findChild<QFileDialog*>();
            dialog->selectFile(path);
            dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
            static_cast<QDialog*>(dialog)->accept();
            if (pulse) {
                pulse->Reset();
            }
            begin = std::chrono::steady_clock::now();
        });
    });
    ProjectSettings::Instance().modified = false;
    window.LoadProject();
    if (pulse) {
        pulse->Tick();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}
