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
    /// Evaluates the code at the layer size. For a layer to modify that has this code already its
    /// image is reported. The layer itself is never changed here.
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

    QList<Request> m_waiting;
    /// While a request is evaluated, or the next one is left to the event loop.
    bool m_isBusy = false;
};

Q_DECLARE_METATYPE(Layer*)
Q_DECLARE_METATYPE(const LayerList*)
