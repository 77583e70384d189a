#pragma once

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Modals.h"
#include "tests/support/ProjectFixture.h"
#include "ui/QuillmapWindow.h"

#include <QAction>
#include <QByteArray>
#include <QMap>
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

    /// The bytes of files, by their path.
    using SavedFiles = QMap<QString, QByteArray>;
    /// What a save elsewhere would write now, without what is no edit: brush, selection, and that
    /// the current territory is shown. The project stays where it is, saved or not.
    SavedFiles SavedBytes() const;

    QString Path(const QString& fileName) const { return m_project.Path(fileName); }
    MainView& View() const { return *Child<MainView>("paintView"); }
    MainScene& Scene() const { return *View().Scene(); }
    static bool IsModified() { return ProjectSettings::Instance().IsModified(); }
    static void SetModified(bool isModified)
    {
        ProjectSettings::Instance().SetModified(isModified);
    }

    ModalAnswers answers;
    LogSpy log;
    std::unique_ptr<QuillmapWindow> window;

private:
    ProjectFixture m_project;
    /// Of the application.
    QTemporaryDir m_data;
};
