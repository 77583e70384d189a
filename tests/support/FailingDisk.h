#pragma once

#include <QtGlobal>

/// While it lives, this process cannot make a file longer than this many bytes: what goes beyond
/// is a short or a failed write, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(quint64 byteCount);
    ~FileSizeLimit();
    Q_DISABLE_COPY(FileSizeLimit)

private:
    quint64 m_limitBefore;
};

/// While it lives, this process cannot rename files: finished files cannot be put in their places.
class RenamesFail
{
public:
    RenamesFail();
    ~RenamesFail();
    Q_DISABLE_COPY(RenamesFail)
};
