#include "tests/support/Files.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QMap<QString, QByteArray> FilesBelow(const QString& folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString name = QDir(folder).relativeFilePath(path);
        if (it.fileInfo().isDir()) {
            files.insert(name + QLatin1Char('/'), {});
        } else {
            files.insert(name, ReadBytes(path));
        }
    }
    return files;
}

void WriteBytes(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        qFatal("Cannot write the test file '%s'.", qPrintable(path));
    }
}

void LeaveKilledSave(const QString& folder, const QString& name, const QByteArray& bytes)
{
    const QString workplace = QStringLiteral(".quillmap-abcdefgh.group");
    const QString record = QStringLiteral(
        "[{\"workplace\":\"%1\",\"name\":\"%2\",\"replaces\":true,\"overwrites\":true}]");
    WriteBytes(QStringLiteral("%1/%2/new-0").arg(folder, workplace), bytes);
    WriteBytes(QStringLiteral("%1/%2/record").arg(folder, workplace),
               record.arg(workplace, name).toUtf8());
}

QByteArray Ints(const QVector<qint64>& values)
{
    QByteArray bytes;
    for (const qint64 value : values) {
        const auto word = qToLittleEndian(static_cast<quint32>(value));
        bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
    }
    return bytes;
}
