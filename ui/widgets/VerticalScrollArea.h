#pragma once

#include <QPointer>
#include <QScrollArea>

/// Scrolls a form up and down on low screens. Its minimum width is that of the form and the scroll
/// bar, so that nothing is cut off at the side and the map does not move.
class VerticalScrollArea : public QScrollArea
{
    Q_OBJECT

public:
    explicit VerticalScrollArea(QWidget* parent = nullptr);

    /// The last widget of the form that the size hint leaves room for, but for some pixels; what
    /// is below is scrolled to. Without one, there is room for the whole form.
    void SetHintedUpTo(QWidget* last, int butFor)
    {
        m_last = last;
        m_butFor = butFor;
    }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QWidget> m_last;
    int m_butFor = 0;
};
