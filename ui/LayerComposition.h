#pragma once

#include "document/Document.h"

#include <QObject>

class MainView;

/// Keeps what the map shows of the layers up to date: the current one, which is painted, and below
/// it the other visible ones.
class LayerComposition : public QObject
{
public:
    LayerComposition(Document& document, MainView& view);

    /// Composes the map's picture of the layers; nothing while there are none.
    void Recompose();

private:
    void Follow(Layer* layer, Document::LayerAspect aspect, const QRect& rect);
    void FollowSolo();
    void ReplacePixels(const Layer& layer, const QRect& rect);
    void ForgetRows(int first, int last);
    void ForgetPictures();

    Document& m_document;
    MainView& m_view;
    /// The only layer that the map shows. It is compared only.
    const Layer* m_solo = nullptr;
};
