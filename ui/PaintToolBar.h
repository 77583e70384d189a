#pragma once

#include "app/Tracked.h"
#include "canvas/tools/PaintOptions.h"

#include <QToolBar>

class ComboBoxLayers;
class Document;
class PaintTools;
class QComboBox;

/// The tool bar of the Paint mode: which tool the mouse is, what bounds a fill, and within which
/// layer all tools paint. It follows the layer to paint within through moves and renames; when the
/// layer is removed, the tools paint anywhere again.
class PaintToolBar : public QToolBar
{
    Q_OBJECT

public:
    /// Document and tools outlive the tool bar.
    PaintToolBar(Document& document, PaintTools& tools, QWidget* parent = nullptr);
    ~PaintToolBar() override;
    Q_DISABLE_COPY(PaintToolBar)

private:
    void AddTools();
    QComboBox* AddChoice(const char* name, const QString& label, const QString& toolTip,
                         const QStringList& texts);
    void AddLayerChoice();
    void FollowRows();
    void ChooseWithin(int index);
    void ChooseLayer();
    void FollowLayers();

    Document& m_document;
    PaintTools& m_tools;
    QComboBox* m_fillBounds;
    QComboBox* m_within;
    ComboBoxLayers* m_withinLayer = nullptr;
    /// Rows come and go, and the box of layers shows what Qt makes of that.
    bool m_areRowsChanging = false;
};
