#pragma once

#include <QComboBox>

/// Chooses one of the layers of a list's model. It shows their colours like the layer tree, even
/// while it is closed. It has no check boxes, because these would show and hide layers on the map.
class ComboBoxLayers : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBoxLayers(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};
