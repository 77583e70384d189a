#pragma once

#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

class LayerList;

/// How a computed layer is made from other layers of its list; in the order in which the user is
/// offered them. A code names the operation by a character, its operands by their layer ids and a
/// radius in metres: !(12), -(3)(7), e(5:25).
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

/// True for the operations on two layers.
bool IsBinaryOperation(int operation);
/// True for the operations on one layer and a radius.
bool IsMorphologicalOperation(int operation);

/// A CustomOperation; OperationUnknown for a character that is none.
int OperationFromChar(char character);
/// "?" for what is no operation.
char OperationChar(int operation);

/// The texts between the code's parentheses: two for the binary operations, or none where their
/// parentheses never close, and one for all other codes. What is not found is not removed: an
/// operand without parentheses is taken whole.
QStringList SplitOperands(const QString& code);

/// The layer ids in the code, in order. Operands that are no number are left out and logged.
QList<int> ParseIds(const QString& code);

/// In metres; 0 where the code has no radius or a malformed one.
int RadiusFromCode(const QString& code);

/// The mask that the code defines over the list's layers, which are scaled to width x height pixels
/// first. The radius keeps the pixels that it has at the layer size, also in a smaller preview.
/// Null for an empty list or code, for an id that names no layer, when there is no memory, and for
/// a code that cannot be evaluated, which is logged. So whatever was re-entered through a message,
/// the result is null, and the list is not looked at again.
QImage Evaluate(const LayerList& list, const QString& code, int width, int height);
/// The same at the project's layer size.
QImage EvaluateAtLayerSize(const LayerList& list, const QString& code);
