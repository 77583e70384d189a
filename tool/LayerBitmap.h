#pragma once

#include "layers/raster/TargaBands.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

class QFile;
struct LayerData;
struct ProjectData;

/// A layer bitmap that is read band by band. The bytes of a small file are kept in memory; a large
/// file is read again for each band.
class LayerBitmap
{
public:
    enum class Problem
    {
        None,
        /// There is no such file.
        Missing,
        /// It cannot be read or is not a grey TGA file.
        Unreadable,
        WrongSize,
        /// Its path leads out of the project's folder.
        Outside,
    };

    /// size is the required size; an empty one accepts any.
    explicit LayerBitmap(const QString& path, QSize size = {});
    /// Opens the bitmap of a layer; its size must be that of the project's layers.
    LayerBitmap(const ProjectData& project, const LayerData& layer);

    Problem GetProblem() const { return m_problem; }
    /// The problem in words, without the file's name; empty for none.
    const QString& Error() const { return m_error; }
    bool IsCutOff() const { return m_bands && m_bands->IsCutOff(); }
    /// The size in the header, in pixels.
    QSize Size() const { return m_size; }
    /// 0 if there is a problem.
    int BandCount() const { return m_bands ? m_bands->Count() : 0; }
    /// True only for a band without set pixels.
    bool IsClear(int band) const { return m_bands && m_bands->IsClear(band); }
    /// Returns a null image after printing an error. Bands count from the bottom; see TargaBands.
    QImage Band(int band) const;
    /// Returns false after printing an error.
    bool CountPixels(raster::PixelCounts& counts) const;

    void PrintProblem() const;
    /// Prints a warning if some pixels were missing and have been filled up.
    void WarnIfCutOff() const;

private:
    void Open(QSize size);
    void PrintFailure() const;
    void Refuse(Problem problem, const QString& error);
    raster::ByteReader MakeReader(QFile& file);

    QString m_path;
    QSize m_size;
    Problem m_problem = Problem::None;
    QString m_error;
    std::unique_ptr<raster::TargaBands> m_bands;
};
