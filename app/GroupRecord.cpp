#include "app/GroupRecord.h"

#include "app/HiddenFile.h"
#include "app/HiddenNames.h"
#include "app/WriteAll.h"
#include "platform/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace {

const QLatin1String RecordName("record");
const QLatin1String UndoName("undo");
const QLatin1String MainName("main");

QString Below(const QString& folder, const QString& name)
{
    return folder + QLatin1Char('/') + name;
}

QString FolderOf(const QString& workplace)
{
    return QFileInfo(workplace).path();
}

std::error_code Rename(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::rename(platform::ToPath(from), platform::ToPath(to), error);
    return error;
}

/// A second name for the old file, so that the first one is there all the time; where links are not
/// supported the file is moved.
std::error_code KeepOld(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::create_hard_link(platform::ToPath(from), platform::ToPath(to), error);
    return error ? Rename(from, to) : error;
}

std::error_code WriteWhole(const QString& path, const QByteArray& bytes)
{
    HiddenFile file;
    if (const std::error_code error = file.Open(QFileInfo(path).path())) {
        return error;
    }
    return WriteAll(file.Device(), bytes.constData(), bytes.size())
               ? file.HandOver(path)
               : std::make_error_code(std::errc::no_space_on_device);
}

QByteArray ReadWhole(const QString& path)
{
    constexpr qint64 most = 64 << 20;
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? file.read(most)
                                                                      : QByteArray();
}

/// A record may come from a stranger's project. Accept only workplaces, so that it cannot touch
/// other files.
bool IsWorkplace(const QString& path)
{
    const QFileInfo info(path);
    return IsHiddenName(info.fileName(), HiddenKind::Group) && info.isDir() && !info.isSymLink();
}

bool IsFileName(const QString& name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) &&
           !name.contains(QDir::separator()) && name != QLatin1String(".") &&
           name != QLatin1String("..");
}

} // namespace

void GroupRecord::Add(const QString& workplace, const QString& name, bool mayOverwrite)
{
    m_files.append(
        {workplace, name, QFileInfo::exists(Below(FolderOf(workplace), name)), mayOverwrite});
}

QString GroupRecord::NextFile(const QString& workplace) const
{
    return Below(workplace, QStringLiteral("new-%1").arg(m_files.size()));
}

QStringList GroupRecord::Workplaces() const
{
    QStringList workplaces;
    for (const File& file : m_files) {
        workplaces.append(file.workplace);
    }
    workplaces.removeDuplicates();
    return workplaces;
}

QString GroupRecord::Place(int number) const
{
    return Below(FolderOf(m_files.at(number).workplace), m_files.at(number).name);
}

QString GroupRecord::Made(int number) const
{
    return Below(m_files.at(number).workplace, QStringLiteral("new-%1").arg(number));
}

QString GroupRecord::Old(int number) const
{
    return Below(m_files.at(number).workplace, QStringLiteral("old-%1").arg(number));
}

std::error_code GroupRecord::Write() const
{
    const QDir folder(FolderOf(m_main));
    QJsonArray files;
    for (const File& file : m_files) {
        // Relative, so that the folders may be moved in the meantime.
        files.append(
            QJsonObject{{QStringLiteral("workplace"), folder.relativeFilePath(file.workplace)},
                        {QStringLiteral("name"), file.name},
                        {QStringLiteral("replaces"), file.doesReplace},
                        {QStringLiteral("overwrites"), file.mayOverwrite}});
    }
    return WriteWhole(Below(m_main, RecordName), QJsonDocument(files).toJson());
}

bool GroupRecord::IsWritten() const
{
    return QFileInfo::exists(Below(m_main, RecordName)) ||
           QFileInfo::exists(Below(m_main, UndoName));
}

bool GroupRecord::Read()
{
    if (!IsWorkplace(m_main)) {
        return false;
    }
    m_isUndone = QFileInfo::exists(Below(m_main, UndoName));
    const QByteArray bytes = ReadWhole(Below(m_main, m_isUndone ? UndoName : RecordName));
    const QDir folder(FolderOf(m_main));
    const QJsonArray files = QJsonDocument::fromJson(bytes).array();
    for (const QJsonValue& value : files) {
        const QString path = value[QLatin1String("workplace")].toString();
        m_files.append({QDir::cleanPath(folder.absoluteFilePath(path)),
                        value[QLatin1String("name")].toString(),
                        value[QLatin1String("replaces")].toBool(),
                        value[QLatin1String("overwrites")].toBool()});
    }
    return !m_files.isEmpty() && std::all_of(m_files.begin(), m_files.end(), [](const File& file) {
        return IsWorkplace(file.workplace) && IsFileName(file.name);
    });
}

