#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/Problems.h"
#include "document/ProjectNumbers.h"
#include "layers/CustomLayer.h"
#include "layers/FormulaFile.h"
#include "layers/Targa.h"
#include "layers/raster/MaskFingerprint.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/Random.h"
#include "tool/ProjectData.h"
#include "tool/ProjectRules.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QMap>
#include <QSet>
#include <QTest>
#include <QWidget>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

/// A project with some faults of every kind, in files.
class RandomProject
{
public:
    RandomProject(const QString& folder, Random& random)
        : m_folder(folder)
        , m_random(random)
        , m_side(OneOf<int>({8, 8, 16, 9, 12}))
        , m_world(64 * m_side)
        , m_hasBrokenBitmaps(random.Below(3) == 0)
    {
    }

    /// Returns the path of the document.
    QString Write()
    {
        QByteArray text;
        QXmlStreamWriter xml(&text);
        xml.writeStartDocument();
        xml.writeStartElement("qm-config");
        WriteSettings(xml);
        WriteLayers(xml);
        WriteTypes(xml);
        xml.writeEndElement();
        xml.writeEndDocument();
        const QString path =
            m_folder + '/' + OneOf<QString>({"world.xml", "world.xml", "aux.xml", "a.b.xml"});
        WriteBytes(path, text);
        WriteFormulaFile(path);
        if (Rarely()) {
            WriteBytes(m_folder + "/layers/Orphan.tga", "any");
        }
        return path;
    }

private:
    template <typename T>
    T OneOf(const QVector<T>& values)
    {
        return values[m_random.Below(values.size())];
    }
    bool Rarely() { return m_random.Below(6) == 0; }

    QString Name(int number)
    {
        static const QVector<QString> odd = {"Forest", "forest",         "Lake",  "con",
                                             "a|b",    "aux.1",          "tab\t", " ",
                                             "../out", QString(252, 'w')};
        return Rarely() ? OneOf(odd) : QStringLiteral("Name %1").arg(number);
    }

    void WriteNames(QXmlStreamWriter& xml, const QString& kind)
    {
        xml.writeStartElement(kind + 's');
        const int count = Rarely() ? 33 : m_random.Below(9);
        for (int i = 0; i < count; ++i) {
            xml.writeEmptyElement(kind);
            xml.writeAttribute("name", Name(i));
        }
        xml.writeEndElement();
    }

    void WriteSettings(QXmlStreamWriter& xml)
    {
        const QString background = OneOf<QString>({"", "none.png", "text.png", "good.png"});
        WriteBytes(m_folder + "/text.png", "text");
        QImage good(1, 1, QImage::Format_RGB32);
        good.fill(Qt::white);
        good.save(m_folder + "/good.png");
        xml.writeStartElement("global");
        xml.writeEmptyElement("background");
        xml.writeAttribute("file", background);
        xml.writeAttribute("rgba", "2");
        xml.writeEmptyElement("layer");
        xml.writeAttribute("size", QString::number(m_side));
        xml.writeEmptyElement("world");
        xml.writeAttribute("size", QString::number(m_world));
        xml.writeEndElement();
        xml.writeStartElement("areas");
        WriteNames(xml, "usage");
        WriteNames(xml, "value");
        xml.writeEndElement();
    }

    void WriteBitmap(const QString& name)
    {
        const int side = m_hasBrokenBitmaps && Rarely() ? m_side + 1 : m_side;
        QImage mask(side, side, QImage::Format_Indexed8);
        mask.fill(0);
        const int pixels = m_random.Below(4) * m_random.Below(side * side);
        for (int i = 0; i < pixels; ++i) {
            mask.scanLine(m_random.Below(side))[m_random.Below(side)] =
                static_cast<uchar>(m_random.Below(40) == 0 ? m_random.Below(256) : 255);
        }
        const QString path = m_folder + "/layers/" + name + ".tga";
        QByteArray bytes = literal::WriteTarga(mask, m_random.Below(2) == 0);
        if (m_hasBrokenBitmaps && Rarely()) {
            // The editor also loads files that end within the header.
            constexpr int header = 18;
            bytes.chop(m_random.Below(bytes.size() - header));
        }
        // No file can have the longest name.
        const bool isMissing = name.size() > 250 || (m_hasBrokenBitmaps && Rarely());
        if (!isMissing) {
            WriteBytes(path, bytes);
        }
    }

