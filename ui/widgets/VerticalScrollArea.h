#pragma once

#include <QScrollArea>

/// Scrolls a form up and down on low screens. It is just wide enough for the form and its scroll
/// bar, so that nothing is cut off at the side and the map keeps its place.
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
