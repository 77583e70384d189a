#include "layers/CustomLayerWorker.h"

#include "layers/CustomLayer.h"

#include <QPointer>

CustomLayerWorker::CustomLayerWorker(QObject* parent)
    : QObject(parent)
{
}

void CustomLayerWorker::ComputePreview(const LayerList* layerList, const QString& code,
                                       QSize previewSize)
{
    const auto evaluate = [layerList, code, previewSize] {
        return layerList ? Evaluate(*layerList, code, previewSize.width(), previewSize.height())
                         : QImage();
    };
    Enqueue({evaluate, &CustomLayerWorker::PreviewComputationFinished});
}

void CustomLayerWorker::ComputeLayer(const LayerList* layerList, const QString& code,
                                     Layer* layerToModify)
{
    const auto evaluate = [layerList, code, layerToModify] {
        if (!layerList || code.isEmpty()) {
            return QImage();
        }
        const bool isUnchanged = layerToModify && code == layerToModify->Code();
        return isUnchanged ? layerToModify->Image() : EvaluateAtLayerSize(*layerList, code);
    };
    Enqueue({evaluate, &CustomLayerWorker::LayerComputationFinished});
}

void CustomLayerWorker::Enqueue(const Request& request)
{
    m_waiting.append(request);
    if (!m_isBusy) {
        m_isBusy = true;
        RunNext();
    }
}

/// Logging and reporting run other code, which may delete this worker on its own thread.
void CustomLayerWorker::RunNext()
{
    const QPointer<CustomLayerWorker> self(this);
    const Request request = m_waiting.takeFirst();
    const QImage image = request.evaluate();
    if (self) {
        emit(this->*request.report)(image);
    }
    if (self) {
        Release();
    }
}

/// Ends one hold. When none is left, the next request is queued; a thread that is about to end does
/// not return to its event loop and so never runs it.
void CustomLayerWorker::Release()
{
    m_isBusy = !m_waiting.isEmpty();
    if (m_isBusy) {
        QMetaObject::invokeMethod(this, &CustomLayerWorker::RunNext, Qt::QueuedConnection);
    }
}
