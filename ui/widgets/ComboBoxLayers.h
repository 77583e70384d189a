#pragma once

#include <QComboBox>

/// Chooses one of the layers of a list's model. Shows their colours as the layer tree does, also
/// while it is closed, but no check boxes: they would show and hide layers on the map.
class ComboBoxLayers : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBoxLayers(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};
