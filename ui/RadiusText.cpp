#include "ui/RadiusText.h"

#include "app/ProjectSettings.h"
#include "layers/CustomLayer.h"

#include <QCoreApplication>

#include <cmath>

namespace {

QString Text(const char* text)
{
    return QCoreApplication::translate("RadiusText", text);
}

QString Metres(float metres)
{
    return Text("%1 m").arg(static_cast<double>(metres), 0, 'g', 6);
}

} // namespace

QString RadiusText(int metres)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    QString asked = Text("%1 m").arg(metres);
    const float pixels = RadiusInPixels(metres);
    const float x = pixels * settings.MetresPerPixelX();
    const float z = pixels * settings.MetresPerPixelZ();
    if (!std::isfinite(x) || !std::isfinite(z)) {
        return asked;
    }
    QString measured = Metres(x);
    if (Metres(z) != measured) {
        measured = Text("%1 by %2").arg(measured, Metres(z));
    }
    return Text("%1 = %2 px = %3").arg(asked).arg(std::lround(pixels)).arg(measured);
}
