#include "layers/raster/SplitFields.h"

#include "layers/raster/FieldPacking.h"
#include "layers/raster/Mask.h"

#include <algorithm>
#include <array>

namespace raster {
namespace {

/// Words are read in pieces of this length, because most pieces hold the same field everywhere.
constexpr qint64 PieceWords = 16;

/// Makes the masks of one section while its words are read.
class Splitter
{
public:
    Splitter(QSize size, int flagCount)
        : m_size(size)
        , m_wanted(flagCount > 0 ? 0xFFFFFFFFU >> (32 - std::min(flagCount, 32)) : 0)
    {
    }

    SplitResult Result() const { return m_result; }

    template <int Bits>
    void Split(const WordSource& nextWords)
    {
        constexpr int pixelsPerWord = 32 / Bits;
        const qint64 wordsPerRow = m_size.width() / pixelsPerWord;
        qint64 column = 0;
        m_imageRow = m_size.height() - 1;
        for (WordBlock block = nextWords(); block.count > 0 && wordsPerRow > 0;
             block = nextWords()) {
            while (block.count > 0 && m_imageRow >= 0) {
                const qint64 count = std::min(wordsPerRow - column, block.count);
                for (qint64 w = 0; w < count; w += PieceWords) {
                    AddPiece<Bits>(block.words + w, std::min(PieceWords, count - w),
                                   static_cast<int>(column + w) * pixelsPerWord);
                }
                block.words += count;
                block.count -= count;
                column += count;
                if (column == wordsPerRow) {
                    column = 0;
                    --m_imageRow;
                }
            }
        }
    }

private:
    template <int Bits>
    void AddPiece(const quint32* words, qint64 wordCount, int x)
    {
        constexpr int pixelsPerWord = 32 / Bits;
        quint32 any = 0;
        for (qint64 w = 0; w < wordCount; ++w) {
            any |= words[w];
        }
        if (any == 0) {
            return;
        }
        std::array<Field<Bits>, PieceWords * pixelsPerWord> fields{};
        UnpackFields<Bits>(words, wordCount, fields.data());
        AddFields(fields.data(), static_cast<int>(wordCount) * pixelsPerWord, x);
    }

    template <typename T>
    void AddFields(const T* fields, int count, int x)
    {
        quint32 present = 0;
        quint32 common = 0xFFFFFFFFU;
        for (int i = 0; i < count; ++i) {
            present |= fields[i];
            common &= fields[i];
        }
        present &= m_wanted;
        if ((present & ~m_known) != 0) {
            AddNewFlags(fields, count);
        }
        for (FlagMask& mask : m_result.masks) {
            const quint32 bit = 1U << mask.flag;
            if ((present & bit) == 0) {
                continue;
            }
            uchar* pixels = mask.mask.scanLine(m_imageRow) + x;
            if ((common & bit) != 0) {
                std::fill(pixels, pixels + count, MaskSet);
                continue;
            }
            for (int i = 0; i < count; ++i) {
                pixels[i] = (fields[i] & bit) != 0 ? MaskSet : MaskClear;
            }
        }
    }

    template <typename T>
    void AddNewFlags(const T* fields, int count)
    {
        for (int i = 0; i < count; ++i) {
            const quint32 added = fields[i] & m_wanted & ~m_known;
            for (int flag = 0; added != 0 && flag < 32; ++flag) {
                if ((added >> flag & 1U) != 0) {
                    AddFlag(flag);
                }
            }
        }
    }

    void AddFlag(int flag)
    {
        m_known |= 1U << flag;
        const QImage mask = BlankMask(m_size);
        if (mask.isNull()) {
            ++m_result.missingCount;
        } else {
            m_result.masks.append({flag, mask});
        }
    }

    QSize m_size;
    quint32 m_wanted;
    quint32 m_known = 0;
    int m_imageRow = 0;
    SplitResult m_result;
};

} // namespace

SplitResult SplitFields(const PackedFields& fields, int flagCount)
{
    Splitter splitter(fields.size, flagCount);
    switch (fields.bits) {
    case 1:
        splitter.Split<1>(fields.nextWords);
        break;
    case 2:
        splitter.Split<2>(fields.nextWords);
        break;
    case 4:
        splitter.Split<4>(fields.nextWords);
        break;
    case 8:
        splitter.Split<8>(fields.nextWords);
        break;
    case 16:
        splitter.Split<16>(fields.nextWords);
        break;
    default:
        splitter.Split<32>(fields.nextWords);
        break;
    }
    return splitter.Result();
}

} // namespace raster