std::error_code GroupRecord::PutInPlace(int number) const
{
    const QFileInfo place(Place(number));
    if (!QFileInfo::exists(Made(number))) {
        return {};
    }
    if (place.exists() && !place.isFile()) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    if (m_files.at(number).doesReplace && place.exists() && !QFileInfo::exists(Old(number))) {
        if (const std::error_code error = KeepOld(Place(number), Old(number))) {
            return error;
        }
    }
    return Rename(Made(number), Place(number));
}

std::error_code GroupRecord::Overwrite(int number) const
{
    QFile made(Made(number));
    if (!made.open(QIODevice::ReadOnly)) {
        return std::make_error_code(std::errc::io_error);
    }
    const std::error_code error = OverwriteFile(made, Place(number));
    // Until it is removed, another run overwrites again.
    return error || made.remove() ? error : std::make_error_code(std::errc::io_error);
}

bool GroupRecord::PutBack(int number) const
{
    if (!m_files.at(number).doesReplace) {
        return QFileInfo::exists(Made(number)) || !QFileInfo::exists(Place(number)) ||
               QFile::remove(Place(number));
    }
    if (!QFileInfo::exists(Old(number))) {
        return true;
    }
    const bool isBack = !Rename(Old(number), Place(number));
    // Renaming does nothing when both are names of one file.
    QFile::remove(Old(number));
    return isBack;
}

bool GroupRecord::HasFailed(int number, const std::error_code& error)
{
    if (error) {
        m_error = error;
        m_failedPlace = Place(number);
    }
    return static_cast<bool>(error);
}

bool GroupRecord::PlaceAll()
{
    QVector<int> refused;
    for (int i = 0; i < m_files.size(); ++i) {
        const std::error_code error = PutInPlace(i);
        if (m_files.at(i).mayOverwrite && IsRefusal(error) && CanBeOverwritten(Place(i))) {
            refused.append(i);
        } else if (HasFailed(i, error)) {
            return false;
        }
    }
    return std::none_of(refused.begin(), refused.end(),
                        [this](int i) { return HasFailed(i, Overwrite(i)); });
}

/// Whether no file has been put in its place, and no old one moved away.
bool GroupRecord::IsUntouched() const
{
    for (int i = 0; i < m_files.size(); ++i) {
        if (!QFileInfo::exists(Made(i)) ||
            (m_files.at(i).doesReplace && !QFileInfo::exists(Place(i)))) {
            return false;
        }
    }
    return true;
}

bool GroupRecord::UndoAll() const
{
    // Undo in reverse order, because links may make two entries the same file.
    bool isUndone = true;
    for (int i = m_files.size(); i > 0; --i) {
        isUndone = PutBack(i - 1) && isUndone;
    }
    return isUndone;
}

bool GroupRecord::Carry()
{
    if (!m_isUndone && (PlaceAll() || IsUntouched())) {
        return QFile::remove(Below(m_main, RecordName));
    }
    // Mark the undo first, so that no later run installs the new files again.
    const bool isMarked = m_isUndone || !Rename(Below(m_main, RecordName), Below(m_main, UndoName));
    return isMarked && UndoAll() && QFile::remove(Below(m_main, UndoName));
}

QString MainWorkplace(const QString& workplace)
{
    const QString path = QString::fromUtf8(ReadWhole(Below(workplace, MainName)));
    const QString main = QDir::cleanPath(QDir(FolderOf(workplace)).absoluteFilePath(path));
    return path.isEmpty() || !IsWorkplace(main) ? workplace : main;
}

std::error_code LeadTo(const QString& mainWorkplace, const QString& workplace)
{
    const QString path = QDir(FolderOf(workplace)).relativeFilePath(mainWorkplace);
    return WriteWhole(Below(workplace, MainName), path.toUtf8());
}

void RemoveWorkplace(const QString& workplace)
{
    static const QRegularExpression made(QStringLiteral(
        "^((new|old)-[0-9]+|record|undo|main|\\.quillmap-[a-z]{8}\\.new(\\.lock(\\.rmlock)?)?)$"));
    const QDir folder(workplace);
    const QStringList names =
        folder.entryList(QDir::Files | QDir::Hidden | QDir::System).filter(made);
    for (const QString& name : names) {
        QFile::remove(folder.filePath(name));
    }
    QDir().rmdir(workplace);
}
