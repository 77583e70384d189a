#include "canvas/tools/MetresText.h"

#include "app/ProjectSettings.h"

QString ShortMetres(double metres)
{
    QString text = QString::number(metres, 'f', 1);
    if (text.endsWith(QLatin1String(".0"))) {
        text.chop(2);
    }
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

QPointF WayInMetres(QPointF way)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return {way.x() * static_cast<double>(settings.MetresPerPixelX()),
            way.y() * static_cast<double>(settings.MetresPerPixelZ())};
}
