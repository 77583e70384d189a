#pragma once

#include "layers/CustomLayer.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <vector>

class QXmlStreamReader;
class QXmlStreamWriter;

/// What a project keeps of a computed layer: how it is made, and what its pixels and those of its
/// operands were like when it was computed. Layers are known by their names.
struct FormulaRecord
{
    struct Operand
    {
        QString name;
        /// raster::MaskFingerprint; 0 when it is not known.
        quint64 fingerprint = 0;
    };

    QString layer;
    CustomOperation operation = OperationUnknown;
    /// Two for binary operations, one for all others.
    QVector<Operand> operands;
    /// The radius of morphological operations; 0 for all others.
    int metres = 0;
    /// The fingerprint of the result.
    quint64 fingerprint = 0;
    /// Whether the layer follows its operands.
    bool isLive = false;
};

using FormulaRecords = std::vector<FormulaRecord>;

/// Longer files are not read. It is many times what the formulas of a project with as many layers
/// as fit a machine need.
constexpr qint64 MaxFormulaBytes = 16 << 20;

/// The file beside a project document: "world.xml" has "world.derived.xml".
QString FormulaPath(const QString& documentPath);

/// A whole document, and the element "qm-derived" of one.
QByteArray FormulaDocument(const FormulaRecords& records);
void WriteFormulas(QXmlStreamWriter& xml, const FormulaRecords& records);

/// The formulas of a document of any bytes, and why there are none.
struct FormulaReading
{
    FormulaRecords records;
    /// A sentence without the file's name, about the first fault; empty for none. A document with
    /// a fault gives no records.
    QString fault;
};

/// Reads the element "qm-derived", which is the document's root or within it. A document without
/// one has a fault only if mustBeRoot. Entities and other declarations are faults.
FormulaReading ReadFormulas(const QByteArray& document, bool mustBeRoot = true);
/// The same for a file. One that does not exist has neither records nor a fault.
FormulaReading ReadFormulaFile(const QString& path);
