#pragma once

#include "document/Document.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"
#include "tests/support/DocumentFixture.h"
#include "tests/support/Masks.h"
#include "tests/support/Random.h"

#include <QVector>

#include <memory>

/// Paints on a layer as the brush does: steps that are announced, and an edit at the end.
class Stroke
{
public:
    Stroke(Document& document, Layer& layer)
        : m_document(document)
        , m_layer(layer)
    {
        m_document.SetHandBusy(true);
    }

    void Step(const QRect& rect, uchar value)
    {
        m_delta.Touch(m_layer.Image(), rect);
        QImage pixels = raster::BlankMask(rect.size());
        pixels.fill(value);
        m_layer.PutPixels(rect, pixels, {});
        m_changed |= rect;
        emit m_document.Painted(&m_layer, rect);
    }
    void End()
    {
        m_document.SetHandBusy(false);
        m_delta.DropUnchanged(m_layer.Image());
        m_document.Do(std::make_unique<PaintMask>(QStringLiteral("Stroke"), m_layer,
                                                  std::move(m_delta), m_changed));
    }
    void Cancel()
    {
        m_document.SetHandBusy(false);
        m_layer.SwapPixels(m_delta);
        emit m_document.Painted(&m_layer, m_changed);
    }

private:
    Document& m_document;
    Layer& m_layer;
    raster::MaskDelta m_delta;
    QRect m_changed;
};

/// A document with painted layers and live ones that are made of them and of one another.
struct LiveGraph
{
    explicit LiveGraph(Random& random)
        : m_random(random)
    {
        for (int i = 0; i < 2; ++i) {
            Layer* layer = fixture.AddLayer();
            painted.append(layer);
            all.append(layer);
            const QImage mask = RandomMask(random, {DocumentFixture::Side, DocumentFixture::Side});
            fixture.document.Do(std::make_unique<PaintMask>(QString(), *layer, mask));
        }
        for (int i = 0; i < 4; ++i) {
            AddComputed();
        }
    }

    Layer* Add(const Formula& formula)
    {
        Document& document = fixture.document;
        document.Do(
            Edits::AddComputedLayer(document.Layers(), QString::number(all.size()), formula.Code(),
                                    EvaluateAtLayerSize(document.Layers(), formula.Code())));
        Layer* layer = document.Layers().LayerAt(all.size());
        all.append(layer);
        document.Do(Edits::MakeLayerLive(*layer, {}));
        return layer;
    }
    /// What lies within some metres of the first painted layer.
    Layer* AddShore(int metres = 9)
    {
        return Add({OperationDilation, {painted.first()->Id()}, metres});
    }
    /// Its first operand is the last layer, so they are a chain.
    void AddComputed()
    {
        const int operation = m_random.Below(OperationUnknown);
        Formula formula{static_cast<CustomOperation>(operation), {all.constLast()->Id()}, 0};
        if (IsBinaryOperation(operation)) {
            formula.operands.append(all.at(m_random.Below(all.size()))->Id());
        }
        if (IsMorphologicalOperation(operation)) {
            formula.metres = m_random.Below(m_random.Below(4) == 0 ? 60 : 12);
        }
        Add(formula);
    }

    /// The code of the first layer whose pixels are not those of its formula; empty when all are.
    QString Wrong() const
    {
        for (const Layer* layer : all) {
            if (!layer->Code().isEmpty() &&
                Indices(layer->Image()) !=
                    Indices(EvaluateAtLayerSize(fixture.document.Layers(), layer->Code()))) {
                return layer->Code();
            }
        }
        return {};
    }
    QVector<QByteArray> Pixels() const
    {
        QVector<QByteArray> pixels;
        for (const Layer* layer : all) {
            pixels.append(Indices(layer->Image()));
        }
        return pixels;
    }

    Random& m_random;
    DocumentFixture fixture;
    QVector<Layer*> painted;
    QVector<Layer*> all;
};
