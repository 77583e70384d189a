#include "app/FileGroup.h"

#include "app/GroupRecord.h"
#include "app/HiddenNames.h"
#include "platform/Files.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

/// Why no file can have the name, as for one that is too long.
std::error_code NameError(const QString& place)
{
    std::error_code error;
    const auto status = std::filesystem::symlink_status(platform::ToPath(place), error);
    return status.type() == std::filesystem::file_type::none ? error : std::error_code();
}

} // namespace

FileGroup::FileGroup() = default;

FileGroup::~FileGroup()
{
    m_files.clear();
    // When the files could neither be put in their places nor back, the next program tries again.
    if (m_record && !m_record->IsWritten()) {
        for (const auto& [folder, workplace] : m_workplaces) {
            RemoveWorkplace(workplace.path);
        }
    }
}

bool FileGroup::Fail(const QString& place, const std::error_code& error)
{
    m_failedPlace = place;
    m_error = error;
    return !error;
}

std::error_code FileGroup::MakeWorkplace(const QString& folder)
{
    if (m_workplaces.count(folder) > 0) {
        return {};
    }
    HiddenThing made = MakeHidden(
        folder, HiddenKind::Group,
        [](const QString& path) {
            std::error_code error;
            std::filesystem::create_directory(platform::ToPath(path), error);
            return error;
        },
        [](const QString& path) { QDir().rmdir(path); });
    if (made.error) {
        return made.error;
    }
    const QString path = made.path;
    m_workplaces[folder] = {path, std::move(made.lock)};
    if (!m_record) {
        m_record = std::make_unique<GroupRecord>(path);
        return {};
    }
    const std::error_code error = LeadTo(m_record->Main(), path);
    if (error) {
        RemoveWorkplace(path);
        m_workplaces.erase(folder);
    }
    return error;
}

std::error_code FileGroup::HandOver(HiddenFile& file, const QString& place, bool mayOverwrite)
{
    const QFileInfo info(place);
    std::error_code error = NameError(place);
    if (error) {
        return error;
    }
    error = MakeWorkplace(info.path());
    if (error) {
        return error;
    }
    const QString workplace = m_workplaces[info.path()].path;
    error = file.HandOver(m_record->NextFile(workplace));
    if (!error) {
        m_record->Add(workplace, info.fileName(), mayOverwrite);
    }
    return error;
}

std::error_code FileGroup::Take(HiddenFile& file, const QString& place)
{
    return HandOver(file, place, true);
}

bool FileGroup::HandOver(File& file)
{
    if (!file.file) {
        return true;
    }
    if (QFileInfo::exists(file.place)) {
        file.file->SetPermissionsOf(file.place);
    }
    const bool isDone = Fail(file.place, HandOver(*file.file, file.place, false));
    file.file.reset();
    return isDone;
}

bool FileGroup::HandOverAll()
{
    return std::all_of(m_files.begin(), m_files.end(),
                       [this](File& file) { return HandOver(file); });
}

QFile* FileGroup::Add(const QString& place)
{
    // Each unnamed file stays open, and the number of open files is limited.
    constexpr std::size_t mostOpen = 100;
    const bool areMany = !m_files.empty() && m_files.size() % mostOpen == 0;
    if (areMany && !HandOverAll()) {
        return nullptr;
    }
    auto file = std::make_unique<HiddenFile>();
    if (!Fail(place, file->Open(QFileInfo(place).path()))) {
        return nullptr;
    }
    QFile* device = &file->Device();
    m_files.push_back({place, std::move(file)});
    return device;
}

bool FileGroup::Commit()
{
    if (!HandOverAll()) {
        return false;
    }
    if (!m_record || m_record->IsEmpty()) {
        return true;
    }
    if (!Fail(m_record->Place(0), m_record->Write())) {
        return false;
    }
    m_record->Carry();
    return Fail(m_record->FailedPlace(), m_record->Error());
}
