#include "document/edits/LayerEdits.h"

#include "app/Names.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/edits/ChangeValue.h"
#include "document/edits/EditGroup.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/PaintMask.h"
#include "document/edits/Presence.h"
#include "layers/Formula.h"
#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"
#include "territories/TerritoryType.h"

#include <QSet>

#include <algorithm>
#include <optional>
#include <utility>

using Aspect = Document::LayerAspect;

namespace {

QString Text(const char* text)
{
    return Document::tr(text);
}

class MoveLayerEdit : public Edit
{
public:
    MoveLayerEdit(const QString& text, Layer& layer, int row)
        : Edit(text)
        , m_layer(&layer)
        , m_before(layer.row())
        , m_after(row)
    {
    }

    bool Changes() const override { return m_before != m_after; }
    EditPlace Place() const override { return m_layer; }

protected:
    void Do(Document& document) override { Move(document, m_after); }
    void Undo(Document& document) override { Move(document, m_before); }

private:
    void Move(Document& document, int row)
    {
        // Taking a row out of the list makes whoever follows it forget the layer.
        Layer* current = document.CurrentLayer();
        document.Layers().MoveLayer(*m_layer, row);
        document.SetCurrentLayer(current);
        emit document.LayerChanged(m_layer, Aspect::Rows, {});
    }

    Layer* m_layer;
    int m_before;
    int m_after;
};

std::unique_ptr<Edit> AddLayer(const LayerList& list, std::unique_ptr<Layer> layer)
{
    const QString text = Text("Add layer %1").arg(layer->text());
    return std::make_unique<Presence<Layer>>(text, std::move(layer), list.model()->rowCount());
}

std::unique_ptr<Edit> SetAllVisible(const QString& text, const LayerList& list, bool areVisible)
{
    QVector<Layer*> changed;
    const QVector<Layer*> layers = list.Layers();
    for (Layer* layer : layers) {
        if (layer->IsVisible() != areVisible) {
            changed.append(layer);
        }
    }
    const bool before = changed.isEmpty() ? areVisible : !areVisible;
    return std::make_unique<ChangeValue<bool>>(
        text, Property::Discrete, EditPlace(), before, areVisible,
        [changed](Document& document, bool isVisible) {
            for (Layer* layer : changed) {
                layer->SetVisible(isVisible);
                emit document.LayerChanged(layer, Aspect::Visibility, {});
            }
        });
}

/// "Lake (2)" for another layer Lake.
QString FreeName(const LayerList& list, const QString& name)
{
    QSet<QString> taken;
    const QVector<Layer*> layers = list.Layers();
    for (const Layer* other : layers) {
        taken.insert(other->text());
    }
    return FreeNames(taken).Take(ToValidName(name));
}

/// With pixels of its own: those that are shared could not be painted in place. What is clear takes
/// no memory.
QImage CopyOf(const QImage& mask)
{
    QImage copy = raster::BlankMask(mask.size());
    const QRect used = copy.isNull() ? QRect() : raster::SetBounds(mask);
    for (int y = used.top(); y <= used.bottom(); ++y) {
        std::copy_n(mask.constScanLine(y) + used.left(), used.width(),
                    copy.scanLine(y) + used.left());
    }
    return copy;
}

void Announce(Document& document, QStandardItem* item)
{
    if (auto* layer = dynamic_cast<Layer*>(item)) {
        emit document.LayerChanged(layer, Aspect::Name, {});
    } else if (auto* territory = dynamic_cast<Territory*>(item)) {
        emit document.TerritoryChanged(territory);
    } else if (auto* type = dynamic_cast<TerritoryType*>(item)) {
        emit document.TypeChanged(type);
    }
}

EditPlace PlaceOf(QStandardItem* item)
{
    if (auto* layer = dynamic_cast<Layer*>(item)) {
        return layer;
    }
    if (auto* territory = dynamic_cast<Territory*>(item)) {
        return territory;
    }
    return dynamic_cast<TerritoryType*>(item);
}

/// The flag types of the project and the flags of its layers.
struct Flags
{
    AreaFlagTypes types;
    QVector<QPair<Layer*, QPair<quint32, quint32>>> ofLayers;

    bool operator==(const Flags& other) const
    {
        return types.usages == other.types.usages && types.values == other.types.values &&
               ofLayers == other.ofLayers;
    }
};

void SetFlags(Document& document, const Flags& flags)
{
    ProjectSettings::Instance().SetFlagTypes(flags.types);
    for (const auto& [layer, bits] : flags.ofLayers) {
        layer->SetUsageFlags(bits.first);
        layer->SetValueFlags(bits.second);
    }
    emit document.FlagTypesChanged();
}

/// Adds a copy of a layer, which knows of its formula what the layer knew, but follows nothing.
class AddDuplicate : public Presence<Layer>
{
public:
    AddDuplicate(const QString& text, const Layer& source, std::unique_ptr<Layer> copy)
        : Presence<Layer>(text, std::move(copy), source.row() + 1)
        , m_source(&source)
    {
    }

protected:
    void Do(Document& document) override
    {
        if (!m_isKnown) {
            m_isKnown = true;
            m_facts = document.LayerFormulas().FactsOf(*m_source);
        }
        if (m_facts) {
            m_facts->isLive = false;
            document.LayerFormulas().SetFacts(Added(), m_facts);
        }
        Presence<Layer>::Do(document);
    }

private:
    const Layer* m_source;
    bool m_isKnown = false;
    std::optional<FormulaFacts> m_facts;
};

} // namespace

