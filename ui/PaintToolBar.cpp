#include "ui/PaintToolBar.h"

#include "canvas/tools/PaintTools.h"
#include "document/Document.h"
#include "ui/widgets/ComboBoxLayers.h"
#include "ui/widgets/WheelFocus.h"

#include <QActionGroup>
#include <QLabel>
#include <QMap>

#include <iterator>

namespace {

constexpr int IconSide = 16;

struct ToolText
{
    PaintToolKind kind;
    const char* name;
    const char* icon;
    const char* text;
    /// How to work with it.
    const char* help;
};

const ToolText ToolTexts[] = {
    {PaintToolKind::Brush, "toolBrush", ":/icon-tool-brush",
     QT_TRANSLATE_NOOP("PaintToolBar", "Brush"),
     QT_TRANSLATE_NOOP("PaintToolBar", "The left button paints, the right one erases.")},
    {PaintToolKind::Line, "toolLine", ":/icon-tool-line", QT_TRANSLATE_NOOP("PaintToolBar", "Line"),
     QT_TRANSLATE_NOOP("PaintToolBar",
                       "As wide as the brush. Shift + click goes on from the last end, Ctrl turns "
                       "the line in steps of 15°.")},
    {PaintToolKind::Rectangle, "toolRectangle", ":/icon-tool-rectangle",
     QT_TRANSLATE_NOOP("PaintToolBar", "Rectangle"),
     QT_TRANSLATE_NOOP("PaintToolBar", "Ctrl draws from the centre, Shift a square.")},
    {PaintToolKind::Ellipse, "toolEllipse", ":/icon-tool-ellipse",
     QT_TRANSLATE_NOOP("PaintToolBar", "Ellipse"),
     QT_TRANSLATE_NOOP("PaintToolBar", "Ctrl draws from the centre, Shift a circle.")},
    {PaintToolKind::Polygon, "toolPolygon", ":/icon-tool-polygon",
     QT_TRANSLATE_NOOP("PaintToolBar", "Polygon"),
     QT_TRANSLATE_NOOP(
         "PaintToolBar",
         "Click the corners. Enter or a double click closes, Backspace takes the last "
         "corner back, Esc all.")},
    {PaintToolKind::Lasso, "toolLasso", ":/icon-tool-lasso",
     QT_TRANSLATE_NOOP("PaintToolBar", "Lasso"),
     QT_TRANSLATE_NOOP("PaintToolBar", "Drag around an area. The release closes it.")},
    {PaintToolKind::Fill, "toolFill", ":/icon-tool-fill", QT_TRANSLATE_NOOP("PaintToolBar", "Fill"),
     QT_TRANSLATE_NOOP("PaintToolBar", "The left button fills the area under the mouse, the right "
                                       "one erases it.")},
    {PaintToolKind::Pick, "toolPick", ":/icon-tool-pick",
     QT_TRANSLATE_NOOP("PaintToolBar", "Pick layer"),
     QT_TRANSLATE_NOOP("PaintToolBar", "A click makes the topmost ticked layer under the mouse the "
                                       "current one.")},
};

} // namespace

PaintToolBar::PaintToolBar(Document& document, PaintTools& tools, QWidget* parent)
    : QToolBar(tr("Tools"), parent)
    , m_document(document)
    , m_tools(tools)
{
    setObjectName(QStringLiteral("toolBarTools"));
    setMovable(false);
    setFloatable(false);
    setIconSize({IconSide, IconSide});
    // It comes and goes with the dock of the brush.
    toggleViewAction()->setVisible(false);
    AddTools();
    addSeparator();
    m_fillBounds = AddChoice("cboFillBounds", tr("Fill:"), tr("What bounds a fill"),
                             {tr("This layer"), tr("Every ticked layer"), tr("All pixels")});
    addSeparator();
    m_within = AddChoice("cboPaintWithin", tr("Within:"),
                         tr("Where brush, shapes and fills change pixels"),
                         {tr("Anywhere"), tr("Only inside"), tr("Only outside")});
    AddLayerChoice();
    connect(m_fillBounds, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int index) { m_tools.Options().fillBounds = static_cast<FillBounds>(index); });
    connect(m_within, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &PaintToolBar::ChooseWithin);
    FollowRows();
    ChooseWithin(0);
}

