#include "layers/FormulaFile.h"

#include "app/Xml.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <array>

namespace {

constexpr int FingerprintDigits = 16;
constexpr int MaxMetres = 1000000000;
constexpr int MaxNameLength = 1000;

const QLatin1String Root("qm-derived");

/// Indexed by CustomOperation.
const std::array<QLatin1String, OperationUnknown> OperationNames = {
    QLatin1String("complement"), QLatin1String("union"),   QLatin1String("intersection"),
    QLatin1String("difference"), QLatin1String("erosion"), QLatin1String("dilation"),
    QLatin1String("opening"),    QLatin1String("closing")};

CustomOperation OperationNamed(const QString& name)
{
    int operation = 0;
    while (operation < OperationUnknown &&
           name != OperationNames.at(static_cast<std::size_t>(operation))) {
        ++operation;
    }
    return static_cast<CustomOperation>(operation);
}

QString FingerprintText(quint64 fingerprint)
{
    return QString::number(fingerprint, 16).rightJustified(FingerprintDigits, QLatin1Char('0'));
}

/// Reads one document, and stops at its first fault.
class Reading
{
public:
    Reading(const QByteArray& document, bool mustBeRoot)
        : m_xml(document)
        , m_mustBeRoot(mustBeRoot)
    {
    }

    FormulaReading Read()
    {
        while (!m_xml.atEnd() && m_result.fault.isEmpty()) {
            m_xml.readNext();
            if (m_xml.isDTD() || m_xml.isEntityReference()) {
                Fail(QStringLiteral("it declares entities"));
            } else if (m_xml.isStartElement()) {
                Start();
            } else if (m_xml.isEndElement()) {
                End();
            }
        }
        if (m_xml.hasError()) {
            Fail(m_xml.errorString());
        }
        if (!m_result.fault.isEmpty()) {
            m_result.records.clear();
        }
        return m_result;
    }

private:
    void Fail(const QString& what)
    {
        if (m_result.fault.isEmpty()) {
            m_result.fault = QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(what);
        }
    }

    void Start()
    {
        const bool isFirst = !m_hasElement;
        m_hasElement = true;
        if (m_xml.name() == Root) {
            m_isInRoot = true;
        } else if (isFirst && m_mustBeRoot) {
            Fail(QStringLiteral("there is no element \"%1\"").arg(QString(Root)));
        } else if (m_isInRoot && m_xml.name() == QLatin1String("formula")) {
            StartFormula();
        } else if (m_isInFormula && m_xml.name() == QLatin1String("operand")) {
            const QString name = Name(QLatin1String("name"));
            m_formula.operands.append({name, Fingerprint()});
        }
    }

    void End()
    {
        if (m_xml.name() == Root) {
            m_isInRoot = false;
        } else if (m_isInFormula && m_xml.name() == QLatin1String("formula")) {
            m_isInFormula = false;
            EndFormula();
        }
    }

    void StartFormula()
    {
        const QString operation = TextAttribute(m_xml, QLatin1String("operation"));
        const QString metres = TextAttribute(m_xml, QLatin1String("metres"));
        bool areMetresRead = metres.isEmpty();
        m_isInFormula = true;
        m_formula = {};
        m_formula.layer = Name(QLatin1String("layer"));
        m_formula.operation = OperationNamed(operation);
        m_formula.metres = metres.isEmpty() ? 0 : metres.toInt(&areMetresRead);
        m_formula.isLive = IntAttribute(m_xml, QLatin1String("live"), 0) == 1;
        m_formula.fingerprint = Fingerprint();
        if (m_formula.operation == OperationUnknown) {
            Fail(QStringLiteral("there is no operation \"%1\"").arg(operation.left(100)));
        } else if (!areMetresRead || m_formula.metres < 0 || m_formula.metres > MaxMetres) {
            Fail(QStringLiteral("\"%1\" is no radius").arg(metres.left(100)));
        } else if (m_names.contains(m_formula.layer)) {
            Fail(QStringLiteral("layer '%1' has two formulas").arg(m_formula.layer.left(100)));
        }
        m_names.insert(m_formula.layer);
    }

