#pragma once

#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

class LayerList;

/// The operations that make a computed layer from other layers of its list, in the order of the
/// dialog. A code holds a character for the operation, the layer ids of its operands and a radius
/// in metres: !(12), -(3)(7), e(5:25).
enum CustomOperation
{
    OperationComplement = 0,
    OperationUnion,
    OperationIntersection,
    OperationDifference,
    OperationErosion,
    OperationDilation,
    OperationOpening,
    OperationClosing,
    OperationUnknown,
};

/// True for operations on two layers.
bool IsBinaryOperation(int operation);
/// True for operations on one layer and a radius.
bool IsMorphologicalOperation(int operation);

/// Returns a CustomOperation, or OperationUnknown for any other character.
int OperationFromChar(char character);
/// Returns "?" for an unknown operation.
char OperationChar(int operation);

/// The texts between the code's parentheses. Binary operations have two, or none if the parentheses
/// do not close. All other codes have one. A code without parentheses is returned unchanged as the
/// operand.
QStringList SplitOperands(const QString& code);

/// The layer ids in the code, in order. Operands that are not numbers are left out and logged.
QList<int> ParseIds(const QString& code);

/// A radius of so many metres in whole pixels of the layer size, as all operations take it. Not a
/// finite number while the project has no sizes.
float RadiusInPixels(int metres);

/// The radius in metres; 0 if the code has none or a malformed one.
int RadiusFromCode(const QString& code);

/// The operation on masks of one size. b is that of binary operations. radius: in pixels, of
/// morphological ones. Null for masks that do not fit, and without memory.
QImage Combine(int operation, float radius, const QImage& a, const QImage& b);

/// Computes the mask of a code. The layers are first scaled to width x height pixels. The radius in
/// pixels is that at the layer size, even in a smaller preview. Returns null for an empty list or
/// code, for an id without a layer, without enough memory, and for a code that cannot be evaluated,
/// which is logged. Logging may run other code, so the function does not use the list after it has
/// logged.
QImage Evaluate(const LayerList& list, const QString& code, int width, int height);
/// Evaluate at the project's layer size.
QImage EvaluateAtLayerSize(const LayerList& list, const QString& code);
