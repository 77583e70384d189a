#pragma once

#include <QScrollArea>

/// Scrolls a form up and down on low screens. Its minimum width is that of the form and the scroll
/// bar, so that nothing is cut off at the side and the map does not move.
class VerticalScrollArea : public QScrollArea
{
    Q_OBJECT

public:
    explicit VerticalScrollArea(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
