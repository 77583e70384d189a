#pragma once

#include <QPixmap>
#include <QPoint>
#include <QVector>

class QDir;
class QRect;
class QString;
class QWidget;

/// A picture of a widget, with numbers on its parts that the text explains.
class Picture
{
public:
    explicit Picture(QWidget& widget);

    /// Puts the next number, from 1 on, on the widget's right upper corner; moved by so many
    /// pixels.
    void Number(const QWidget& part, QPoint shift = {});
    /// Keeps only the part, in pixels of the widget.
    void Crop(const QRect& part);
    /// As NAME.png. Ends the program when it cannot be written.
    void Save(const QDir& folder, const QString& name) const;

private:
    QWidget& m_widget;
    QPixmap m_pixels;
    int m_count = 0;
};
