#include "tests/support/Forms.h"

#include "ui/widgets/GroupBoxColor.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialog>
#include <QDirIterator>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGraphicsView>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QMenuBar>
#include <QMetaProperty>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>

#include <map>
#include <memory>

namespace {

/// What forms set, in the order in which it is written.
constexpr char Properties[] =
    "title windowTitle windowIcon text textFormat placeholderText readOnly icon "
    "iconSize toolTip statusTip whatsThis accessibleName accessibleDescription "
    "shortcut shortcutContext checkable checked exclusive flat default autoDefault "
    "popupMode enabled minimumSize maximumSize baseSize sizePolicy minimum maximum "
    "value singleStep pageStep prefix suffix currentIndex orientation alignment "
    "wordWrap frameShape frameShadow lineWidth horizontalScrollBarPolicy "
    "verticalScrollBarPolicy widgetResizable dragMode interactive features movable "
    "floatable tabShape dockOptions windowModality focusPolicy contextMenuPolicy "
    "autoFillBackground acceptDrops dragEnabled dragDropMode showDropIndicator "
    "selectionMode editTriggers alternatingRowColors headerHidden rootIsDecorated "
    "uniformRowHeights uniformItemSizes textVisible";

/// A new object of each class of Qt that forms use, by the name of its class.
template <typename... Classes>
std::map<QByteArray, std::unique_ptr<QObject>> OneOfEach()
{
    std::map<QByteArray, std::unique_ptr<QObject>> objects;
    (objects.emplace(Classes::staticMetaObject.className(), std::make_unique<Classes>()), ...);
    return objects;
}

QString Text(QSizePolicy policy)
{
    const auto name = [](QSizePolicy::Policy part) {
        return QString::fromLatin1(QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(part));
    };
    QString text =
        name(policy.horizontalPolicy()) + QLatin1Char(' ') + name(policy.verticalPolicy());
    if (policy.horizontalStretch() == 0 && policy.verticalStretch() == 0) {
        return text;
    }
    return QStringLiteral("%1, stretch %2 %3")
        .arg(text)
        .arg(policy.horizontalStretch())
        .arg(policy.verticalStretch());
}

QString Text(const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QSize:
        return QStringLiteral("%1 x %2").arg(value.toSize().width()).arg(value.toSize().height());
    case QMetaType::QSizePolicy:
        return Text(value.value<QSizePolicy>());
    case QMetaType::QIcon:
        return IconPath(value.value<QIcon>());
    case QMetaType::QKeySequence:
        return value.value<QKeySequence>().toString();
    case QMetaType::QString:
        return QLatin1Char('"') +
               value.toString().replace(QLatin1Char('\n'), QLatin1String("\\n")) + QLatin1Char('"');
    default:
        return value.toString();
    }
}

bool IsInWindow(const QDockWidget* dock)
{
    return dock && qobject_cast<const QMainWindow*>(dock->parentWidget());
}

/// Whether the form decides about the property, not the widget's parent, content or fonts.
bool IsOwn(const QWidget& widget, const QByteArray& property)
{
    if (IsInWindow(qobject_cast<const QDockWidget*>(&widget))) {
        return property == "enabled";
    }
    if (property == "windowIcon") {
        return widget.testAttribute(Qt::WA_SetWindowIcon);
    }
    if (property == "minimumSize") {
        // Layouts set it for windows, and the box of a colour for its label.
        const bool isOfLayout = widget.isWindow() && !qobject_cast<const QDockWidget*>(&widget) &&
                                widget.layout() &&
                                widget.minimumSize() == widget.layout()->totalMinimumSize();
        const bool isOfText = qobject_cast<const QLabel*>(&widget) &&
                              qobject_cast<const GroupBoxColor*>(widget.parentWidget());
        return !isOfLayout && !isOfText;
    }
    return true;
}

QString Text(const QMetaProperty& property, const QObject& object)
{
    const auto* widget = qobject_cast<const QWidget*>(&object);
    if (widget && qstrcmp(property.name(), "enabled") == 0) {
        // Without regard to the parent.
        return Text(QVariant(widget->isEnabledTo(widget->parentWidget())));
    }
    const QVariant value = property.read(&object);
    if (!property.isEnumType()) {
        return Text(value);
    }
    const QMetaEnum names = property.enumerator();
    return QString::fromLatin1(names.isFlag() ? names.valueToKeys(value.toInt())
                                              : QByteArray(names.valueToKey(value.toInt())))
        .replace(QLatin1String("AlignTrailing"), QLatin1String("AlignRight"));
}

