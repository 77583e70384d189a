#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/Drags.h"
#include "tests/support/RandomUser.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QTest>

// What the menu Layer and the list of layers are for.

void RandomUser::DragLayer()
{
    const int count = Layers().Layers().size();
    if (count > 1 && OneOf({"treeLayers"})) {
        DragRow(*Child<QAbstractItemView>("treeLayers"), m_random.Below(count),
                m_random.Below(count));
    }
}

void RandomUser::LayerAction()
{
    static const char* const actions[] = {
        "actionLayerDuplicate", "actionLayerFill",     "actionLayerClear", "actionLayerInvert",
        "actionLayerGrow",      "actionLayerShrink",   "actionLayerMerge", "actionLayerUp",
        "actionLayerDown",      "actionLayerLock",     "actionLayerLock",  "actionLayerSolo",
        "actionLayerSolo",      "actionLayersShowAll", "actionLayerRing",
    };
    const char* const action = actions[m_random.Below(int(std::size(actions)))];
    // The list would grow for ever.
    constexpr int manyLayers = 12;
    const bool isGrowing =
        qstrcmp(action, "actionLayerDuplicate") == 0 || qstrcmp(action, "actionLayerRing") == 0;
    if (isGrowing && Layers().Layers().size() > manyLayers) {
        return;
    }
    Trigger(action);
}

void RandomUser::FilterLayers()
{
    if (m_random.Below(2) == 0) {
        Trigger("actionLayerFilter");
    }
    if (auto* field = qobject_cast<QLineEdit*>(OneOf({"txtLayerFilter"}))) {
        const QStringList texts{QStringLiteral("e"), QStringLiteral("LA"), QStringLiteral("xyz"),
                                QString()};
        field->setText(texts[m_random.Below(texts.size())]);
        if (m_random.Below(2) == 0) {
            QTest::keyClick(field, Qt::Key_Escape);
        }
    }
}

QMap<int, QImage> RandomUser::LockedMasks() const
{
    QMap<int, QImage> masks;
    const QVector<Layer*> layers = Layers().Layers();
    for (const Layer* layer : layers) {
        if (window->GetDocument().IsLocked(*layer)) {
            // Shared pixels could not be painted in place.
            masks.insert(layer->Id(), layer->Image().copy());
        }
    }
    return masks;
}

void RandomUser::CompareLocked(const QMap<int, QImage>& before)
{
    const QVector<Layer*> layers = Layers().Layers();
    for (const Layer* layer : layers) {
        const bool isKept = !before.contains(layer->Id()) || layer->Image() == before[layer->Id()];
        if (!isKept && window->GetDocument().IsLocked(*layer)) {
            m_changedLocked = layer->text();
        }
    }
}
