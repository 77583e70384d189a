#pragma once

#include <QDialog>
#include <QImage>
#include <QThread>

#include <memory>

class Layer;
class LayerList;

namespace Ui {
class DialogGrowLayer;
}

/// Asks by how many metres a layer is to grow or to shrink, and computes that mask on a separate
/// thread; during that time it cannot be closed. It must be modal, because nothing else may change
/// the layers, and can be opened only once.
class DialogGrowLayer : public QDialog
{
    Q_OBJECT

public:
    /// What the metres are for. A ring needs the mask of the layer when it has grown.
    enum class Purpose
    {
        Grow,
        Shrink,
        Ring,
    };

    DialogGrowLayer(const LayerList& list, const Layer& layer, Purpose purpose,
                    QWidget* parent = nullptr);
    ~DialogGrowLayer() override;
    Q_DISABLE_COPY(DialogGrowLayer)

    int Metres() const;
    /// The mask of the layer when it has grown or shrunk, once the dialog was accepted. Null
    /// without memory.
    const QImage& Mask() const { return m_mask; }

    /// Computes the mask, and closes the dialog then.
    void accept() override;
    /// Does nothing while the mask is computed.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void ShowRadius();
    void Finish(const QImage& mask);

    std::unique_ptr<Ui::DialogGrowLayer> m_ui;
    const LayerList& m_list;
    int m_id;
    Purpose m_purpose;
    bool m_isComputing = false;
    QImage m_mask;
    QThread m_thread;
};
