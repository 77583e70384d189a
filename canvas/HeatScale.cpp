#include "canvas/HeatScale.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// From few to many; each is told from the next one also by who sees no colours.
constexpr std::array<QRgb, 6> Colors = {0xFFFFFFB2, 0xFFFED976, 0xFFFEB24C,
                                        0xFFFD8D3C, 0xFFF03B20, 0xFF9C0824};
constexpr int BoundCount = static_cast<int>(Colors.size()) - 1;

/// Round numbers by their place in the row ... 0.5, 1 (0), 2, 5, 10 (3) ...
double RoundNumber(int place)
{
    constexpr std::array<double, 3> digits = {1, 2, 5};
    const int decade = static_cast<int>(std::floor(place / 3.0));
    return digits[static_cast<std::size_t>(place - 3 * decade)] * std::pow(10.0, decade);
}

QString NumberText(double number)
{
    const int decimals = std::max(0, static_cast<int>(std::ceil(-std::log10(number) - 1e-9)));
    return QString::number(number, 'f', decimals);
}

QString Text(const char* text)
{
    return QCoreApplication::translate("HeatScale", text);
}

} // namespace

HeatScale::HeatScale(double highest)
{
    // Beyond lie numbers that only broken files have.
    constexpr double least = 1e-6;
    constexpr double most = 1e15;
    if (!(highest > 0)) {
        return;
    }
    const double top = std::clamp(highest, least, most);
    int place = 3 * static_cast<int>(std::floor(std::log10(top))) + 3;
    while (RoundNumber(place) > top) {
        --place;
    }
    for (int i = BoundCount - 1; i >= 0; --i) {
        m_bounds.push_back(RoundNumber(place - i));
    }
}

int HeatScale::ClassOf(double density) const
{
    if (!(density > 0)) {
        return -1;
    }
    return static_cast<int>(std::upper_bound(m_bounds.begin(), m_bounds.end(), density) -
                            m_bounds.begin());
}

QString HeatScale::Label(int number) const
{
    const auto index = static_cast<std::size_t>(number);
    if (number == 0) {
        return Text("below %1").arg(NumberText(m_bounds.front()));
    }
    if (index == m_bounds.size()) {
        return Text("%1 and more").arg(NumberText(m_bounds.back()));
    }
    return Text("%1 to %2").arg(NumberText(m_bounds[index - 1]), NumberText(m_bounds[index]));
}

QColor HeatScale::Color(int number) const
{
    return QColor(Colors[static_cast<std::size_t>(number)]);
}
