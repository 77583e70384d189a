#include "app/HiddenNames.h"

#include "platform/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

namespace {

QLatin1String Suffix(HiddenKind kind)
{
    return QLatin1String(kind == HiddenKind::File ? "new" : "group");
}

} // namespace

bool IsHiddenName(const QString& name, HiddenKind kind)
{
    static const QRegularExpression pattern(QStringLiteral("^\\.quillmap-[a-z]{8}\\.([a-z]+)$"));
    return pattern.match(name).captured(1) == Suffix(kind);
}

QString HiddenPath(const QString& folder, HiddenKind kind)
{
    QString letters;
    constexpr int count = 8;
    for (int i = 0; i < count; ++i) {
        letters += QLatin1Char(static_cast<char>('a' + QRandomGenerator::system()->bounded(26)));
    }
    return QDir(folder).filePath(QStringLiteral(".quillmap-%1.%2").arg(letters, Suffix(kind)));
}

HiddenThing MakeHidden(const QString& folder, HiddenKind kind,
                       const std::function<std::error_code(const QString& path)>& make,
                       const std::function<void(const QString& path)>& remove)
{
    // Between creating and locking, another program may remove the file as a leftover; then try
    // again. Where there are no locks, no other program removes it.
    constexpr int attempts = 10;
    for (int i = 1; i <= attempts; ++i) {
        const QString path = HiddenPath(folder, kind);
        if (const std::error_code error = make(path)) {
            return {{}, {}, error};
        }
        std::shared_ptr<void> lock = platform::TryLock(path);
        if ((lock || i == attempts) && QFileInfo::exists(path)) {
            return {path, std::move(lock), {}};
        }
        remove(path);
    }
    return {{}, {}, std::make_error_code(std::errc::io_error)};
}