    void WriteLayers(QXmlStreamWriter& xml)
    {
        const int count = m_random.Below(6);
        if (count == 0) {
            return;
        }
        xml.writeStartElement("layers");
        for (int i = 0; i < count; ++i) {
            // The editor knows nothing more of a layer that it leaves out.
            const QString name = m_hasBrokenBitmaps ? QStringLiteral("Layer %1").arg(i) : Name(i);
            xml.writeEmptyElement("layer");
            xml.writeAttribute("usage_flags", QString::number(Flags()));
            xml.writeAttribute("value_flags", QString::number(Flags()));
            xml.writeAttribute("color", "4294901760");
            xml.writeAttribute("visible", "1");
            xml.writeAttribute("name", name);
            WriteBitmap(name);
            m_layers.append(name);
        }
        xml.writeEndElement();
    }

    /// That of the present bitmap, or another one.
    quint64 Fingerprint(const QString& layer)
    {
        const QImage mask = LoadTarga(m_folder + "/layers/" + layer + ".tga", {m_side, m_side});
        return mask.isNull() || Rarely() ? m_random.Bits() : raster::MaskFingerprint().Of(mask);
    }

    void WriteFormulaFile(const QString& path)
    {
        FormulaRecords records;
        QSet<QString> computed;
        for (const QString& layer : qAsConst(m_layers)) {
            if (m_random.Below(3) != 0 || computed.contains(layer)) {
                continue;
            }
            computed.insert(layer);
            FormulaRecord record;
            record.layer = layer;
            record.operation =
                OneOf<CustomOperation>({OperationComplement, OperationUnion, OperationDilation});
            record.metres = IsMorphologicalOperation(record.operation) ? 100 : 0;
            record.fingerprint = Fingerprint(layer);
            for (int i = IsBinaryOperation(record.operation) ? 2 : 1; i > 0; --i) {
                const QString operand = Rarely() ? QStringLiteral("Gone") : OneOf(m_layers);
                record.operands.append({operand, Fingerprint(operand)});
            }
            records.push_back(record);
        }
        if (!records.empty()) {
            QByteArray text = FormulaDocument(records);
            text.chop(Rarely() ? 20 : 0);
            WriteBytes(FormulaPath(path), text);
        }
    }

    quint32 Flags() { return Rarely() ? m_random.Bits() : m_random.Bits() & m_random.Bits() & 7; }

    void WriteTypes(QXmlStreamWriter& xml)
    {
        const int count = m_random.Below(4);
        if (count == 0) {
            return;
        }
        xml.writeStartElement("territory-type-list");
        for (int i = 0; i < count; ++i) {
            xml.writeStartElement("territory-type");
            xml.writeAttribute("name", Name(i));
            for (int k = m_random.Below(4); k > 0; --k) {
                WriteTerritory(xml, k);
            }
            xml.writeEndElement();
        }
        xml.writeEndElement();
    }

    void WriteTerritory(QXmlStreamWriter& xml, int number)
    {
        xml.writeStartElement("territory");
        xml.writeAttribute("name", Name(number));
        xml.writeAttribute("visible", Rarely() ? "0" : "1");
        xml.writeAttribute("color", "4278255360");
        for (int i = m_random.Below(8); i > 0; --i) {
            WriteZone(xml);
        }
        xml.writeEndElement();
    }

    void WriteZone(QXmlStreamWriter& xml)
    {
        const auto number = [this](const char* name, const QString& value) {
            m_last[name] = m_last.contains(name) && Rarely() ? m_last[name] : value;
            return m_last[name];
        };
        // Some zones are equal to the one before.
        const bool isEqual = Rarely() && !m_last.isEmpty();
        const auto write = [&](const char* name, const QString& value) {
            xml.writeAttribute(name, isEqual ? m_last.value(name) : number(name, value));
        };
        xml.writeEmptyElement("zone");
        write("name", OneOf<QString>({"Rest", "Rest", "Graze", "Water", "HuntingGround", "rest",
                                      "hunting ground", "", " ", "Migration"}));
        write("smin", QString::number(m_random.Below(5)));
        write("smax", QString::number(m_random.Between(2, 6)));
        write("dmin", QString::number(m_random.Below(5)));
        write("dmax", QString::number(m_random.Between(2, 6)));
        write("x", Place());
        write("z", Place());
        write("r", Rarely() ? OneOf<QString>({"nan", "0", "-5", "49.9", "32769", "40000"})
                            : QString::number(m_random.Between(50, 400)));
        write("d", QString::number(m_random.Below(300)));
    }

