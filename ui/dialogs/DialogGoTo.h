#pragma once

#include "canvas/ViewMoves.h"
#include "ui/GoTargets.h"
#include "ui/SceneScale.h"

#include <QDialog>
#include <QVector>

#include <memory>
#include <optional>

class QLineEdit;

namespace Ui {
class DialogGoTo;
}

/// Asks where on the map to go: to X and Z in metres, or to something with a name. It cannot be
/// accepted without a place, and says why.
class DialogGoTo : public QDialog
{
    Q_OBJECT

public:
    /// present: what the view shows; its zoom is kept unless the user chooses one. targets: their
    /// labels are offered while a name is typed.
    DialogGoTo(const SceneScale& scale, const ViewPlace& present, QVector<GoTarget> targets,
               QWidget* parent = nullptr);
    ~DialogGoTo() override;
    Q_DISABLE_COPY(DialogGoTo)

    /// Where to go, once the dialog was accepted.
    const ViewPlace& Place() const { return m_place; }

    /// Does nothing while the fields give no place.
    void accept() override;

private:
    /// What the fields say now.
    struct Answer
    {
        std::optional<QPointF> place;
        /// Why there is no place; empty while nothing has been typed.
        QString problem;
        /// What a bookmark brings; 0 for none.
        float zoom = 0;
    };

    void FillZooms();
    void OfferNames();
    void LetOneWayClearTheOther();
    void ShowAnswer();
    Answer Read() const;
    Answer ReadMetres() const;
    Answer ReadName(const QString& name) const;
    QVector<const GoTarget*> TargetsNamed(const QString& name) const;

    std::unique_ptr<Ui::DialogGoTo> m_ui;
    SceneScale m_scale;
    ViewPlace m_present;
    QVector<GoTarget> m_targets;
    ViewPlace m_place;
};
