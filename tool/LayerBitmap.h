#pragma once

#include "layers/raster/TargaBands.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

class QFile;
struct LayerData;
struct ProjectData;

/// A layer bitmap that is read band by band. Its bytes are kept when they are few, and otherwise
/// read anew for each band.
class LayerBitmap
{
public:
    enum class Problem
    {
        None,
        /// There is no such file.
        Missing,
        /// It cannot be read, or is no grey TGA file.
        Unreadable,
        WrongSize,
        /// Its place is outside the project's folder.
        Outside,
    };

    /// The size that the image shall have; empty for whatever its header says.
    explicit LayerBitmap(const QString& path, QSize size = {});
    /// That of a layer of the project, which shall have the size of its layers.
    LayerBitmap(const ProjectData& project, const LayerData& layer);

    Problem GetProblem() const { return m_problem; }
    /// The problem in words, without the file; empty for none.
    const QString& Error() const { return m_error; }
    bool IsCutOff() const { return m_bands && m_bands->IsCutOff(); }
    /// That of the header.
    QSize Size() const { return m_size; }
    /// 0 when there is a problem.
    int BandCount() const { return m_bands ? m_bands->Count() : 0; }
    /// True only for a band without set pixels.
    bool IsClear(int band) const { return m_bands && m_bands->IsClear(band); }
    /// Null after a printed error. Bands count from the bottom; see TargaBands.
    QImage Band(int band) const;
    /// False after a printed error.
    bool CountPixels(raster::PixelCounts& counts) const;

    void PrintProblem() const;
    /// Says it when a part of the pixels is missing, and was filled.
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
