#pragma once

#include "canvas/SceneMode.h"
#include "tests/support/WindowFixture.h"

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QStringList>

class Territory;

/// The active window with a project of 2048 pixels and 15360 metres a side. The view shows its
/// middle at 100 %. The layers are "Forest", which is current, and "Marsh", both with one set
/// rectangle, and "Bare". The territories of the type "Deer" are "North" with two zones, "Marsh"
/// with one, and "Void" with none.
class WideFixture : public WindowFixture
{
public:
    static constexpr int Side = 2048;
    static constexpr double MetresPerPixel = 7.5;
    /// What is set in "Forest" and "Marsh".
    static constexpr QRect ForestArea{1000, 400, 60, 40};
    /// The middle between the zones of "North", in metres.
    static constexpr QPointF NorthMiddle{5100, 9750};

    WideFixture();

    /// Of a place in metres.
    static QPointF ToScene(double x, double z)
    {
        return {x / MetresPerPixel, Side - z / MetresPerPixel};
    }

    /// Pressed while the map has the focus.
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers) const;
    /// Of the view's viewport.
    void MouseTo(QPoint pixel) const;
    void MouseAway() const;
    /// Of Ctrl and the wheel, one notch inward.
    void TurnWheel(QPoint pixel) const;
    void SelectNorth() const;
    /// What the label below the map tells, in metres.
    QPointF LabelPlace() const;

    /// Types into the dialog of Ctrl+G and presses Enter. Empty texts are not typed.
    void GoTo(const QString& x, const QString& z, const QString& name, const QString& zoom = {});
    /// Answers the question for the name.
    void AddBookmark(const QString& name);
    /// The bookmarks that the menu lists.
    QStringList Bookmarks(const char* menu = "menuBookmarkRemove") const;
    void TriggerBookmark(const char* menu, const QString& text) const;

    /// The scene position is in the middle of the view, and rulers and label tell so.
    void VerifyShown(QPointF scene, float zoom) const;

private:
    Territory* TerritoryNamed(const QString& name) const;
};
