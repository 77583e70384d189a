#pragma once

#include "canvas/MainView.h"
#include "ui/QuillmapWindow.h"

#include <QDialog>
#include <QEvent>
#include <QVector>

#include <functional>

class QAbstractItemView;
class QModelIndex;

/// Operates the editor's window with the mouse and the keyboard, like a designer. Ends the program
/// with a message if a widget or a row is missing.
class EditorUser
{
public:
    EditorUser();

    QuillmapWindow& Window() { return m_window; }
    MainView& Map() const { return Widget<MainView>("paintView"); }
    template <typename T>
    T& Widget(const char* name) const
    {
        T* widget = m_window.findChild<T*>(QLatin1String(name));
        Require(widget, name);
        return *widget;
    }

    /// Triggers the action, and answers the dialog that it opens.
    void Choose(const char* action);
    void Choose(const char* action, const std::function<void(QDialog&)>& answer);
    void Click(const char* button);
    void Click(const char* button, const std::function<void(QDialog&)>& answer);
    /// Clicks the row of that text, at any depth, which makes it current.
    void SelectRow(const char* tree, const QString& text);
    void SelectLastRow(const char* tree);
    void RenameCurrent(const char* tree, const QString& name);
    /// Types the path into a file dialog and accepts it.
    static void AnswerFile(QDialog& dialog, const QString& path);

    /// Turns the wheel over the map with Ctrl held, so that the place is in the middle afterwards.
    /// The place is in scene units.
    void ZoomTo(QPointF place, int steps);
    /// Paints through these places of the map, in scene units.
    void Paint(const QVector<QPointF>& places);
    /// The same, but does not release the button.
    void PaintAndHold(const QVector<QPointF>& places);
    void Release(QPointF place);
    void ClickMap(QPointF place);
    void PointAt(QPointF place);
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// Lets the window process its events.
    static void Settle();

    /// Ends the program if the condition is false.
    static void Require(bool condition, const char* what);

private:
    static void ClickRow(QAbstractItemView& view, const QModelIndex& index);
    void SendMouse(QEvent::Type type, QPointF place, Qt::MouseButton button,
                   Qt::MouseButtons buttons);
    QPoint InMap(QPointF place) const;

    QuillmapWindow m_window;
};
