#include "tool/Progress.h"

#include "tool/Console.h"

#include <cstdio>

#include <unistd.h>

Progress::Progress(const QString& what, int total)
    : m_what(what)
    , m_total(total)
    , m_isShown(!Console::IsQuiet() && total > 0 && isatty(STDERR_FILENO) == 1)
{
}

Progress::~Progress()
{
    if (m_shownPercent >= 0) {
        std::fputs("\r\033[K", stderr);
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
    const QByteArray line =
        QStringLiteral("\r%1 [%2] %3 %").arg(m_what, bar).arg(m_shownPercent, 3).toUtf8();
    std::fputs(line.constData(), stderr);
    std::fflush(stderr);
}
