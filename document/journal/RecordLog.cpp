#include "document/journal/RecordLog.h"

#include "app/WriteAll.h"
#include "document/journal/JournalFolder.h"
#include "document/journal/JournalFormat.h"
#include "platform/Files.h"

#include <QtEndian>

namespace {

constexpr int MaxPending = 1 << 20;

QByteArray HeaderOf(char type, int contentLength)
{
    QByteArray header(journal::RecordHeaderLength, type);
    qToLittleEndian(static_cast<quint32>(contentLength), header.data() + 1);
    return header;
}

} // namespace

RecordLog::RecordLog(const QString& path, const QByteArray& session)
    : m_file(path)
    , m_session(session)
{
    BeginHash();
}

bool RecordLog::Create()
{
    return Take(journal::OpenNew(m_file));
}

bool RecordLog::Append(char type, const QByteArray& content)
{
    AddBytes(HeaderOf(type, content.size()));
    AddBytes(content);
    return m_pending.size() < MaxPending || Write();
}

bool RecordLog::AppendRecord(const QByteArray& record)
{
    AddBytes(record);
    return m_pending.size() < MaxPending || Write();
}

bool RecordLog::Commit(const QByteArray& content)
{
    AddBytes(HeaderOf(journal::CommitRecord, content.size() + journal::HashLength));
    AddBytes(content);
    m_pending += m_hash.result();
    BeginHash();
    if (!Write()) {
        return false;
    }
    if (const std::error_code error = platform::Sync(m_file)) {
        m_error = QString::fromLocal8Bit(error.message().c_str());
        return false;
    }
    return true;
}

QByteArray RecordLog::Read(qint64 offset, qint64 length)
{
    QByteArray record;
    if (m_file.seek(offset)) {
        record = m_file.read(length);
    }
    m_file.seek(m_written);
    return record;
}

bool RecordLog::Reopen(const QString& path)
{
    m_file.setFileName(path);
    return Take(
        m_file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered) &&
        m_file.seek(m_written));
}

bool RecordLog::Take(bool isDone)
{
    if (!isDone) {
        m_error = m_file.errorString();
    }
    return isDone;
}

void RecordLog::AddBytes(const QByteArray& bytes)
{
    m_hash.addData(bytes);
    m_pending += bytes;
}

bool RecordLog::Write()
{
    if (!Take(WriteAll(m_file, m_pending.constData(), m_pending.size()) && FlushAll(m_file))) {
        return false;
    }
    m_written += m_pending.size();
    // Keeps the memory for the next records.
    m_pending.resize(0);
    return true;
}

void RecordLog::BeginHash()
{
    m_hash.reset();
    m_hash.addData(m_session);
}