/// The item and its place in the layout.
QString ItemText(const QLayout& layout, int index)
{
    QLayoutItem* item = layout.itemAt(index);
    QString text;
    if (const QSpacerItem* spacer = item->spacerItem()) {
        text = QStringLiteral("%1 %2").arg(Text(spacer->sizeHint()), Text(spacer->sizePolicy()));
    } else {
        const QObject* object = item->layout();
        text = (object ? object : item->widget())->objectName();
    }
    int row = 0;
    int column = 0;
    int rows = 1;
    int columns = 1;
    if (const auto* box = qobject_cast<const QBoxLayout*>(&layout)) {
        const int stretch = box->stretch(index);
        return stretch == 0 ? text : QStringLiteral("%1 (stretch %2)").arg(text).arg(stretch);
    }
    if (const auto* form = qobject_cast<const QFormLayout*>(&layout)) {
        QFormLayout::ItemRole role = QFormLayout::LabelRole;
        form->getItemPosition(index, &row, &role);
        column = role;
    } else if (const auto* grid = qobject_cast<const QGridLayout*>(&layout)) {
        grid->getItemPosition(index, &row, &column, &rows, &columns);
    }
    text += QStringLiteral(" (%1, %2").arg(row).arg(column);
    if (rows != 1 || columns != 1) {
        text += QStringLiteral("; %1 x %2").arg(rows).arg(columns);
    }
    return text + QLatin1Char(')');
}

/// Of actions and menus, with lines for separators.
QStringList ActionNames(const QWidget& widget)
{
    QStringList names;
    const QList<QAction*> actions = widget.actions();
    for (const QAction* action : actions) {
        names.append(action->isSeparator() ? QStringLiteral("|")
                     : action->menu()      ? action->menu()->objectName()
                                           : action->objectName());
    }
    return names;
}

/// Writes one form.
class FormWriter
{
public:
    /// depth: of the object in the tree.
    void Write(const QObject& object, int depth);

    QString text;

private:
    void WriteProperties(const QObject& object);
    void WriteWidget(const QWidget& widget);
    void WriteLayout(const QLayout& layout);
    void WriteValue(const QByteArray& name, const QString& value)
    {
        m_values.append(QString::fromLatin1(name) + QLatin1Char(' ') + value);
    }
    void WriteList(const QByteArray& name, const QStringList& items)
    {
        if (!items.isEmpty()) {
            WriteValue(name, QStringLiteral("[%1]").arg(items.join(QLatin1String(", "))));
        }
    }

    /// Of the object that is being written.
    QStringList m_values;
    const std::map<QByteArray, std::unique_ptr<QObject>> m_fresh =
        OneOfEach<QAction, QButtonGroup, QComboBox, QDialog, QDockWidget, QDoubleSpinBox,
                  QFormLayout, QGraphicsView, QGridLayout, QGroupBox, QHBoxLayout, QLabel,
                  QLineEdit, QListView, QMainWindow, QMenu, QMenuBar, QObject, QProgressBar,
                  QPushButton, QRadioButton, QScrollArea, QSlider, QSpinBox, QToolBar, QToolButton,
                  QTreeView, QVBoxLayout, QWidget>();
};

void FormWriter::Write(const QObject& object, int depth)
{
    const QString name = object.objectName();
    const bool isRoot = depth == 0;
    // Qt's own parts of widgets.
    const bool isWritten = isRoot || !(name.isEmpty() || name.startsWith(QLatin1String("qt_")) ||
                                       name == QLatin1String("_layout"));
    if (isWritten) {
        WriteProperties(object);
        const QString values = m_values.join(QLatin1String(", "));
        const QString kind = QLatin1String(object.metaObject()->className());
        text += QString(4 * depth, QLatin1Char(' ')) + (kind + QLatin1Char(' ') + name).trimmed() +
                (values.isEmpty() ? values : QStringLiteral(": ") + values) + QLatin1Char('\n');
        m_values.clear();
        ++depth;
    }
    if (isRoot || !qobject_cast<const QDockWidget*>(&object)) {
        for (const QObject* child : object.children()) {
            Write(*child, depth);
        }
    }
}

