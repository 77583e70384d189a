#include "tool/Progress.h"

#include "platform/ErrorOutput.h"
#include "tool/Console.h"

namespace {

bool isAnyShown = false;

} // namespace

Progress::Progress(const QString& what, int total)
    : m_what(what)
    , m_total(total)
    , m_isShown(!isAnyShown && !Console::IsQuiet() && total > 0 &&
                platform::IsErrorOutputTerminal())
{
    isAnyShown = isAnyShown || m_isShown;
}

Progress::~Progress()
{
    if (m_isShown) {
        isAnyShown = false;
        Console::RemoveBar();
    }
}

void Progress::Step()
{
    ++m_done;
    const int percent = static_cast<int>(qint64(100) * qMin(m_done, m_total) / qMax(m_total, 1));
    if (m_isShown && percent != m_shownPercent) {
        m_shownPercent = percent;
        Draw();
    }
}

void Progress::Draw() const
{
    constexpr int width = 30;
    const int filled = width * m_shownPercent / 100;
    const QString bar =
        QString(filled, QLatin1Char('#')) + QString(width - filled, QLatin1Char(' '));
    Console::ShowBar(QStringLiteral("%1 [%2] %3 %").arg(m_what, bar).arg(m_shownPercent, 3));
}
