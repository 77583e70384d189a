#pragma once

#include "layers/CustomLayer.h"

#include <QImage>
#include <QRect>
#include <QString>
#include <QVector>

#include <optional>

class LayerList;

/// A code in parts: what a computed layer is made of and how.
struct Formula
{
    CustomOperation operation = OperationUnknown;
    /// Layer ids: two for binary operations, one for all others.
    QVector<int> operands;
    /// The radius of morphological operations; 0 for all others.
    int metres = 0;

    QString Code() const;
    /// The operation in words: "Dilation of Lake, 25 m". operandNames: as many as operands.
    QString Words(const QStringList& operandNames) const;
};

/// The code in parts; nothing for a text that is none. Logs nothing.
std::optional<Formula> ParseFormula(const QString& code);

/// A formula with the masks of its operands, as values that another thread may compute with. It
/// shares the pixels of the masks, so whoever changes them meanwhile copies them.
class Computation
{
public:
    /// Nothing when an operand is not in the list or has no mask of the layer size.
    static std::optional<Computation> Of(const LayerList& list, const Formula& formula);

    /// Exactly the pixels that Evaluate gives within the rectangle of layer pixels, which lies
    /// within the layer. Null without memory.
    QImage Within(const QRect& rect) const;
    /// How far a changed pixel of an operand can change the result, in pixels to each side.
    int Reach() const { return m_reach; }
    /// About how long Within takes, in nanoseconds of a usual machine. It depends on the operation,
    /// the area, the radius and on whether the operands have greys, and not on this machine. Beyond
    /// the limit, greys are not looked for.
    qint64 Cost(const QRect& rect, qint64 limit) const;

private:
    QRect OperandPart(const QRect& rect) const;

    CustomOperation m_operation = OperationUnknown;
    QVector<QImage> m_operands;
    /// In pixels.
    float m_radius = 0;
    int m_reach = 0;
};
