#pragma once

#include <QtGlobal>

class QFileDevice;

/// False unless every byte was taken; then the device tells why.
bool WriteAll(QFileDevice& device, const void* bytes, qint64 count);
/// Copies the rest of a file; false unless all of it was read and written.
bool CopyAll(QFileDevice& from, QFileDevice& to);
/// Hands on what the device has kept back so far; false unless all of it was taken.
bool FlushAll(QFileDevice& device);
