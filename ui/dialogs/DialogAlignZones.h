#pragma once

#include "territories/ZoneArrangement.h"

#include <QDialog>

#include <memory>

namespace Ui {
class DialogAlignZones;
}

/// Asks how zones are to be arranged.
class DialogAlignZones : public QDialog
{
    Q_OBJECT

public:
    /// centres: X and Z of the zones in world metres, from which the circle is proposed.
    explicit DialogAlignZones(const std::vector<QPointF>& centres, QWidget* parent = nullptr);
    ~DialogAlignZones() override;
    Q_DISABLE_COPY(DialogAlignZones)

    ZoneArrangement Arrangement() const;
    /// Metres.
    int Radius() const;

private:
    std::unique_ptr<Ui::DialogAlignZones> m_ui;
};