PaintToolBar::~PaintToolBar()
{
    m_tools.SetChosen({});
}

void PaintToolBar::AddTools()
{
    auto* group = new QActionGroup(this);
    QMap<int, QAction*> actions;
    for (const ToolText& text : ToolTexts) {
        const PaintToolKind kind = text.kind;
        auto* action = new QAction(QIcon(QLatin1String(text.icon)), tr(text.text), group);
        action->setObjectName(QLatin1String(text.name));
        action->setCheckable(true);
        action->setChecked(kind == m_tools.Kind());
        // The map takes its plain letters itself; here they are for the button that has the focus.
        action->setShortcut(PaintTools::KeyOf(kind));
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setToolTip(tr("<p><b>%1 (%2)</b></p><p>%3</p>")
                               .arg(tr(text.text), action->shortcut().toString(), tr(text.help)));
        addAction(action);
        widgetForAction(action)->setFocusPolicy(Qt::TabFocus);
        connect(action, &QAction::toggled, this, [this, kind](bool isOn) {
            if (isOn) {
                m_tools.Choose(kind);
            }
        });
        actions.insert(static_cast<int>(kind), action);
    }
    m_tools.SetChosen(
        [actions](PaintToolKind kind) { actions.value(static_cast<int>(kind))->setChecked(true); });
}

QComboBox* PaintToolBar::AddChoice(const char* name, const QString& label, const QString& toolTip,
                                   const QStringList& texts)
{
    auto* choice = new QComboBox;
    choice->setObjectName(QLatin1String(name));
    choice->addItems(texts);
    choice->setToolTip(toolTip);
    choice->setAccessibleName(toolTip);
    TakeWheelOnlyWithFocus(choice);
    auto* title = new QLabel(label);
    title->setBuddy(choice);
    addWidget(title);
    addWidget(choice);
    return choice;
}

void PaintToolBar::AddLayerChoice()
{
    constexpr int letters = 12;
    m_withinLayer = new ComboBoxLayers;
    m_withinLayer->setObjectName(QStringLiteral("cboPaintWithinLayer"));
    m_withinLayer->setToolTip(tr("The layer inside or outside of which pixels change"));
    m_withinLayer->setAccessibleName(m_withinLayer->toolTip());
    m_withinLayer->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_withinLayer->setMinimumContentsLength(letters);
    m_withinLayer->setModel(m_document.Layers().model());
    TakeWheelOnlyWithFocus(m_withinLayer);
    addWidget(m_withinLayer);
    connect(m_withinLayer, qOverload<int>(&QComboBox::currentIndexChanged), this, [this] {
        if (!m_areRowsChanging) {
            ChooseLayer();
        }
    });
}

/// A layer that is moved leaves the list for a moment, so what counts is where it is when the
/// document tells that rows changed.
void PaintToolBar::FollowRows()
{
    const QAbstractItemModel* model = m_document.Layers().model();
    const auto begin = [this] { m_areRowsChanging = true; };
    // The box of layers hears it before.
    const auto end = [this] { m_areRowsChanging = false; };
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, begin);
    connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, begin);
    connect(model, &QAbstractItemModel::rowsRemoved, this, end);
    connect(model, &QAbstractItemModel::rowsInserted, this, end);
    connect(&m_document, &Document::LayerChanged, this,
            [this](const Layer*, Document::LayerAspect aspect) {
                if (aspect == Document::LayerAspect::Rows) {
                    FollowLayers();
                }
            });
    connect(&m_document, &Document::AboutToClear, this, [this] { m_within->setCurrentIndex(0); });
    connect(&m_document, &Document::HistoryBegan, this, &PaintToolBar::FollowLayers);
}

void PaintToolBar::ChooseWithin(int index)
{
    m_tools.Options().within = static_cast<PaintWithin>(index);
    m_withinLayer->setEnabled(index != 0);
    ChooseLayer();
}

void PaintToolBar::ChooseLayer()
{
    m_tools.Options().withinLayer = m_document.Layers().LayerAt(m_withinLayer->currentIndex());
}

void PaintToolBar::FollowLayers()
{
    const Layer* layer = m_tools.Options().withinLayer;
    if (layer && layer->model()) {
        m_withinLayer->setCurrentIndex(layer->row());
    } else {
        m_within->setCurrentIndex(0);
    }
    ChooseLayer();
}
