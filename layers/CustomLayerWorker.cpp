#include "layers/CustomLayerWorker.h"

#include "layers/CustomLayer.h"

#include <QPointer>
#include <QThread>

#include <memory>
#include <utility>

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
    const auto evaluate = [this, layerList, code, layerToModify] {
        if (!layerList || code.isEmpty()) {
            return QImage();
        }
        return layerToModify ? ModifyLayer(layerToModify, code)
                             : EvaluateAtLayerSize(*layerList, code);
    };
    Enqueue({evaluate, &CustomLayerWorker::LayerComputationFinished});
}

void CustomLayerWorker::Enqueue(const Request& request)
{
    m_waiting.append(request);
    if (m_holds == 0) {
        ++m_holds;
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
    --m_holds;
    if (m_holds == 0 && !m_waiting.isEmpty()) {
        ++m_holds;
        QMetaObject::invokeMethod(this, &CustomLayerWorker::RunNext, Qt::QueuedConnection);
    }
}

/// Returns the layer's new image; null if the code evaluates to nothing.
QImage CustomLayerWorker::ModifyLayer(Layer* layer, const QString& code)
{
    LayerList* list = layer->List();
    if (!list || list->thread() == QThread::currentThread()) {
        return layer->SetCode(code) ? layer->Image() : QImage();
    }
    if (code == layer->Code()) {
        return layer->Image();
    }
    const int layerId = layer->Id();
    QImage image = EvaluateAtLayerSize(*list, code);
    if (!image.isNull()) {
        PostChange(list, layerId, code, image);
    }
    return image;
}

void CustomLayerWorker::PostChange(LayerList* list, int layerId, const QString& code,
                                   const QImage& image)
{
    // The receipt is destroyed with the posted change, on any thread. That tells this worker, if it
    // still exists, that the change was made or was dropped together with the list.
    auto receipt = std::make_shared<QObject>();
    receipt->moveToThread(nullptr);
    connect(receipt.get(), &QObject::destroyed, this, &CustomLayerWorker::Release,
            Qt::QueuedConnection);
    ++m_holds;
    auto change = [list, layerId, code, image, receipt = std::move(receipt)] {
        if (Layer* layer = list->LayerById(layerId)) {
            layer->SetComputedImage(code, image);
        }
    };
    QMetaObject::invokeMethod(list, std::move(change), Qt::QueuedConnection);
}
