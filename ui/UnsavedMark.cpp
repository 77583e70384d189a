#include "ui/UnsavedMark.h"

#include <QLocale>

namespace {

constexpr qint64 MinuteMilliseconds = 60000;
constexpr qint64 MinuteSeconds = 60;
constexpr qint64 HourMinutes = 60;

} // namespace

UnsavedMark::UnsavedMark(QWidget* parent)
    : QLabel(parent)
{
    constexpr int margin = 6;
    setObjectName(QStringLiteral("lblUnsaved"));
    setAccessibleName(tr("Age of unsaved changes"));
    setTextFormat(Qt::PlainText);
    setContentsMargins(margin, 0, margin, 0);
    hide();
    m_nextMinute.setSingleShot(true);
    connect(&m_nextMinute, &QTimer::timeout, this, &UnsavedMark::ShowAge);
}

void UnsavedMark::SetSince(const QDateTime& since)
{
    m_since = since;
    if (since.isValid()) {
        setToolTip(tr("There are unsaved changes, the oldest one of %1.")
                       .arg(QLocale().toString(since.toLocalTime(), QLocale::ShortFormat)));
        ShowAge();
    } else {
        hide();
        m_nextMinute.stop();
    }
}

QString UnsavedMark::TextFor(qint64 seconds)
{
    const qint64 minutes = seconds / MinuteSeconds;
    if (minutes < 1) {
        return tr("● now");
    }
    if (minutes < HourMinutes) {
        return tr("● %1 min").arg(minutes);
    }
    return tr("● %1 h %2 min").arg(minutes / HourMinutes).arg(minutes % HourMinutes);
}

void UnsavedMark::ShowAge()
{
    const qint64 age = qMax(qint64(0), m_since.msecsTo(QDateTime::currentDateTime()));
    const QString text = TextFor(age / 1000);
    if (text != this->text() || isHidden()) {
        // A menu bar makes room for the widget in its corner only when that is shown.
        hide();
        setText(text);
        show();
    }
    m_nextMinute.start(static_cast<int>(MinuteMilliseconds - age % MinuteMilliseconds));
}
