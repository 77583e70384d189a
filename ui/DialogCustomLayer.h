#pragma once

#include "app/Tracked.h"
#include "layers/Layer.h"

#include <QDialog>
#include <QPointer>
#include <QThread>

#include <memory>

class Document;
class LayerList;
class QComboBox;
class QLabel;

namespace Ui {
class DialogCustomLayer;
}

/// Lets the user define a layer that is computed from others, with pictures of the inputs and the
/// output. An input that was removed is marked, and has to be chosen anew. It computes on a
/// separate thread, one request at a time; during that time its controls are disabled and it cannot
/// be closed. It must be modal, because nothing else may change the layers, and can be opened only
/// once.
class DialogCustomLayer : public QDialog
{
    Q_OBJECT

public:
    /// layerToModify: the layer to be defined anew; null, or without an image, to add one.
    DialogCustomLayer(Document& document, Layer* layerToModify, QWidget* parent = nullptr);
    ~DialogCustomLayer() override;
    Q_DISABLE_COPY(DialogCustomLayer)

    /// The layer that was added; null if none was.
    Layer* CreatedLayer() const { return m_createdLayer; }

public slots:
    void FinalizePreviewComputation(const QImage& preview);
    void FinalizeLayerComputation(const QImage& image);
    void ConfirmDialog();
    void CloseDialog();
    /// Colours the name field according to whether the layer can have the name, and enables "OK" if
    /// it can.
    void ValidateContent(const QString& name);
    void UpdateOperation(int index);
    void SetPreviewA(int row);
    void SetPreviewB(int row);
    void RequestPreview();
    /// Does nothing while a computation runs.
    void reject() override;
    void done(int result) override;

signals:
    void PreviewComputationRequested(const LayerList* layerList, QString code, QSize previewSize);
    void LayerComputationRequested(const LayerList* layerList, QString code, Layer* layerToModify);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void InitForm();
    void Connect();
    void ShowLayerToModify();
    void StartWorker();
    void LayOut();
    void EnableControls(bool isIdle);
    QString BuildCode();
    void TakeExistingLayer(QComboBox* combo, int& id);
    void ShowInput(QComboBox* combo, int row, QLabel* label, int& id);
    void SelectLayer(QComboBox* combo, int id);
    void ShowRadius();
    bool HasInputs() const;
    void SetDarkText();
    bool IsNameFree(const QString& name) const;

    std::unique_ptr<Ui::DialogCustomLayer> m_ui;
    Document& m_document;
    LayerList* m_list;
    Tracked<Layer> m_createdLayer;
    Tracked<Layer> m_layerToModify;
    bool m_isModifying;
    int m_idA = 0;
    int m_idB = 0;
    /// False until the worker is connected, and while the dialog closes.
    bool m_canRequest = false;
    bool m_isComputing = false;
    QString m_runningCode;
    /// Another code was requested during a computation.
    bool m_isOutdated = false;
    /// The widget that had the focus before the controls were disabled.
    QPointer<QWidget> m_focus;
    QThread m_thread;
};
