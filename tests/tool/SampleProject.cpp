#include "tests/tool/SampleProject.h"

#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/Masks.h"

#include <QImage>
#include <QProcess>
#include <QTest>

namespace {

constexpr char Document[] =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<qm-config>
  <global><background file="back.png" rgba="2"/><layer size="8"/><world size="800"/></global>
  <areas>
    <usages><usage name="Coast"/><usage name="Town"/><usage name="Farm"/></usages>
    <values>
      <value name="Tier1"/><value name="Tier2"/><value name="Tier3"/><value name="Tier4"/>
    </values>
  </areas>
  <layers>
    <layer usage_flags="1" value_flags="1" color="4294901760" visible="1" name="Shore"/>
    <layer usage_flags="6" value_flags="10" color="4278255360" visible="1" name="Village"/>
  </layers>
  <territory-type-list>
    <territory-type name="Deer">
      <territory name="North" visible="1" color="4278190335">
        <zone name="Graze" smin="1" smax="2" dmin="3" dmax="4" x="400" z="200" r="100" d="2"/>
        <zone name="Migration" smin="0" smax="1" dmin="0" dmax="5" x="800" z="0" r="50" d="30"/>
      </territory>
    </territory-type>
    <territory-type name="Wolf"/>
  </territory-type-list>
</qm-config>
)";

QProcessEnvironment WithoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        environment.remove(name);
    }
    return environment;
}

QStringList ShellArguments(const QString& limit)
{
    return {"-c", limit + "; exec \"$0\" \"$@\"", QUILLMAP_TOOL};
}

} // namespace

SampleProject::SampleProject()
    : m_document(Document)
{
    if (!m_folder.isValid()) {
        qFatal("Cannot create a temporary folder.");
    }
    WriteBytes(Path("sample.xml"), m_document);
    QImage white(1, 1, QImage::Format_RGB32);
    white.fill(Qt::white);
    if (!white.save(Path("back.png"))) {
        qFatal("Cannot write a picture.");
    }
    Paint("Shore", {"........", "........", "........", "........", "####....", "........",
                    "........", "#......."});
    Paint("Village", {".......#", "........", "........", "........", "##......", "........",
                      "........", "........"});
}

void SampleProject::Replace(const QByteArray& before, const QByteArray& after)
{
    if (!m_document.contains(before)) {
        qFatal("The sample does not hold %s.", before.constData());
    }
    m_document.replace(before, after);
    WriteBytes(Path("sample.xml"), m_document);
}

void SampleProject::Paint(const QString& layer, const QStringList& rows) const
{
    WriteBytes(Path("layers/" + layer + ".tga"), literal::WriteTarga(MaskFromArt(rows), true));
}

ProgramRun SampleProject::Run(const QStringList& arguments) const
{
    return RunLimited(":", arguments);
}

ProgramRun SampleProject::RunLimited(const QString& limit, const QStringList& arguments) const
{
    return RunProgram("/bin/sh", ShellArguments(limit) + arguments, m_folder.path(),
                      WithoutDisplay());
}

void SampleProject::Start(QProcess& process, const QString& limit,
                          const QStringList& arguments) const
{
    process.setWorkingDirectory(m_folder.path());
    process.setProcessEnvironment(WithoutDisplay());
    process.start("/bin/sh", ShellArguments(limit) + arguments, QIODevice::ReadOnly);
}

void CheckIsUnreadable(const QStringList& commands, const QString& file, const QByteArray& bytes,
                       const QString& error)
{
    const SampleProject project;
    if (!bytes.isNull()) {
        WriteBytes(project.Path(file), bytes);
    }
    for (const QString& command : commands) {
        const ProgramRun run = project.Run({command, file});
        QCOMPARE(run.output, QString());
        QCOMPARE(run.log, QStringList{error});
        QCOMPARE(run.exitCode, 3);
    }
}
