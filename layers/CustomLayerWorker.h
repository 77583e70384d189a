#pragma once

#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <QImage>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QSize>
#include <QString>

#include <functional>

/// Evaluates the codes of computed layers on a thread that its owner provides, so that the window
/// keeps responding. Requests and results cross between the threads by queued connections. While it
/// works, nobody else may change the layers, the list or the project's sizes. One request runs at a
/// time: logging processes events, and a request that arrives then waits for its turn.
class CustomLayerWorker : public QObject
{
    Q_OBJECT

public:
    explicit CustomLayerWorker(QObject* parent = nullptr);

public slots:
    /// previewSize: in pixels.
    void ComputePreview(const LayerList* layerList, const QString& code, QSize previewSize);
    /// With a layer to modify, that layer gets the new code and image, and its image is reported.
    /// If the code evaluates to nothing, the layer does not change and a null image is reported. On
    /// the list's own thread the layer changes at once. On any other thread the change is posted to
    /// the list's thread before the result is reported. The worker never waits for that thread,
    /// which may be waiting for this one to end. The next request starts after the layer has
    /// changed, because it may read it.
    void ComputeLayer(const LayerList* layerList, const QString& code, Layer* layerToModify);

signals:
    void PreviewComputationFinished(QImage preview);
    void LayerComputationFinished(QImage image);

private:
    struct Request
    {
        /// Logs only if the result is null. The worker may have been deleted when it returns from
        /// logging.
        std::function<QImage()> evaluate;
        void (CustomLayerWorker::*report)(QImage image);
    };

    void Enqueue(const Request& request);
    void RunNext();
    void Release();
    QImage ModifyLayer(Layer* layer, const QString& code);
    void PostChange(LayerList* list, int layerId, const QString& code, const QImage& image);

    QList<Request> m_waiting;
    /// Counts what keeps the next request from starting: the running request and its posted change.
    int m_holds = 0;
};

Q_DECLARE_METATYPE(Layer*)
Q_DECLARE_METATYPE(const LayerList*)