std::unique_ptr<Edit> Edits::AddPaintedLayer(LayerList& list, const QImage& mask)
{
    auto layer = std::make_unique<Layer>(0, 0, &list);
    layer->SetImage(mask, Qt::white);
    return AddLayer(list, std::move(layer));
}

std::unique_ptr<Edit> Edits::AddComputedLayer(LayerList& list, const QString& name,
                                              const QString& code, const QImage& mask, bool isLive)
{
    auto layer = std::make_unique<Layer>(0, 0, &list, name, code);
    layer->SetImage(mask, Qt::white);
    Layer* added = layer.get();
    auto edit = AddLayer(list, std::move(layer));
    if (!isLive) {
        return edit;
    }
    auto group = std::make_unique<EditGroup>(edit->text());
    group->SetPlace(added);
    group->Add(std::move(edit));
    group->Add(MakeLayerLive(*added, {}));
    return group;
}

std::unique_ptr<Edit> Edits::AddLiveRing(Layer& layer, int metres, const QImage& grown)
{
    const QImage around = raster::Difference(grown, layer.Image());
    if (around.isNull()) {
        return nullptr;
    }
    LayerList* list = layer.List();
    const auto computed = [list](const QString& name, const Formula& formula, const QImage& mask) {
        auto added = std::make_unique<Layer>(0, 0, list, FreeName(*list, name), formula.Code());
        added->SetImage(mask, Qt::white);
        return added;
    };
    const QString name = layer.text();
    auto wide = computed(Text("%1 + %2 m").arg(name, QString::number(metres)),
                         {OperationDilation, {layer.Id()}, metres}, grown);
    auto ring = computed(Text("Around %1").arg(name),
                         {OperationDifference, {wide->Id(), layer.Id()}, 0}, around);
    ring->SetVisible(true);
    auto group = std::make_unique<EditGroup>(Text("Add live ring around %1").arg(name));
    group->SetPlace(&layer);
    QVector<Layer*> added;
    for (auto* each : {&wide, &ring}) {
        added.append(each->get());
        group->Add(std::make_unique<Presence<Layer>>(QString(), std::move(*each), layer.row() + 1));
    }
    for (Layer* each : qAsConst(added)) {
        group->Add(MakeLayerLive(*each, {}));
    }
    return group;
}

std::unique_ptr<Edit> Edits::DuplicateLayer(Layer& layer)
{
    const QImage mask = CopyOf(layer.Image());
    if (mask.isNull()) {
        return nullptr;
    }
    auto copy = std::make_unique<Layer>(layer.UsageFlags(), layer.ValueFlags(), layer.List(),
                                        FreeName(*layer.List(), layer.text()), layer.Code());
    copy->SetImage(mask, layer.Color());
    copy->SetVisible(layer.IsVisible());
    return std::make_unique<AddDuplicate>(Text("Duplicate layer %1").arg(layer.text()), layer,
                                          std::move(copy));
}

std::unique_ptr<Edit> Edits::ChangePixels(const QString& text, Layer& layer, const QImage& mask)
{
    if (mask.isNull()) {
        return nullptr;
    }
    auto edit = std::make_unique<PaintMask>(text, layer, mask);
    return edit->IsRecorded() ? std::move(edit) : nullptr;
}

std::unique_ptr<Edit> Edits::FillLayer(const QString& text, Layer& layer, uchar value)
{
    QImage mask = raster::BlankMask(layer.Image().size());
    if (value != raster::MaskClear) {
        mask.fill(value);
    }
    return ChangePixels(text, layer, mask);
}

std::unique_ptr<Edit> Edits::MergeLayers(Layer& layer, Layer& into)
{
    auto pixels = ChangePixels(QString(), into, raster::Union(into.Image(), layer.Image()));
    if (!pixels) {
        return nullptr;
    }
    auto group =
        std::make_unique<EditGroup>(Text("Merge layer %1 into %2").arg(layer.text(), into.text()));
    group->SetPlace(&into);
    group->Add(std::move(pixels));
    group->Add(RemoveLayer(layer));
    return group;
}

std::unique_ptr<Edit> Edits::RemoveLayer(Layer& layer)
{
    return std::make_unique<Presence<Layer>>(Text("Remove layer %1").arg(layer.text()), layer);
}

