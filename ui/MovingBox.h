#pragma once

#include "canvas/tools/MoveOptions.h"

#include <QGroupBox>

class QComboBox;
class QSpinBox;

/// The box "Moving zones": how far an arrow key moves the selected zones, and what zones that are
/// dragged snap to.
class MovingBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit MovingBox(QWidget* parent = nullptr);

    MoveOptions Options() const;
    /// Shows what was chosen in the last session, and keeps from now on in the user's settings what
    /// is chosen.
    void Remember();

signals:
    void OptionsChanged(const MoveOptions& options);

private:
    void Change();

    QComboBox* m_nudge;
    QComboBox* m_snap;
    QSpinBox* m_grid;
    bool m_isRemembered = false;
};
