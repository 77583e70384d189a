#include "ui/widgets/NoticeBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace {

auto Find(const std::deque<Notice>& notices, const QString& key)
{
    return std::find_if(notices.begin(), notices.end(),
                        [&key](const Notice& notice) { return notice.key == key; });
}

} // namespace

NoticeBar::NoticeBar(QWidget* parent)
    : QFrame(parent)
    , m_text(new QLabel(this))
    , m_count(new QLabel(this))
    , m_buttons(new QHBoxLayout)
    , m_close(new QToolButton(this))
{
    setFrameShape(QFrame::StyledPanel);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setAutoFillBackground(true);
    m_text->setObjectName(QStringLiteral("lblNotice"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setForegroundRole(QPalette::ToolTipText);
    m_count->setObjectName(QStringLiteral("lblNoticeCount"));
    m_count->setForegroundRole(QPalette::ToolTipText);
    m_close->setObjectName(QStringLiteral("btnNoticeClose"));
    m_close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    m_close->setAutoRaise(true);
    m_close->setToolTip(tr("Dismiss this notice"));
    connect(m_close, &QToolButton::clicked, this, [this] {
        const QString key = m_notices.front().key;
        Withdraw(key);
    });

    auto* line = new QHBoxLayout(this);
    constexpr int margin = 4;
    line->setContentsMargins(2 * margin, margin, margin, margin);
    line->addWidget(m_text, 1);
    line->addWidget(m_count);
    line->addLayout(m_buttons);
    line->addWidget(m_close);
    hide();
}

NoticeBar::~NoticeBar() = default;

void NoticeBar::TakeRoomFrom(QWidget& widget)
{
    m_roomGiver = &widget;
    m_fullMinimum = widget.minimumHeight();
    TakeRoom();
}

void NoticeBar::Show(const Notice& notice)
{
    const auto old = Find(m_notices, notice.key);
    if (old == m_notices.end()) {
        m_notices.push_back(notice);
    } else {
        m_notices[static_cast<std::size_t>(old - m_notices.begin())] = notice;
    }
    ShowFirst();
}

void NoticeBar::Withdraw(const QString& key)
{
    const auto notice = Find(m_notices, key);
    if (notice != m_notices.end()) {
        m_notices.erase(notice);
        ShowFirst();
    }
}

bool NoticeBar::Has(const QString& key) const
{
    return Find(m_notices, key) != m_notices.end();
}

void NoticeBar::ShowFirst()
{
    while (QLayoutItem* item = m_buttons->takeAt(0)) {
        // One of them may be the button that is being clicked.
        item->widget()->hide();
        item->widget()->setObjectName(QString());
        item->widget()->deleteLater();
        delete item;
    }
    if (m_notices.empty()) {
        hide();
        TakeRoom();
        return;
    }
    const Notice& notice = m_notices.front();
    m_text->setText(notice.text);
    m_count->setText(tr("1 of %1").arg(m_notices.size()));
    m_count->setVisible(m_notices.size() > 1);
    for (const NoticeButton& button : notice.buttons) {
        auto* widget = new QPushButton(button.text, this);
        widget->setObjectName(button.name);
        widget->setAutoDefault(false);
        connect(widget, &QPushButton::clicked, this, [this, button] { Press(button); });
        m_buttons->addWidget(widget);
    }
    // Showing it lays the window out at once.
    TakeRoom();
    show();
}

void NoticeBar::TakeRoom()
{
    if (!m_roomGiver) {
        return;
    }
    if (m_notices.empty()) {
        m_roomGiver->setMinimumHeight(m_fullMinimum);
        return;
    }
    // Before the first layout the bar has no width, but the other one in the column has.
    const int height = heightForWidth(isVisible() ? width() : m_roomGiver->width());
    const int spacing = qMax(parentWidget()->layout()->spacing(), 0);
    m_roomGiver->setMinimumHeight(qMax(m_fullMinimum - height - spacing, 0));
    // The window's layout does not ask how high the text is at its width.
    setMinimumHeight(height);
}

void NoticeBar::resizeEvent(QResizeEvent* event)
{
    QFrame::resizeEvent(event);
    // In less width the text takes more lines.
    TakeRoom();
}

void NoticeBar::Press(const NoticeButton& button)
{
    // What it does may show or withdraw notices.
    const QString key = m_notices.front().key;
    if (button.act()) {
        Withdraw(key);
    }
}
