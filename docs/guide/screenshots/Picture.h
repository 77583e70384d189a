#pragma once

#include <QPixmap>
#include <QPoint>
#include <QVector>

class QDir;
class QRect;
class QString;
class QWidget;

/// A picture of a widget, with numbers on its parts that the guide explains.
class Picture
{
public:
    explicit Picture(QWidget& widget);

    /// Draws the next number, beginning with 1, at the widget's upper right corner, with an offset
    /// in pixels.
    void Number(const QWidget& part, QPoint shift = {});
    /// Crops the picture to this part, in pixels of the widget.
    void Crop(const QRect& part);
    /// Saves the picture as NAME.png. Ends the program if it cannot be written.
    void Save(const QDir& folder, const QString& name) const;

private:
    QWidget& m_widget;
    QPixmap m_pixels;
    int m_count = 0;
};
