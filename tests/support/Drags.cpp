#include "tests/support/Drags.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <memory>

namespace {

QPoint MiddleOf(const QAbstractItemView& view, int row)
{
    return view.visualRect(view.model()->index(row, 0)).center();
}

/// A view that moves its own rows accepts drags only from itself. It learns the source from the
/// drag of the window system. This filter accepts drags where there is none.
class DragTaker : public QObject
{
protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove) {
            return false;
        }
        event->accept();
        return true;
    }
};

} // namespace

bool DropAt(QAbstractItemView& view, QPoint position)
{
    const QModelIndexList rows = view.selectionModel()->selectedRows();
    const std::unique_ptr<QMimeData> data(rows.isEmpty() ? new QMimeData
                                                         : view.model()->mimeData(rows));
    DragTaker taker;
    view.viewport()->installEventFilter(&taker);
    QDragEnterEvent enter(position, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &enter);
    QDragMoveEvent move(position, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &move);
    QDropEvent drop(position, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &drop);
    return drop.isAccepted();
}

Qt::DropAction DropLinks(QWidget& widget, const QList<QUrl>& links)
{
    QWindow* window = widget.window()->windowHandle();
    const QPoint place = widget.mapTo(widget.window(), widget.rect().center());
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QMimeData data;
    data.setUrls(links);
    QDragEnterEvent enter(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &enter);
    QDragMoveEvent move(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &move);
    if (!enter.isAccepted() || !move.isAccepted()) {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(window, &leave);
        return Qt::IgnoreAction;
    }
    QDropEvent drop(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &drop);
    return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
}

bool DragRow(QAbstractItemView& view, int sourceRow, int targetRow)
{
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, MiddleOf(view, sourceRow));
    return DropAt(view, MiddleOf(view, targetRow));
}

void DragRowByMouse(QAbstractItemView& view, int sourceRow, int targetRow)
{
    QWindow* window = view.window()->windowHandle();
    const auto inWindow = [&view](QPoint position) {
        return view.viewport()->mapTo(view.window(), position);
    };
    const QPoint source = inWindow(MiddleOf(view, sourceRow));
    const QPoint target = inWindow(MiddleOf(view, targetRow));
    // The drag begins at the first move that is far enough, and runs an event loop of its own.
    QTimer steps;
    int step = 0;
    QObject::connect(&steps, &QTimer::timeout, &steps, [&] {
        // The drag's event loop may begin in this slot. Only a timer that starts anew fires within
        // its own slot.
        steps.start(50);
        ++step;
        if (step == 1) {
            QTest::mouseMove(window, target - QPoint(0, 1));
        } else if (step == 2) {
            QTest::mouseMove(window, target);
        } else {
            steps.stop();
            QTest::mouseRelease(window, Qt::LeftButton, {}, target);
        }
    });
    QTest::mouseMove(window, source);
    QTest::mousePress(window, Qt::LeftButton, {}, source);
    steps.start(50);
    QTest::mouseMove(window, source + QPoint(0, QApplication::startDragDistance() / 2));
    QTest::mouseMove(window, source + QPoint(0, QApplication::startDragDistance() + 2));
    while (steps.isActive()) {
        QTest::qWait(20);
    }
    QCoreApplication::processEvents();
}
