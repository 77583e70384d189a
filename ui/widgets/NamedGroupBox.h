#pragma once

#include <QGroupBox>

/// A group box whose title holds a name of any length: what does not fit is elided instead of
/// widening the box, and a tool tip over the title then shows it.
class NamedGroupBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit NamedGroupBox(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString ElidedTitle() const;
};
