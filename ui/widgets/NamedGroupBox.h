#pragma once

#include <QGroupBox>

/// A group box whose title may be longer than the box is wide. The title then ends with an ellipsis
/// instead of widening the box, and a tool tip over it shows the whole title.
class NamedGroupBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit NamedGroupBox(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;
    /// The title as it is shown, with its mnemonic marks.
    QString ElidedTitle() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
