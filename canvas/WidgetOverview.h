#pragma once

#include "canvas/OverviewPicture.h"

#include <QRectF>
#include <QWidget>

class Document;
class MainView;

/// Shows the whole map small, as large as it fits, with a frame around the part that the view
/// shows. Pressing and dragging the left button centres the view at the mouse. While the widget
/// is not seen, nothing is computed.
class WidgetOverview : public QWidget
{
    Q_OBJECT

public:
    /// Both outlive the widget.
    WidgetOverview(Document& document, MainView& view, QWidget* parent);

    /// Whether the widget can be seen. A dock behind another tab cannot, and Qt calls it visible.
    void SetSeen(bool isSeen);
    const OverviewPicture& Overview() const { return m_overview; }
    /// Where the map is, in the widget's coordinates; empty when there is none.
    QRectF MapRect() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// A press is about to move the view.
    void AboutToJump();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    /// From the map's layer pixels to the widget's coordinates.
    QTransform FromMap() const;
    QRect FrameRect() const;
    void ShowChanged(const QRect& rect);
    void FollowView();
    void MoveView(QPoint position);

    MainView& m_view;
    OverviewPicture m_overview;
    /// As it was painted last.
    QRect m_frame;
};