    void EndFormula()
    {
        const int count = IsBinaryOperation(m_formula.operation) ? 2 : 1;
        if (m_formula.operands.size() != count) {
            Fail(QStringLiteral("%1 operands instead of %2")
                     .arg(m_formula.operands.size())
                     .arg(count));
        }
        m_result.records.push_back(m_formula);
    }

    /// Of a layer, and so of a file.
    QString Name(QLatin1String attribute)
    {
        QString name = TextAttribute(m_xml, attribute);
        if (name.size() > MaxNameLength) {
            Fail(QStringLiteral("a name is too long"));
        }
        return name;
    }

    quint64 Fingerprint()
    {
        const QString text = TextAttribute(m_xml, QLatin1String("fingerprint"));
        bool isNumber = false;
        const quint64 fingerprint = text.toULongLong(&isNumber, 16);
        if (!isNumber || text.size() != FingerprintDigits) {
            Fail(QStringLiteral("\"%1\" is no fingerprint").arg(text.left(100)));
        }
        return fingerprint;
    }

    QXmlStreamReader m_xml;
    bool m_mustBeRoot;
    bool m_hasElement = false;
    bool m_isInRoot = false;
    bool m_isInFormula = false;
    FormulaRecord m_formula;
    /// Of the layers that have a formula.
    QSet<QString> m_names;
    FormulaReading m_result;
};

} // namespace

QString FormulaPath(const QString& documentPath)
{
    const QFileInfo document(documentPath);
    return document.path() + QLatin1Char('/') + document.completeBaseName() +
           QStringLiteral(".derived.xml");
}

void WriteFormulas(QXmlStreamWriter& xml, const FormulaRecords& records)
{
    xml.writeStartElement(Root);
    for (const FormulaRecord& record : records) {
        xml.writeStartElement(QStringLiteral("formula"));
        WriteTextAttribute(xml, QLatin1String("layer"), record.layer);
        xml.writeAttribute(QStringLiteral("operation"),
                           OperationNames.at(static_cast<std::size_t>(record.operation)));
        if (IsMorphologicalOperation(record.operation)) {
            xml.writeAttribute(QStringLiteral("metres"), QString::number(record.metres));
        }
        xml.writeAttribute(QStringLiteral("fingerprint"), FingerprintText(record.fingerprint));
        xml.writeAttribute(QStringLiteral("live"), QString::number(record.isLive ? 1 : 0));
        for (const FormulaRecord::Operand& operand : record.operands) {
            xml.writeEmptyElement(QStringLiteral("operand"));
            WriteTextAttribute(xml, QLatin1String("name"), operand.name);
            xml.writeAttribute(QStringLiteral("fingerprint"), FingerprintText(operand.fingerprint));
        }
        xml.writeEndElement();
    }
    xml.writeEndElement();
}

QByteArray FormulaDocument(const FormulaRecords& records)
{
    QByteArray document;
    QXmlStreamWriter xml(&document);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeComment(QStringLiteral("How the computed layers are made"));
    WriteFormulas(xml, records);
    xml.writeEndDocument();
    return document;
}

FormulaReading ReadFormulas(const QByteArray& document, bool mustBeRoot)
{
    return Reading(document, mustBeRoot).Read();
}

FormulaReading ReadFormulaFile(const QString& path)
{
    const QFileInfo info(path);
    QFile file(path);
    if (!info.exists()) {
        return {};
    }
    // Opening a pipe would wait for a writer, maybe for ever.
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
        return {{}, QStringLiteral("it cannot be read")};
    }
    const QByteArray bytes = file.read(MaxFormulaBytes + 1);
    if (bytes.size() > MaxFormulaBytes) {
        return {{}, QStringLiteral("it is too large")};
    }
    return ReadFormulas(bytes);
}
