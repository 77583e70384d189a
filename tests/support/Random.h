#pragma once

#include <QtGlobal>

#include <random>

/// Random numbers. The seed is printed, so that a failure can be repeated: set the environment
/// variable QUILLMAP_SEED to it.
class Random
{
public:
    Random();

    /// 0 to bound - 1; bound is at least 1.
    int Below(int bound);
    /// first to last.
    int Between(int first, int last) { return first + Below(last - first + 1); }
    quint32 Bits() { return static_cast<quint32>(m_engine()); }

private:
    std::mt19937 m_engine;
};
