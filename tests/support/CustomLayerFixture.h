#pragma once

#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ProjectFixture.h"
#include "ui/DialogCustomLayer.h"

#include <QComboBox>
#include <QSignalSpy>
#include <QWidget>

#include <functional>
#include <memory>

/// A project with two layers, "first" (the left half) and "second" (the top quarter), and the
/// dialog over them as a dock opens it: modal, over a window, used by mouse and keys.
class CustomLayerFixture
{
public:
    static constexpr int LayerSize = 64;

    CustomLayerFixture();

    Layer* Add(const QString& name, const QRect& setPart, const QString& code = {});
    /// The code with the ids of the first and second layer for A and B.
    QString Code(QString text) const;

    /// Makes the dialog and executes it; the user acts while it is open. Fails the test, and closes
    /// the dialog, when it is still open a while after that.
    int Execute(Layer* layerToModify, const std::function<void()>& user);

    template <typename T = QWidget>
    T* Child(const char* name) const
    {
        return dialog->findChild<T*>(QLatin1String(name));
    }
    bool IsIdle() const { return Child("btnCancel")->isEnabled(); }
    void WaitIdle() const;
    /// Each of these leaves what it starts running.
    void Click(const char* control) const;
    void Key(const char* control, Qt::Key key) const;
    void Type(const char* control, const QString& text) const;
    /// With the arrow keys, waiting for each preview.
    void Choose(const char* combo, int row) const;
    /// By clicking on it in the opened list, so far from the row's left.
    void ChooseByMouse(const char* combo, int row, int x) const;
    /// The code of the latest preview; empty when only the one at the start was asked for.
    QString LastCode() const;
    /// What is enabled of what the dialog disables while it computes.
    QStringList EnabledControls() const;

    LogSpy log;
    QWidget window;
    LayerList list;
    Layer* first = nullptr;
    Layer* second = nullptr;
    /// Null unless it is being executed.
    DialogCustomLayer* dialog = nullptr;
    QSignalSpy* previews = nullptr;
    QSignalSpy* computations = nullptr;
    /// What the latest execution added.
    Layer* created = nullptr;

private:
    ProjectFixture m_project;
};