    /// The editor keeps places as pixels. Those that are multiples of half a metre stay exact.
    QString Place()
    {
        if (Rarely()) {
            return OneOf<QString>({"nan", "inf", "-0.5", "0", QString::number(m_world),
                                   QString::number(m_world + 1)});
        }
        return QString::number(m_random.Between(-80, 2 * m_world + 80) / 2.0);
    }

    QString m_folder;
    Random& m_random;
    int m_side;
    int m_world;
    bool m_hasBrokenBitmaps;
    QVector<QString> m_layers;
    QMap<QByteArray, QString> m_last;
};

QString Line(const Finding& finding)
{
    return QStringLiteral("%1: %2: %3 %4 [%5]")
        .arg(finding.severity == Severity::Error ? "error" : "warning", finding.place, finding.text,
             finding.advice, finding.rule);
}

/// What the tool finds. Of layers that the editor leaves out, only what it says of their bitmaps:
/// the editor does not know their flags, and their formulas and most names are in nobody's way,
/// because the next save writes the project without these layers.
QStringList ByTool(const QString& path, const QStringList& leftOut)
{
    ProjectData project;
    if (!ReadProject(path, project)) {
        return {"The tool cannot read it."};
    }
    QStringList lines;
    const Findings findings = ApplyRules(project);
    for (const Finding& finding : findings) {
        const bool isLeftOut =
            std::any_of(leftOut.begin(), leftOut.end(), [&finding](const QString& name) {
                return finding.place == QStringLiteral("layer '%1'").arg(name);
            });
        if (!isLeftOut || finding.rule.startsWith("bitmap-") ||
            (finding.rule == "refused-name" && finding.text.contains("leads out"))) {
            lines.append(Line(finding));
        }
    }
    lines.sort();
    return lines;
}

QStringList ByEditor(const Problems& problems)
{
    QStringList lines;
    const std::vector<Problems::Part> parts = problems.Parts();
    for (const Problems::Part& part : parts) {
        for (const Problem& problem : *part) {
            lines.append(Line(problem.finding));
        }
    }
    lines.sort();
    return lines;
}

/// The lines that the others do not have.
QStringList Only(QStringList lines, const QStringList& others)
{
    for (const QString& line : others) {
        lines.removeOne(line);
    }
    return lines;
}

void Open(Document& document, const QString& path)
{
    const QFileInfo place(path);
    document.Clear();
    document.SetPlace(place.absoluteDir(), place.fileName());
    document.SetName(place.baseName());
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("Cannot read the project.");
    }
    ProjectReader reader(file);
    if (!document.Read(reader)) {
        qFatal("The project is none.");
    }
    document.LayerFormulas().Read(ReadFormulaFile(FormulaPath(path)), place.fileName());
    document.BeginHistory(true);
    document.SetPath(path);
}

} // namespace

/// Editor and tool find the same wrong. QUILLMAP_PROJECTS sets in how many projects.
class tst_SameFindings : public QObject
{
    Q_OBJECT

private slots:
    void InRandomProjects();
};

void tst_SameFindings::InRandomProjects()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_PROJECTS", &isSet);
    constexpr int usual = 40;
    const int count = isSet ? wanted : usual;
    // Layers and territories have check boxes while there is a window.
    const QWidget window;
    Random random;
    int found = 0;
    QSet<QString> formulaRules;
    for (int i = 0; i < count; ++i) {
        const ProjectFixture project;
        Document document;
        ProjectNumbers numbers(document);
        Problems problems(document, numbers);
        problems.SetRest(0);
        const QString path = RandomProject(project.Path("p"), random).Write();

        Open(document, path);
        constexpr int longest = 20000;
        QVERIFY(QTest::qWaitFor([&problems] { return problems.IsUpToDate(); }, longest));
        const QStringList byEditor = ByEditor(problems);

        const QStringList byTool = ByTool(path, document.Layers().LeftOut());
        QVERIFY2(
            byEditor == byTool,
            qPrintable(QStringLiteral("Project %1. Only the editor finds\n%2\nonly the tool\n%3")
                           .arg(QString::number(i), Only(byEditor, byTool).join('\n'),
                                Only(byTool, byEditor).join('\n'))));
        found += byTool.size();
        for (const QString& line : byTool) {
            if (line.contains("[derived-")) {
                formulaRules.insert(line.section('[', -1));
            }
        }
    }
    QVERIFY(found > count);
    const QSet<QString> allRules{"derived-broken]", "derived-out-of-date]", "derived-unreadable]"};
    QVERIFY(count < usual || formulaRules == allRules);
}

QTEST_MAIN(tst_SameFindings)
#include "tst_SameFindings.moc"
