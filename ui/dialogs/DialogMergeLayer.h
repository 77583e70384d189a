#pragma once

#include <QDialog>

#include <memory>

class Document;
class Layer;

namespace Ui {
class DialogMergeLayer;
}

/// Asks into which other layer a layer is to be merged. It cannot be accepted with a layer whose
/// pixels must stay, and says why.
class DialogMergeLayer : public QDialog
{
    Q_OBJECT

public:
    /// Proposes the next layer of the list that can take the pixels, or else the one before.
    DialogMergeLayer(const Document& document, const Layer& layer, QWidget* parent = nullptr);
    ~DialogMergeLayer() override;
    Q_DISABLE_COPY(DialogMergeLayer)

    /// The chosen layer; null when there is no other one.
    Layer* Target() const;

    /// Does nothing while the chosen layer can't take the pixels.
    void accept() override;

private:
    void FillTargets(const Layer& layer);
    void ShowProblem();

    std::unique_ptr<Ui::DialogMergeLayer> m_ui;
    const Document& m_document;
};
