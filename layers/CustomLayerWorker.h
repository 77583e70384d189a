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

/// Evaluates codes of computed layers away from the window, on a thread of whoever owns it; its
/// slots are reached through queued connections, its results come back the same way. While it works
/// no one else may change the layers, the list or the project's sizes. One request runs at a time:
/// what arrives while another logs a message, which processes events, waits its turn.
class CustomLayerWorker : public QObject
{
    Q_OBJECT

public:
    explicit CustomLayerWorker(QObject* parent = nullptr);

public slots:
    /// previewSize: in pixels.
    void ComputePreview(const LayerList* layerList, const QString& code, QSize previewSize);
    /// With a layer to modify, its code and image become the new ones and its image is reported; a
    /// code that evaluates to nothing leaves it as it is, and a null image is reported. On the
    /// list's own thread the layer changes at once; on any other the change is posted there before
    /// the result is reported. It never waits for that thread, which may be waiting for this one to
    /// end; the next request starts when the layer has changed, because it may read it.
    void ComputeLayer(const LayerList* layerList, const QString& code, Layer* layerToModify);

signals:
    void PreviewComputationFinished(QImage preview);
    void LayerComputationFinished(QImage image);

private:
    struct Request
    {
        /// Logs only when the result is null; after that this worker may be gone.
        std::function<QImage()> evaluate;
        void (CustomLayerWorker::*report)(QImage image);
    };

    void Enqueue(const Request& request);
    void RunNext();
    void Release();
    QImage ModifyLayer(Layer* layer, const QString& code);
    void PostChange(LayerList* list, int layerId, const QString& code, const QImage& image);

    QList<Request> m_waiting;
    /// What keeps the next request from starting: the present one and the change it posted.
    int m_holds = 0;
};

Q_DECLARE_METATYPE(Layer*)
Q_DECLARE_METATYPE(const LayerList*)
