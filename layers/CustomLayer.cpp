#include "layers/CustomLayer.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Morphology.h"
#include "layers/raster/SetOperations.h"

#include <cmath>
#include <cstring>

namespace {

/// Indexed by CustomOperation.
constexpr char OperationCharacters[] = "!+.-edoc";

int OperationOf(const QString& code)
{
    return code.isEmpty() ? OperationUnknown : OperationFromChar(code.at(0).toLatin1());
}

QString AfterFirstParenthesis(const QString& text)
{
    return text.mid(text.indexOf(QLatin1Char('(')) + 1);
}

QString BeforeLastParenthesis(const QString& text)
{
    return text.left(text.lastIndexOf(QLatin1Char(')')));
}

/// The position where the parenthesis after the operation's character is closed; -1 if it is not.
int EndOfFirstOperand(const QString& code)
{
    int depth = 0;
    for (int position = 1; position < code.size(); ++position) {
        if (code.at(position) == QLatin1Char('(')) {
            ++depth;
        } else if (code.at(position) == QLatin1Char(')')) {
            --depth;
        }
        if (depth == 0) {
            return position;
        }
    }
    return -1;
}

/// Null if the list has no such layer.
QImage ScaledMask(const LayerList& list, int id, int width, int height)
{
    const Layer* layer = list.LayerById(id);
    if (!layer) {
        return {};
    }
    return layer->Image().scaled(width, height, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

} // namespace

bool IsBinaryOperation(int operation)
{
    return operation >= OperationUnion && operation <= OperationDifference;
}

bool IsMorphologicalOperation(int operation)
{
    return operation >= OperationErosion && operation <= OperationClosing;
}

int OperationFromChar(char character)
{
    const char* found = character != '\0' ? std::strchr(OperationCharacters, character) : nullptr;
    return found ? static_cast<int>(found - OperationCharacters) : OperationUnknown;
}

char OperationChar(int operation)
{
    const bool isKnown = operation >= 0 && operation < OperationUnknown;
    return isKnown ? OperationCharacters[operation] : '?';
}

QStringList SplitOperands(const QString& code)
{
    if (code.isEmpty()) {
        return {};
    }
    if (!IsBinaryOperation(OperationOf(code))) {
        return {BeforeLastParenthesis(AfterFirstParenthesis(code))};
    }
    const int end = EndOfFirstOperand(code);
    if (end < 0) {
        return {};
    }
    return {AfterFirstParenthesis(code.left(end)), BeforeLastParenthesis(code.mid(end + 2))};
}

QList<int> ParseIds(const QString& code)
{
    QList<int> ids;
    const bool hasRadius = IsMorphologicalOperation(OperationOf(code));
    const QStringList operands = SplitOperands(code);
    for (const QString& operand : operands) {
        const int colon = hasRadius ? operand.indexOf(QLatin1Char(':')) : -1;
        const QString text = colon > 0 ? operand.left(colon) : operand;
        bool isNumber = false;
        const int id = text.toInt(&isNumber);
        if (isNumber) {
            ids.append(id);
        } else {
            LogError(QStringLiteral("Code '%1' contains invalid ID - '%2'").arg(code, text));
        }
    }
    return ids;
}

int RadiusFromCode(const QString& code)
{
    const int colon = code.indexOf(QLatin1Char(':'));
    const int end = code.indexOf(QLatin1Char(')'), colon + 1);
    return colon < 0 || end < 0 ? 0 : code.midRef(colon + 1, end - colon - 1).toInt();
}

/// The product is computed in 32-bit floats, which matters for radii that are close to a whole
/// number of pixels.
float RadiusInPixels(int metres)
{
    return std::trunc(static_cast<float>(metres) * ProjectSettings::Instance().PixelsPerMetreX());
}

QImage Combine(int operation, float radius, const QImage& a, const QImage& b)
{
    switch (operation) {
    case OperationComplement:
        return raster::Complement(a);
    case OperationUnion:
        return raster::Union(a, b);
    case OperationIntersection:
        return raster::Intersection(a, b);
    case OperationDifference:
        return raster::Difference(a, b);
    case OperationErosion:
        return raster::Erode(a, radius);
    case OperationDilation:
        return raster::Dilate(a, radius);
    case OperationOpening:
        return raster::Open(a, radius);
    case OperationClosing:
        return raster::Close(a, radius);
    default:
        return {};
    }
}

QImage Evaluate(const LayerList& list, const QString& code, int width, int height)
{
    if (list.IsEmpty() || code.isEmpty()) {
        return {};
    }
    const QList<int> ids = ParseIds(code);
    const int operation = OperationOf(code);
    if (ids.size() == 1) {
        if (operation != OperationComplement && !IsMorphologicalOperation(operation)) {
            LogError(QStringLiteral("Unknown unary operator in code '%1'").arg(code));
            return {};
        }
        return Combine(operation, RadiusInPixels(RadiusFromCode(code)),
                       ScaledMask(list, ids.first(), width, height), {});
    }
    if (ids.size() == 2) {
        if (!IsBinaryOperation(operation)) {
            LogError(QStringLiteral("Unknown binary operator in code '%1'").arg(code));
            return {};
        }
        return Combine(operation, 0, ScaledMask(list, ids.first(), width, height),
                       ScaledMask(list, ids.last(), width, height));
    }
    LogError(QStringLiteral("Unsupported operation in code '%1'").arg(code));
    return {};
}

QImage EvaluateAtLayerSize(const LayerList& list, const QString& code)
{
    const QSize size = ProjectSettings::Instance().LayerSize();
    return Evaluate(list, code, size.width(), size.height());
}
