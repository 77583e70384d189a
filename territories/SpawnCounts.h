#pragma once

/// The numbers of creatures of a zone, and their sums over zones.
struct SpawnCounts
{
    int staticMin = 0;
    int staticMax = 0;
    int dynamicMin = 0;
    int dynamicMax = 0;

    SpawnCounts& operator+=(const SpawnCounts& other)
    {
        Add(staticMin, other.staticMin);
        Add(staticMax, other.staticMax);
        Add(dynamicMin, other.dynamicMin);
        Add(dynamicMax, other.dynamicMax);
        return *this;
    }

    friend bool operator==(const SpawnCounts& a, const SpawnCounts& b)
    {
        return a.staticMin == b.staticMin && a.staticMax == b.staticMax &&
               a.dynamicMin == b.dynamicMin && a.dynamicMax == b.dynamicMax;
    }

private:
    /// Files may hold any numbers, so sums wrap around.
    static void Add(int& sum, int value)
    {
        sum = static_cast<int>(static_cast<unsigned>(sum) + static_cast<unsigned>(value));
    }
};
