#pragma once

#include <QLabel>

/// A label for one line of plain text. It asks for the width of the whole text; with less, it shows
/// an ellipsis at the end. A tool tip then holds the whole text, unless the label has its own.
/// text() is never shortened.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    /// The height of a line and the width of an ellipsis.
    QSize minimumSizeHint() const override;
    /// What is shown.
    QString ElidedText() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
