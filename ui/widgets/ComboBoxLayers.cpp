#include "ui/widgets/ComboBoxLayers.h"

#include <QStylePainter>
#include <QStyledItemDelegate>

namespace {

class LayerDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool editorEvent(QEvent* /*event*/, QAbstractItemModel* /*model*/,
                     const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) override
    {
        return false;
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->features &= ~QStyleOptionViewItem::HasCheckIndicator;
    }
};

} // namespace

ComboBoxLayers::ComboBoxLayers(QWidget* parent)
    : QComboBox(parent)
{
    setItemDelegate(new LayerDelegate(this));
}

/// A closed combo box shows icons only, not colours.
void ComboBoxLayers::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (currentIndex() < 0) {
        option.currentText = placeholderText();
    }
    const auto color = currentData(Qt::DecorationRole).value<QColor>();
    if (color.isValid()) {
        QPixmap square(option.iconSize);
        square.fill(color);
        option.currentIcon = QIcon(square);
    }
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
