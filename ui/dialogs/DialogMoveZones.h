#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class DialogMoveZones;
}

/// Asks by how many metres zones are to be moved. Both numbers may be negative.
class DialogMoveZones : public QDialog
{
    Q_OBJECT

public:
    explicit DialogMoveZones(int zones, QWidget* parent = nullptr);
    ~DialogMoveZones() override;
    Q_DISABLE_COPY(DialogMoveZones)

    /// To the right, and up.
    double MetresX() const;
    double MetresZ() const;

private:
    std::unique_ptr<Ui::DialogMoveZones> m_ui;
};
