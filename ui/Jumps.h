#pragma once

#include "canvas/ViewMoves.h"

#include <QVector>

class MainView;

/// The places that the view jumped from, and the ways back to them and forward again. Moves that
/// are no jumps, such as scrolling, are not remembered.
class Jumps
{
public:
    explicit Jumps(MainView& view);

    /// The view is about to jump: what it shows now is a place to go back to.
    void Note();
    /// Shows the place, and remembers the one before if that is another.
    void To(const ViewPlace& place);
    /// These two do nothing when there is nowhere to go.
    void Back();
    void Forward();
    /// The places belong to a project that goes.
    void Clear();

private:
    void Remember(const ViewPlace& place);
    void Go(QVector<ViewPlace>& from, QVector<ViewPlace>& to);

    MainView& m_view;
    QVector<ViewPlace> m_back;
    QVector<ViewPlace> m_forward;
};
