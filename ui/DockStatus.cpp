#include "ui/DockStatus.h"

#include "ui_DockStatus.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QScrollBar>
#include <QStyledItemDelegate>

namespace {

/// One frame at 60 frames a second.
constexpr int FrameMilliseconds = 16;

} // namespace

/// Gives all lines the width of the widest one. So the list need not measure thousands of lines,
/// and can still scroll to the end of the longest.
class DockStatus::LineDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {qMax(size.width(), m_width), size.height()};
    }

    /// Shows the message on one line, because the next message would cover a second one.
    QString displayText(const QVariant& value, const QLocale& locale) const override
    {
        return QStyledItemDelegate::displayText(value, locale)
            .replace(QChar(QChar::LineSeparator), QChar(QChar::Space));
    }

    void MakeRoomFor(const QStyleOptionViewItem& option, const QModelIndex& index)
    {
        m_width = sizeHint(option, index).width();
    }

private:
    int m_width = 0;
};

DockStatus::DockStatus(QWidget* parent)
    : QDockWidget(parent)
    , m_ui(std::make_unique<Ui::DockStatus>())
    , m_delegate(new LineDelegate(this))
{
    m_ui->setupUi(this);
    m_ui->messageListView->setItemDelegate(m_delegate);
    m_ui->messageListView->setModel(&m_model);
    // Stay at the end when messages arrive, even before the list has its final size. A user who has
    // scrolled up to older messages stays there.
    QScrollBar* bar = m_ui->messageListView->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this,
            [this, bar](int value) { m_isAtEnd = value == bar->maximum(); });
    connect(bar, &QScrollBar::rangeChanged, this, [this] {
        if (m_isAtEnd) {
            m_ui->messageListView->scrollToBottom();
        }
    });
    m_frame.setSingleShot(true);
    m_frame.setInterval(FrameMilliseconds);
    connect(&m_frame, &QTimer::timeout, this, &DockStatus::ShowFrame);
    connect(m_ui->messageListView, &QWidget::customContextMenuRequested, this,
            &DockStatus::ShowContextMenu);
}

DockStatus::~DockStatus() = default;

void DockStatus::AddMessage(const QString& content, Log::MessageType type)
{
    auto* line = new QStandardItem(content);
    // The row is none of the project's.
    if (type == Log::Success) {
        line->setForeground(QBrush(Qt::darkGreen, Qt::SolidPattern)); // NOLINT
    } else if (type == Log::Error) {
        line->setForeground(QBrush(Qt::red, Qt::SolidPattern)); // NOLINT
    }
    m_model.appendRow(line);
    QStyleOptionViewItem option;
    option.initFrom(m_ui->messageListView);
    option.font = m_ui->messageListView->font();
    m_delegate->MakeRoomFor(option, line->index());
    m_ui->messageListView->scrollToBottom();
    ShowInTime(type);
}

/// Paints the message at once or with the next frame. An Info announces work and must be visible
/// during that work, so it waits only for a recent Info.
void DockStatus::ShowInTime(Log::MessageType type)
{
    const bool isDue =
        type == Log::Info && (!m_sinceInfo.isValid() || m_sinceInfo.hasExpired(FrameMilliseconds));
    const bool isPainted = isDue || !m_frame.isActive();
    m_ui->messageListView->setUpdatesEnabled(isPainted);
    if (isPainted) {
        m_frame.start();
    }
    if (isPainted && type == Log::Info) {
        m_sinceInfo.start();
    }
}

/// Shows the messages since the last frame, if there are any.
void DockStatus::ShowFrame()
{
    if (!m_ui->messageListView->updatesEnabled()) {
        m_ui->messageListView->setUpdatesEnabled(true);
        m_frame.start();
    }
}

void DockStatus::SetBusy()
{
    ShowFrame();
    m_ui->pgrStatus->setRange(0, 0);
    m_ui->pgrStatus->setValue(0);
    QCoreApplication::processEvents();
}

/// A spacer replaces the hidden bar, so that the list keeps its height.
void DockStatus::SetProgressVisible(bool isVisible)
{
    m_ui->pgrStatus->setVisible(isVisible);
    if (isVisible) {
        m_ui->spacer->changeSize(0, 0, QSizePolicy::Fixed, QSizePolicy::Fixed);
    } else {
        m_ui->spacer->changeSize(1, 1, QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
    m_ui->verticalLayout->invalidate();
    QCoreApplication::processEvents();
}

bool DockStatus::IsProgressOnScreen() const
{
    return m_ui->pgrStatus->isVisible();
}

void DockStatus::ShowContextMenu(const QPoint& position)
{
    QMenu menu(this);
    menu.addAction(tr("Copy all"), this, &DockStatus::CopyAll);
    menu.exec(m_ui->messageListView->viewport()->mapToGlobal(position));
}

void DockStatus::CopyAll() const
{
    QStringList lines;
    lines.reserve(m_model.rowCount());
    for (int row = 0; row < m_model.rowCount(); ++row) {
        lines.append(m_model.item(row)->text());
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}
