#include "layers/Formula.h"

#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"

#include <algorithm>
#include <array>

namespace {

/// Indexed by CustomOperation, as the dialog calls them.
const std::array<const char*, OperationUnknown> OperationWords = {
    "Complement", "Union",    "Intersection", "Difference",
    "Erosion",    "Dilation", "Opening",      "Closing"};

/// Nanoseconds a pixel.
constexpr double SetOperationCost = 0.2;
constexpr double BinarySweepCost = 1.2;
constexpr double GreyChordCost = 0.15;

/// A dilation of an erosion, or the reverse.
bool IsTwofold(CustomOperation operation)
{
    return operation == OperationOpening || operation == OperationClosing;
}

/// How far a disc of this radius reaches, or somewhat further. Discs below 1 change nothing, and
/// none reaches further than the picture is long.
int DiscReach(float radius, QSize picture)
{
    const int longest = std::max(picture.width(), picture.height());
    if (!(radius >= 1)) {
        return 0;
    }
    return radius >= static_cast<float>(longest) ? longest
                                                 : std::min(longest, static_cast<int>(radius) + 1);
}

bool IsBinaryWithin(const QImage& mask, const QRect& part)
{
    for (int y = part.top(); y <= part.bottom(); ++y) {
        if (!raster::IsBinary(mask.constScanLine(y) + part.left(), part.width())) {
            return false;
        }
    }
    return true;
}

QImage Part(const QImage& mask, const QRect& part)
{
    return part == mask.rect() ? mask : mask.copy(part);
}

} // namespace

QString Formula::Code() const
{
    const QString start(QLatin1Char(OperationChar(operation)));
    if (IsBinaryOperation(operation)) {
        return start + QStringLiteral("(%1)(%2)").arg(operands.value(0)).arg(operands.value(1));
    }
    if (IsMorphologicalOperation(operation)) {
        return start + QStringLiteral("(%1:%2)").arg(operands.value(0)).arg(metres);
    }
    return start + QStringLiteral("(%1)").arg(operands.value(0));
}

QString Formula::Words(const QStringList& operandNames) const
{
    const auto* const word = OperationWords.at(static_cast<std::size_t>(operation));
    const QString words = QStringLiteral("%1 of %2")
                              .arg(QLatin1String(word), operandNames.join(QStringLiteral(" and ")));
    return IsMorphologicalOperation(operation) ? QStringLiteral("%1, %2 m").arg(words).arg(metres)
                                               : words;
}

std::optional<Formula> ParseFormula(const QString& code)
{
    Formula formula;
    if (code.isEmpty()) {
        return {};
    }
    formula.operation = static_cast<CustomOperation>(OperationFromChar(code.at(0).toLatin1()));
    const QStringList texts = SplitOperands(code);
    const bool hasRadius = IsMorphologicalOperation(formula.operation);
    for (const QString& text : texts) {
        bool isNumber = false;
        const QString id = hasRadius ? text.section(QLatin1Char(':'), 0, 0) : text;
        formula.operands.append(id.toInt(&isNumber));
        if (!isNumber) {
            return {};
        }
    }
    formula.metres = hasRadius ? RadiusFromCode(code) : 0;
    const int operandCount = IsBinaryOperation(formula.operation) ? 2 : 1;
    const bool isWhole =
        formula.operation != OperationUnknown && formula.operands.size() == operandCount;
    return isWhole ? std::optional<Formula>(formula) : std::nullopt;
}

std::optional<Computation> Computation::Of(const LayerList& list, const Formula& formula)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    Computation computation;
    computation.m_operation = formula.operation;
    for (const int id : formula.operands) {
        const Layer* layer = list.LayerById(id);
        if (!layer || layer->Image().isNull() || layer->Image().size() != settings.LayerSize()) {
            return {};
        }
        computation.m_operands.append(layer->Image());
    }
    if (IsMorphologicalOperation(formula.operation)) {
        computation.m_radius = RadiusInPixels(formula.metres);
        computation.m_reach = DiscReach(computation.m_radius, settings.LayerSize()) *
                              (IsTwofold(formula.operation) ? 2 : 1);
    }
    return computation;
}

/// The pixels of the operands that decide about those of the rectangle.
QRect Computation::OperandPart(const QRect& rect) const
{
    return rect.adjusted(-m_reach, -m_reach, m_reach, m_reach) & m_operands.first().rect();
}

QImage Computation::Within(const QRect& rect) const
{
    const QRect part = OperandPart(rect);
    const QImage a = Part(m_operands.first(), part);
    const QImage b = m_operands.size() > 1 ? Part(m_operands.last(), part) : QImage();
    const QImage result = Combine(m_operation, m_radius, a, b);
    return part == rect || result.isNull() ? result : result.copy(rect.translated(-part.topLeft()));
}

qint64 Computation::Cost(const QRect& rect, qint64 limit) const
{
    const QRect part = OperandPart(rect);
    const double area = double(part.width()) * part.height();
    if (m_reach == 0) {
        return static_cast<qint64>(area * SetOperationCost);
    }
    const double times = IsTwofold(m_operation) ? 2 : 1;
    const double binaryCost = area * times * BinarySweepCost;
    if (binaryCost > static_cast<double>(limit) || IsBinaryWithin(m_operands.first(), part)) {
        return static_cast<qint64>(binaryCost);
    }
    return static_cast<qint64>(binaryCost + area * GreyChordCost * m_reach);
}