void FormWriter::WriteProperties(const QObject& object)
{
    const QMetaObject* base = object.metaObject();
    while (m_fresh.count(base->className()) == 0) {
        base = base->superClass();
    }
    const QObject& fresh = *m_fresh.at(base->className());
    const auto* widget = qobject_cast<const QWidget*>(&object);
    const QByteArrayList names = QByteArray(Properties).split(' ');
    for (const QByteArray& name : names) {
        const QMetaProperty property = base->property(base->indexOfProperty(name));
        if (property.isWritable() && (!widget || IsOwn(*widget, name))) {
            const QString value = Text(property, object);
            if (value != Text(property, fresh)) {
                WriteValue(name, value);
            }
        }
    }
    if (widget) {
        WriteWidget(*widget);
    } else if (const auto* layout = qobject_cast<const QLayout*>(&object)) {
        WriteLayout(*layout);
    } else if (const auto* action = qobject_cast<const QAction*>(&object)) {
        if (action->shortcuts().size() > 1) {
            WriteValue("shortcuts", QKeySequence::listToString(action->shortcuts()));
        }
    } else if (const auto* group = qobject_cast<const QButtonGroup*>(&object)) {
        QStringList buttons;
        const QList<QAbstractButton*> all = group->buttons();
        for (QAbstractButton* button : all) {
            buttons.append(
                QStringLiteral("%1 (%2)").arg(button->objectName()).arg(group->id(button)));
        }
        WriteList("buttons", buttons);
    }
}

void FormWriter::WriteWidget(const QWidget& widget)
{
    const QWidget* parent = widget.parentWidget();
    if (widget.font().bold() && !(parent && parent->font().bold())) {
        m_values.append(QStringLiteral("bold"));
    }
    if (parent && widget.isHidden() && widget.testAttribute(Qt::WA_WState_ExplicitShowHide)) {
        m_values.append(QStringLiteral("hidden"));
    }
    if (const auto* label = qobject_cast<const QLabel*>(&widget); label && label->buddy()) {
        WriteValue("buddy", label->buddy()->objectName());
    }
    if (const auto* combo = qobject_cast<const QComboBox*>(&widget)) {
        QStringList items;
        for (int i = 0; i < combo->count(); ++i) {
            items.append(combo->itemText(i));
        }
        WriteList("items", items);
    }
    if (qobject_cast<const QDialog*>(&widget)) {
        WriteValue("size", Text(widget.size()));
    }
    if (const auto* window = qobject_cast<const QMainWindow*>(parent)) {
        auto* child = const_cast<QWidget*>(&widget);
        QString area;
        if (auto* dock = qobject_cast<QDockWidget*>(child)) {
            const auto areas = QMetaEnum::fromType<Qt::DockWidgetAreas>();
            area = QString::fromLatin1(
                dock->isFloating() ? "none" : areas.valueToKey(window->dockWidgetArea(dock)));
        } else if (auto* bar = qobject_cast<QToolBar*>(child)) {
            const auto areas = QMetaEnum::fromType<Qt::ToolBarAreas>();
            area = QString::fromLatin1(areas.valueToKey(window->toolBarArea(bar)));
        }
        if (!area.isEmpty()) {
            WriteValue("area", area);
        }
    }
    WriteList("actions", ActionNames(widget));
}

void FormWriter::WriteLayout(const QLayout& layout)
{
    const QMargins margins = layout.contentsMargins();
    WriteValue("margins", QStringLiteral("%1 %2 %3 %4")
                              .arg(margins.left())
                              .arg(margins.top())
                              .arg(margins.right())
                              .arg(margins.bottom()));
    if (const auto* form = qobject_cast<const QFormLayout*>(&layout)) {
        WriteValue("spacing", Text(QSize(form->horizontalSpacing(), form->verticalSpacing())));
    } else if (const auto* grid = qobject_cast<const QGridLayout*>(&layout)) {
        WriteValue("spacing", Text(QSize(grid->horizontalSpacing(), grid->verticalSpacing())));
    } else {
        WriteValue("spacing", QString::number(layout.spacing()));
    }
    QStringList items;
    for (int i = 0; i < layout.count(); ++i) {
        items.append(ItemText(layout, i));
    }
    WriteList("items", items);
}

using Pictures = QList<QImage>;

Pictures PicturesOf(const QIcon& icon)
{
    return {icon.pixmap(16).toImage(), icon.pixmap(24).toImage()};
}

} // namespace

QString FormText(const QObject& root)
{
    FormWriter writer;
    writer.Write(root, 0);
    return writer.text;
}

QString IconPath(const QIcon& icon)
{
    if (icon.isNull()) {
        return {};
    }
    static const std::map<QString, Pictures> resources = [] {
        std::map<QString, Pictures> found;
        QDirIterator files(QStringLiteral(":/"), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            if (!path.startsWith(QLatin1String(":/qt-project.org"))) {
                found.emplace(path, PicturesOf(QIcon(path)));
            }
        }
        return found;
    }();
    const Pictures pictures = PicturesOf(icon);
    for (const auto& [path, expected] : resources) {
        if (expected == pictures && !expected.first().isNull()) {
            return path;
        }
    }
    return QStringLiteral("another picture");
}
