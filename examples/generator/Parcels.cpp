#include "Parcels.h"

#include "Noise.h"
#include "Shapes.h"

namespace generator {

Parcel ParcelAt(Point place)
{
    constexpr std::uint32_t seed = 700;
    constexpr float blockSize = 52.0F;
    const Point bent =
        place + Point{FractalNoise(place.x / 60.0F, place.y / 60.0F, 2, seed),
                      FractalNoise(place.x / 60.0F, place.y / 60.0F, 2, seed + 10U)} *
                    6.0F;
    const CellSample block = CellNoise(bent.x / blockSize, bent.y / blockSize, seed + 20U);
    const Point axis = DirectionOf(static_cast<float>(block.id & 0xFFU) / 256.0F);
    const float along = bent.x * axis.x + bent.y * axis.y;
    const float across = bent.y * axis.x - bent.x * axis.y;

    const float width = 7.0F + 5.0F * static_cast<float>((block.id >> 8U) & 0xFFU) / 256.0F;
    const float length = 2.4F * width;
    const float row = std::floor(across / width);
    const int rowNumber = static_cast<int>(row);
    const float shifted = along + length * Random01(rowNumber, 0, block.id);
    const float column = std::floor(shifted / length);

    const float inRow = across - row * width;
    const float inColumn = shifted - column * length;
    const float toSide = std::min(inRow, width - inRow);
    const float toEnd = std::min(inColumn, length - inColumn);
    const float toBlock = 0.5F * blockSize * (block.second - block.first);
    return {Hash(static_cast<int>(column), rowNumber, block.id),
            std::min(toBlock, std::min(toSide, toEnd)), inRow};
}

} // namespace generator
