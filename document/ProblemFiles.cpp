#include "document/ProblemFiles.h"

#include "app/InputFile.h"
#include "app/NameRules.h"
#include "app/Names.h"
#include "layers/BitmapState.h"
#include "layers/FormulaFile.h"
#include "layers/rules/LayerRules.h"

#include <QFile>
#include <QFileInfo>
#include <QMetaObject>

namespace {

QString BitmapPath(const ProjectFacts& facts, const QString& layer)
{
    return facts.bitmapFolder + QLatin1Char('/') + layer + QStringLiteral(".tga");
}

void CheckLeftOut(const ProjectFacts& facts, const std::function<bool()>& isCancelled,
                  Findings& findings)
{
    for (const QString& name : facts.leftOut) {
        if (isCancelled()) {
            return;
        }
        if (LeadsUpward(name)) {
            CheckFileName(LayerSpot(-1, name), name, findings);
            continue;
        }
        const BitmapState state =
            ReadBitmapState(BitmapPath(facts, name), facts.layerSize, isCancelled);
        CheckBitmap(LayerSpot(-1, name), state.fault, state.error, findings);
    }
}

void CheckBitmapEnds(const ProjectFacts& facts, const std::function<bool()>& isCancelled,
                     Findings& findings)
{
    for (int i = 0; i < facts.layers.size() && !isCancelled(); ++i) {
        const QString& name = facts.layers[i];
        if (ReadBitmapState(BitmapPath(facts, name), facts.layerSize, isCancelled).isCutOff) {
            AddCutOffBitmap(LayerSpot(i, name), findings);
        }
    }
}

void CheckFormulas(const QString& documentPath, Findings& findings)
{
    const QString path = FormulaPath(documentPath);
    const QString fault = ReadFormulaFile(path).fault;
    if (!fault.isEmpty()) {
        AddUnreadableFormulas(QFileInfo(path).fileName(), fault, findings);
    }
}

QString BackgroundFault(const QString& path)
{
    if (path.isEmpty()) {
        return {};
    }
    QFile file(path);
    return OpenPictureForReading(file);
}

} // namespace

FileFindings LookAtFiles(const ProjectFacts& facts, const std::function<bool()>& isCancelled)
{
    FileFindings found;
    found.backgroundFault = BackgroundFault(facts.background);
    if (facts.path.isEmpty() || isCancelled()) {
        return found;
    }
    CheckLeftOut(facts, isCancelled, found.bitmaps);
    const QStringList orphans =
        OrphanBitmaps(facts.bitmapFolder, facts.layers + facts.leftOut + facts.saved);
    for (const QString& file : orphans) {
        AddOrphanBitmap(file, found.bitmaps);
    }
    CheckFormulas(facts.path, found.bitmaps);
    if (facts.areBitmapsForeign) {
        CheckBitmapEnds(facts, isCancelled, found.bitmaps);
    }
    return found;
}

ProblemFiles::ProblemFiles()
{
    m_pool.setMaxThreadCount(1);
}

ProblemFiles::~ProblemFiles()
{
    Cancel();
    m_pool.waitForDone();
}

void ProblemFiles::Begin(const ProjectFacts& facts, QObject* context, const Taker& take)
{
    Cancel();
    m_job = std::make_shared<Job>();
    m_pool.start([this, facts, context, take, job = m_job] {
        const FileFindings found = LookAtFiles(facts, [&job] { return job->isCancelled.load(); });
        QMetaObject::invokeMethod(
            context,
            [this, take, job, found] {
                // A job that was cancelled may have been there when this object died.
                if (!job->isCancelled) {
                    m_job.reset();
                    take(found);
                }
            },
            Qt::QueuedConnection);
    });
}

void ProblemFiles::Cancel()
{
    if (m_job) {
        m_job->isCancelled = true;
        m_job.reset();
    }
}
