#pragma once

#include "document/Document.h"
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
/// dialog as a dock opens it: modal, over a window, operated by mouse and keys.
class CustomLayerFixture
{
public:
    static constexpr int LayerSize = 64;

    CustomLayerFixture();

    Layer* Add(const QString& name, const QRect& setPart, const QString& code = {});
    /// The code with the ids of the first and second layer for A and B.
    QString Code(QString text) const;

    /// Executes the dialog and calls the function while it is open. If the dialog is still open
    /// some time later, closes it and fails the test.
    int Execute(Layer* layerToModify, const std::function<void()>& user);

    template <typename T = QWidget>
    T* Child(const char* name) const
    {
        return dialog->findChild<T*>(QLatin1String(name));
    }
    bool IsIdle() const { return Child("btnCancel")->isEnabled(); }
    void WaitIdle() const;
    /// None of these waits for the computation that it starts.
    void Click(const char* control) const;
    void Key(const char* control, Qt::Key key) const;
    void Type(const char* control, const QString& text) const;
    /// With the arrow keys, waiting for each preview.
    void Choose(const char* combo, int row) const;
    /// Clicks the row in the opened list, at this distance from its left end.
    void ChooseByMouse(const char* combo, int row, int x) const;
    /// The code of the latest preview; empty if only the first preview was requested.
    QString LastCode() const;
    /// The enabled ones of the controls that the dialog disables during a computation.
    QStringList EnabledControls() const;

    LogSpy log;
    QWidget window;
    Document document;
    LayerList& list = document.Layers();
    Layer* first = nullptr;
    Layer* second = nullptr;
    /// Null unless it is being executed.
    DialogCustomLayer* dialog = nullptr;
    QSignalSpy* previews = nullptr;
    QSignalSpy* computations = nullptr;
    /// The layer that the latest execution added.
    Layer* created = nullptr;

private:
    ProjectFixture m_project;
};