std::unique_ptr<Edit> Edits::MoveLayer(Layer& layer, int row)
{
    return std::make_unique<MoveLayerEdit>(Text("Move layer %1").arg(layer.text()), layer, row);
}

std::unique_ptr<Edit> Edits::ModifyLayer(Layer& layer, const QString& name, const QString& code,
                                         const QImage& mask)
{
    auto group = std::make_unique<EditGroup>(Text("Modify layer %1").arg(layer.text()));
    group->SetPlace(&layer);
    group->Add(Rename(layer, name));
    if (!mask.isNull()) {
        auto paint = std::make_unique<PaintMask>(QString(), layer, mask);
        if (!paint->IsRecorded()) {
            return nullptr;
        }
        Layer* computed = &layer;
        group->Add(std::make_unique<ChangeValue<QString>>(
            QString(), Property::Discrete, computed, layer.Code(), code,
            [computed](Document&, const QString& value) { computed->StoreCode(value); }));
        group->Add(std::move(paint));
        if (code != layer.Code()) {
            group->Add(NoteComputed(layer));
        }
    }
    return group;
}

std::unique_ptr<Edit> Edits::SetLayerFlags(Layer& layer, quint32 usageFlags, quint32 valueFlags)
{
    using Bits = QPair<quint32, quint32>;
    Layer* changed = &layer;
    return std::make_unique<ChangeValue<Bits>>(
        Text("Change flags of %1").arg(layer.text()), Property::Discrete, changed,
        Bits(layer.UsageFlags(), layer.ValueFlags()), Bits(usageFlags, valueFlags),
        [changed](Document& document, const Bits& bits) {
            changed->SetUsageFlags(bits.first);
            changed->SetValueFlags(bits.second);
            emit document.LayerChanged(changed, Aspect::Flags, {});
        });
}

std::unique_ptr<Edit> Edits::SetLayerColor(Layer& layer, const QColor& color)
{
    Layer* changed = &layer;
    return std::make_unique<ChangeValue<QRgb>>(
        Text("Change colour of %1").arg(layer.text()), Property::LayerColor, changed,
        layer.Color().rgb(), color.rgb(), [changed](Document& document, QRgb rgb) {
            changed->SetColor(QColor(rgb));
            emit document.LayerChanged(changed, Aspect::Color, {});
        });
}

std::unique_ptr<Edit> Edits::SetLayerOpacity(Layer& layer, int alpha)
{
    Layer* changed = &layer;
    return std::make_unique<ChangeValue<int>>(
        Text("Change opacity of %1").arg(layer.text()), Property::LayerOpacity, changed,
        layer.Color().alpha(), alpha, [changed](Document& document, int value) {
            changed->SetOpacity(value);
            emit document.LayerChanged(changed, Aspect::Opacity, {});
        });
}

std::unique_ptr<Edit> Edits::SetLayerVisible(Layer& layer, bool isVisible)
{
    Layer* changed = &layer;
    return std::make_unique<ChangeValue<bool>>(
        (isVisible ? Text("Show layer %1") : Text("Hide layer %1")).arg(layer.text()),
        Property::Discrete, changed, layer.IsVisible(), isVisible,
        [changed](Document& document, bool value) {
            // The list follows the check mark, and announces it as it does for a user's click.
            changed->setCheckState(value ? Qt::Checked : Qt::Unchecked);
            emit document.LayerChanged(changed, Aspect::Visibility, {});
        });
}

std::unique_ptr<Edit> Edits::HideAllLayers(const LayerList& list)
{
    return SetAllVisible(Text("Hide all layers"), list, false);
}

std::unique_ptr<Edit> Edits::ShowAllLayers(const LayerList& list)
{
    return SetAllVisible(Text("Show all layers"), list, true);
}

std::unique_ptr<Edit> Edits::Rename(QStandardItem& item, const QString& name)
{
    QStandardItem* renamed = &item;
    return std::make_unique<ChangeValue<QString>>(
        Text("Rename %1 to %2").arg(item.text(), name), Property::Discrete, PlaceOf(renamed),
        item.text(), name, [renamed](Document& document, const QString& value) {
            renamed->setText(value);
            Announce(document, renamed);
        });
}

std::unique_ptr<Edit> Edits::ImportFlagTypes(const LayerList& list, const AreaFlagTypes& types,
                                             bool resetsFlags)
{
    Flags before;
    Flags after;
    before.types = ProjectSettings::Instance().FlagTypes();
    after.types = types;
    const QVector<Layer*> layers = list.Layers();
    for (Layer* layer : layers) {
        const QPair<quint32, quint32> flags(layer->UsageFlags(), layer->ValueFlags());
        before.ofLayers.append({layer, flags});
        after.ofLayers.append({layer, resetsFlags ? QPair<quint32, quint32>() : flags});
    }
    return std::make_unique<ChangeValue<Flags>>(Text("Import area flag types"), Property::Discrete,
                                                EditPlace(), before, after, SetFlags);
}
