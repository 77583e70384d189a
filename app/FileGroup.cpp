#include "app/FileGroup.h"

#include "app/GroupRecord.h"
#include "app/HiddenNames.h"
#include "platform/Files.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

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

bool FileGroup::MakeWorkplace(const QString& folder)
{
    if (m_workplaces.count(folder) > 0) {
        return true;
    }
    HiddenThing made = MakeHidden(
        folder, HiddenKind::Group,
        [](const QString& path) {
            std::error_code error;
            std::filesystem::create_directory(platform::ToPath(path), error);
            return error;
        },
        [](const QString& path) { QDir().rmdir(path); });
    if (!Fail(folder, made.error)) {
        return false;
    }
    const QString path = made.path;
    m_workplaces[folder] = {path, std::move(made.lock)};
    if (!m_record) {
        m_record = std::make_unique<GroupRecord>(path);
        return true;
    }
    return Fail(folder, LeadTo(m_record->Main(), path));
}

bool FileGroup::HandOver(File& file)
{
    if (!file.file) {
        return true;
    }
    const QFileInfo place(file.place);
    if (!MakeWorkplace(place.path())) {
        return false;
    }
    if (place.exists()) {
        file.file->SetPermissionsOf(file.place);
    }
    const QString workplace = m_workplaces[place.path()].path;
    const bool isDone = Fail(file.place, file.file->HandOver(m_record->NextFile(workplace)));
    m_record->Add(workplace, place.fileName());
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
    if (!HandOverAll() || !m_record) {
        return m_files.empty();
    }
    if (!Fail(m_files.front().place, m_record->Write())) {
        return false;
    }
    m_record->Carry();
    const int failed = m_record->FailedFile();
    return failed < 0 ||
           Fail(m_files.at(static_cast<std::size_t>(failed)).place, m_record->Error());
}
