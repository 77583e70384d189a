#include "EditorUser.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <cstdlib>

namespace {

constexpr int WheelNotch = 120;
constexpr int DialogPollMilliseconds = 20;
constexpr int TicksBeforeAnswer = 5;
constexpr int SettleMilliseconds = 150;

/// Answers the next dialog after it has been open for a moment. The caller then opens the dialog,
/// which runs its own event loop. A dialog that is still being shown would not notice that it was
/// closed.
void AnswerNext(const std::function<void(QDialog&)>& answer)
{
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [timer, answer, ticks = 0]() mutable {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog && ++ticks > TicksBeforeAnswer) {
            timer->stop();
            timer->deleteLater();
            answer(*dialog);
        }
    });
    timer->start(DialogPollMilliseconds);
}

} // namespace

EditorUser::EditorUser()
    : m_window(QString())
{
    m_window.show();
    Require(QTest::qWaitForWindowActive(&m_window), "an active window");
}

void EditorUser::Require(bool condition, const char* what)
{
    if (!condition) {
        qCritical("There is no such thing: %s", what);
        std::exit(EXIT_FAILURE);
    }
}

void EditorUser::Settle()
{
    QTest::qWait(SettleMilliseconds);
}

void EditorUser::Choose(const char* action)
{
    auto* chosen = m_window.findChild<QAction*>(QLatin1String(action));
    Require(chosen && chosen->isEnabled(), action);
    chosen->trigger();
    Settle();
}

void EditorUser::Choose(const char* action, const std::function<void(QDialog&)>& answer)
{
    AnswerNext(answer);
    Choose(action);
}

void EditorUser::Click(const char* button)
{
    auto& clicked = Widget<QAbstractButton>(button);
    Require(clicked.isEnabled() && clicked.isVisible(), button);
    clicked.click();
    Settle();
}

void EditorUser::Click(const char* button, const std::function<void(QDialog&)>& answer)
{
    AnswerNext(answer);
    Click(button);
}

void EditorUser::SelectRow(const char* tree, const QString& text)
{
    auto& view = Widget<QAbstractItemView>(tree);
    const QModelIndexList found = view.model()->match(
        view.model()->index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchExactly | Qt::MatchRecursive);
    Require(!found.isEmpty(), qPrintable(text));
    ClickRow(view, found.first());
}

void EditorUser::SelectLastRow(const char* tree)
{
    auto& view = Widget<QAbstractItemView>(tree);
    const int rows = view.model()->rowCount();
    Require(rows > 0, tree);
    ClickRow(view, view.model()->index(rows - 1, 0));
}

void EditorUser::ClickRow(QAbstractItemView& view, const QModelIndex& index)
{
    view.scrollTo(index, QAbstractItemView::PositionAtTop);
    const QRect row = view.visualRect(index);
    // To the right of the box and the icon.
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
                      {row.right() - row.width() / 4, row.center().y()});
    Settle();
}

void EditorUser::RenameCurrent(const char* tree, const QString& name)
{
    auto& view = Widget<QAbstractItemView>(tree);
    view.edit(view.currentIndex());
    auto* editor = view.viewport()->findChild<QLineEdit*>();
    Require(editor, "an editor of names");
    editor->selectAll();
    QTest::keyClicks(editor, name);
    QTest::keyClick(editor, Qt::Key_Return);
    Settle();
}

void EditorUser::AnswerFile(QDialog& dialog, const QString& path)
{
    auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    Require(name, "a file dialog");
    name->setText(path);
    dialog.accept();
}

QPoint EditorUser::InMap(QPointF place) const
{
    return Map().mapFromScene(place);
}

void EditorUser::ZoomTo(QPointF place, int steps)
{
    Map().centerOn(place);
    for (int i = 0; i < qAbs(steps); ++i) {
        const QPointF position = InMap(place);
        QWheelEvent event(position, Map().viewport()->mapToGlobal(position.toPoint()), {},
                          {0, steps > 0 ? WheelNotch : -WheelNotch}, Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(Map().viewport(), &event);
    }
    Settle();
}

void EditorUser::SendMouse(QEvent::Type type, QPointF place, Qt::MouseButton button,
                           Qt::MouseButtons buttons)
{
    const QPoint position = InMap(place);
    QMouseEvent event(type, position, Map().viewport()->mapToGlobal(position), button, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(Map().viewport(), &event);
}

void EditorUser::Paint(const QVector<QPointF>& places)
{
    PaintAndHold(places);
    Release(places.last());
}

void EditorUser::PaintAndHold(const QVector<QPointF>& places)
{
    PointAt(places.first());
    SendMouse(QEvent::MouseButtonPress, places.first(), Qt::LeftButton, Qt::LeftButton);
    for (const QPointF& place : places) {
        SendMouse(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton);
    }
    Settle();
}

void EditorUser::Release(QPointF place)
{
    SendMouse(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton);
    Settle();
}

void EditorUser::ClickMap(QPointF place)
{
    PointAt(place);
    SendMouse(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
    SendMouse(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton);
    Settle();
}

void EditorUser::PointAt(QPointF place)
{
    SendMouse(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton);
    Settle();
}

void EditorUser::Press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    Map().setFocus();
    QTest::keyClick(&Map(), key, modifiers);
    Settle();
}
