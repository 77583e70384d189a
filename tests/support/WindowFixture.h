#pragma once

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Modals.h"
#include "tests/support/ProjectFixture.h"
#include "ui/QuillmapWindow.h"

#include <QAction>
#include <QTemporaryDir>

#include <memory>

/// The editor's window, shown, with a temporary folder and separate settings.
class WindowFixture
{
public:
    /// configPath: a project to start with.
    explicit WindowFixture(const QString& configPath = {});
    ~WindowFixture();

    /// Makes another window that reads the settings of the first one.
    void Restart(const QString& configPath = {});

    template <typename T>
    T* Child(const char* name) const
    {
        return window->findChild<T*>(QLatin1String(name));
    }
    QAction* Action(const char* name) const { return Child<QAction>(name); }
    void Trigger(const char* action) const { Action(action)->trigger(); }
    /// Chooses the file in the dialog that the action opens.
    void TriggerWithFile(const char* action, const QString& path);
    /// The same for an existing file, which is replaced.
    void SaveOver(const char* action, const QString& path);
    /// Writes a small project with two layers, the second one selected, and a territory with a
    /// zone; 64 pixels and 640 metres a side. Returns its path.
    QString WriteProject(const QString& name = QStringLiteral("small"));
    /// Loads a project with the file dialog.
    void Load(const QString& path) { TriggerWithFile("actionLoad", path); }

    QString Path(const QString& fileName) const { return m_project.Path(fileName); }
    MainView& View() const { return *Child<MainView>("paintView"); }
    MainScene& Scene() const { return *View().Scene(); }
    bool& Modified() const { return ProjectSettings::Instance().modified; }

    ModalAnswers answers;
    LogSpy log;
    std::unique_ptr<QuillmapWindow> window;

private:
    ProjectFixture m_project;
};
