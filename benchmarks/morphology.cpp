// Compares our morphology and set operations with a plain copy of the mask and with OpenCV with the
// same disc, all in one run. Each round measures every version once with empty caches, and the
// ratios are those of the medians. Times are in milliseconds. A name that starts with "x" says how
// many times faster ours is than the other; one that ends in "/copy" says how many copies take the
// time of ours.

#include "layers/raster/Morphology.h"
#include "benchmarks/support/ColdTime.h"
#include "layers/raster/DiscShape.h"
#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"
#include "layers/raster/TargaCodec.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int WorldSize = 2048;
constexpr int DenseSize = 8192;

/// The versions that are measured under one name. Slow ones are measured fewer times.
struct Way
{
    std::string name;
    Work work;
    int rounds;
    std::vector<double> times;

    double Median()
    {
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }
};

void MeasureInterleaved(std::vector<Way>& ways)
{
    const auto mostRounds = [](const Way& a, const Way& b) { return a.rounds < b.rounds; };
    const int rounds = std::max_element(ways.begin(), ways.end(), mostRounds)->rounds;
    for (int round = 0; round < rounds; ++round) {
        for (Way& way : ways) {
            if (round < way.rounds) {
                way.times.push_back(ColdMilliseconds(way.work));
            }
        }
    }
}

float ValueAt(int x, int y, int octave)
{
    quint32 hash = quint32(x) * 374761393U + quint32(y) * 668265263U + quint32(octave) * 974711U;
    hash = (hash ^ hash >> 13) * 1274126177U;
    return static_cast<float>((hash ^ hash >> 16) >> 8) / float(1 << 24);
}

/// Value noise of one octave: random values on a grid, blended smoothly in between.
float NoiseAt(int x, int y, int grid, int octave)
{
    const auto blend = [](float from, float to, float at) {
        return from + (to - from) * at * at * (3 - 2 * at);
    };
    const float atX = static_cast<float>(x % grid) / static_cast<float>(grid);
    const float atY = static_cast<float>(y % grid) / static_cast<float>(grid);
    const int left = x / grid;
    const int top = y / grid;
    const float above = blend(ValueAt(left, top, octave), ValueAt(left + 1, top, octave), atX);
    const float below =
        blend(ValueAt(left, top + 1, octave), ValueAt(left + 1, top + 1, octave), atX);
    return blend(above, below, atY);
}

template <typename PixelAt>
QImage MakeMask(int size, PixelAt pixelAt)
{
    QImage mask = raster::BlankMask({size, size});
    for (int y = 0; y < size; ++y) {
        uchar* row = mask.scanLine(y);
        for (int x = 0; x < size; ++x) {
            row[x] = static_cast<uchar>(pixelAt(x, y));
        }
    }
    return mask;
}

/// Areas with coasts at all scales, as they are on a map.
QImage NaturalShapes(int size)
{
    return MakeMask(size, [](int x, int y) {
        float height = 0;
        float weight = 1;
        for (int octave = 0, grid = 256; octave < 6; ++octave, grid /= 2, weight /= 2) {
            height += weight * NoiseAt(x, y, grid, octave);
        }
        return height > 1.1F ? 255 : 0;
    });
}

QImage RandomMask(int size, quint32 indices)
{
    std::mt19937 random(1);
    return MakeMask(size, [&](int, int) { return random() % indices * (255 / (indices - 1)); });
}

/// Random set pixels, one in so many.
QImage SparseNoise(int size, quint32 period)
{
    std::mt19937 random(1);
    return MakeMask(size, [&](int, int) { return random() % period == 0 ? 255 : 0; });
}

QImage Checkerboard(int size)
{
    return MakeMask(size, [](int x, int y) { return (x + y) % 2 * 255; });
}

/// Noise with long gaps in each row.
QImage HalfNoise(int size)
{
    std::mt19937 random(1);
    return MakeMask(size, [&](int x, int) { return x % 200 < 150 ? random() % 2 * 255 : 0; });
}

QImage HalfCheckerboard(int size)
{
    return MakeMask(size, [size](int x, int y) { return x < size / 2 ? (x + y) % 2 * 255 : 0; });
}

QImage Lines(int size)
{
    return MakeMask(size, [](int x, int) { return x % 26 == 0 ? 255 : 0; });
}

struct NamedMask
{
    std::string name;
    QImage mask;
};

/// The example's layers, if they exist.
std::vector<NamedMask> ExampleLayers()
{
    std::vector<NamedMask> layers;
    const QDir folder(QStringLiteral(QUILLMAP_EXAMPLE_LAYERS));
    for (const QString& name : folder.entryList({QStringLiteral("*.tga")}, QDir::Files)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QByteArray bytes = file.readAll();
        const auto* pixels = reinterpret_cast<const uchar*>(bytes.constData());
        const QImage mask = raster::DecodeTarga(pixels, bytes.size(), {WorldSize, WorldSize}).mask;
        if (!mask.isNull()) {
            layers.push_back({name.toStdString(), mask});
        }
    }
    return layers;
}

std::vector<NamedMask> Masks(int size)
{
    return {{"natural", NaturalShapes(size)},
            {"noise", RandomMask(size, 2)},
            {"sparse_noise", SparseNoise(size, 30)},
            {"checkerboard", Checkerboard(size)},
            {"half_noise", HalfNoise(size)},
            {"half_checkerboard", HalfCheckerboard(size)},
            {"lines", Lines(size)},
            {"full", raster::Complement(raster::BlankMask({size, size}))},
            {"empty", MakeMask(size, [](int, int) { return 0; })}};
}

cv::Mat ToMatrix(const QImage& mask)
{
    return {mask.height(), mask.width(), CV_8U, const_cast<uchar*>(mask.constBits()),
            static_cast<std::size_t>(mask.bytesPerLine())};
}

/// Makes our disc for OpenCV, whose own ellipse differs from it.
cv::Mat ToKernel(float radius)
{
    const int picture = static_cast<int>(radius) + 2;
    const raster::DiscShape disc(radius, QSize(picture, picture));
    const int last = disc.Radius();
    cv::Mat kernel = cv::Mat::zeros(2 * last + 1, 2 * last + 1, CV_8U);
    for (int dy = -last; dy <= last; ++dy) {
        const int half = disc.HalfChord(std::abs(dy));
        kernel.row(dy + last).colRange(last - half, last + half + 1).setTo(1);
    }
    return kernel;
}

bool AreEqual(const QImage& mask, const cv::Mat& matrix)
{
    return cv::norm(ToMatrix(mask), matrix, cv::NORM_INF) == 0;
}

/// Dilation with OpenCV's precise distance transform, which is inexact for some pictures.
void DilateByDistances(const cv::Mat& mask, float radius, cv::Mat& result)
{
    cv::Mat clear;
    cv::Mat distances;
    cv::bitwise_not(mask, clear);
    cv::distanceTransform(clear, distances, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    cv::compare(distances, std::sqrt(radius * radius + 0.5F), result, cv::CMP_LE);
}

/// Nanoseconds a pixel of the usual world size, by mask and radius.
std::map<std::string, double>& UsualTimes()
{
    static std::map<std::string, double> times;
    return times;
}

void ReportTimes(benchmark::State& state, std::vector<Way>& ways, double own)
{
    for (Way& way : ways) {
        state.counters[way.name] = way.Median();
    }
    state.counters["own/copy"] = own / ways.front().Median();
    state.SetIterationTime(own / 1000);
}

struct Case
{
    std::string name;
    QImage mask;
    float radius;
    /// Whether OpenCV is measured too, which takes long for large radii and pictures.
    bool isCompared;
};

void CompareMorphology(benchmark::State& state, const Case& measured)
{
    const QImage& mask = measured.mask;
    const float radius = measured.radius;
    const cv::Mat matrix = ToMatrix(mask);
    std::vector<uchar> copy(static_cast<std::size_t>(mask.sizeInBytes()));
    QImage dilated;
    QImage eroded;
    std::vector<Way> ways = {
        {"copy", [&] { std::memcpy(copy.data(), mask.constBits(), copy.size()); }, 15, {}},
        {"dilate", [&] { dilated = raster::Dilate(mask, radius); }, 15, {}},
        {"erode", [&] { eroded = raster::Erode(mask, radius); }, 15, {}},
    };
    cv::Mat kernel;
    cv::Mat cvDilated;
    cv::Mat cvEroded;
    cv::Mat cvByDistance;
    if (measured.isCompared) {
        const int rounds = radius > 20 ? 1 : 5;
        kernel = ToKernel(radius);
        ways.push_back({"cv_dilate", [&] { cv::dilate(matrix, cvDilated, kernel); }, rounds, {}});
        ways.push_back({"cv_erode", [&] { cv::erode(matrix, cvEroded, kernel); }, rounds, {}});
        ways.push_back(
            {"cv_distance", [&] { DilateByDistances(matrix, radius, cvByDistance); }, 3, {}});
    }
    for (auto _ : state) {
        MeasureInterleaved(ways);
        const double own = ways[1].Median();
        ReportTimes(state, ways, own);
        const std::string key = measured.name + std::to_string(radius);
        const double perPixel = own * 1e6 / double(mask.width()) / double(mask.height());
        if (mask.width() == WorldSize) {
            UsualTimes()[key] = perPixel;
        } else if (UsualTimes().count(key) != 0) {
            state.counters["pixel/usual"] = perPixel / UsualTimes()[key];
        }
        if (!measured.isCompared) {
            continue;
        }
        state.counters["xcv_dilate"] = ways[3].Median() / own;
        state.counters["xcv_erode"] = ways[4].Median() / ways[2].Median();
        if (AreEqual(dilated, cvByDistance)) {
            state.counters["xcv_distance"] = ways[5].Median() / own;
        } else {
            state.SetLabel("distances inexact");
        }
        if (!AreEqual(dilated, cvDilated) || !AreEqual(eroded, cvEroded)) {
            state.SkipWithError("differs from OpenCV");
        }
    }
}

void CompareGrey(benchmark::State& state, float radius)
{
    const QImage mask = RandomMask(WorldSize, 256);
    const cv::Mat matrix = ToMatrix(mask);
    const cv::Mat kernel = ToKernel(radius);
    QImage dilated;
    cv::Mat cvDilated;
    std::vector<uchar> copy(static_cast<std::size_t>(mask.sizeInBytes()));
    std::vector<Way> ways = {
        {"copy", [&] { std::memcpy(copy.data(), mask.constBits(), copy.size()); }, 5, {}},
        {"dilate", [&] { dilated = raster::Dilate(mask, radius); }, 5, {}},
        {"cv_dilate", [&] { cv::dilate(matrix, cvDilated, kernel); }, 1, {}},
    };
    for (auto _ : state) {
        MeasureInterleaved(ways);
        ReportTimes(state, ways, ways[1].Median());
        state.counters["xcv_dilate"] = ways[2].Median() / ways[1].Median();
        if (!AreEqual(dilated, cvDilated)) {
            state.SkipWithError("differs from OpenCV");
        }
    }
}

/// Without OpenCV, whose kernel would have four times as many offsets as the picture has pixels.
void MeasureGreyBeyondTheDiagonal(benchmark::State& state, int size)
{
    const QImage mask = RandomMask(size, 256);
    QImage dilated;
    std::vector<uchar> copy(static_cast<std::size_t>(mask.sizeInBytes()));
    std::vector<Way> ways = {
        {"copy", [&] { std::memcpy(copy.data(), mask.constBits(), copy.size()); }, 5, {}},
        {"dilate", [&] { dilated = raster::Dilate(mask, float(2 * mask.width())); }, 5, {}},
    };
    for (auto _ : state) {
        MeasureInterleaved(ways);
        ReportTimes(state, ways, ways[1].Median());
    }
}

void CompareSetOperations(benchmark::State& state, int size)
{
    const QImage a = NaturalShapes(size);
    const QImage b = raster::Complement(a);
    QImage result;
    std::vector<uchar> copy(static_cast<std::size_t>(a.sizeInBytes()));
    std::vector<Way> ways = {
        {"copy", [&] { std::memcpy(copy.data(), a.constBits(), copy.size()); }, 25, {}},
        {"complement", [&] { result = raster::Complement(a); }, 25, {}},
        {"union", [&] { result = raster::Union(a, b); }, 25, {}},
        {"intersection", [&] { result = raster::Intersection(a, b); }, 25, {}},
        {"difference", [&] { result = raster::Difference(a, b); }, 25, {}},
    };
    for (auto _ : state) {
        MeasureInterleaved(ways);
        ReportTimes(state, ways, ways[1].Median());
        for (std::size_t i = 1; i < ways.size(); ++i) {
            state.counters[ways[i].name + "/copy"] = ways[i].Median() / ways[0].Median();
        }
    }
}

template <typename Function, typename Argument>
void Register(const std::string& name, Function function, const Argument& argument)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { function(state, argument); })
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

void RegisterMorphology(const NamedMask& named, float radius, bool isCompared)
{
    const std::string size = std::to_string(named.mask.width());
    Register("morphology/" + size + "/" + named.name + "/radius:" + std::to_string(int(radius)),
             CompareMorphology, Case{named.name, named.mask, radius, isCompared});
}

} // namespace

int main(int argc, char* argv[])
{
    cv::setNumThreads(1);
    benchmark::Initialize(&argc, argv);
    std::vector<NamedMask> usual = Masks(WorldSize);
    const std::vector<NamedMask> example = ExampleLayers();
    usual.insert(usual.end(), example.begin(), example.end());
    for (const NamedMask& named : usual) {
        for (const float radius : {1.0F, 3.0F, 13.0F, 50.0F, 133.0F, 266.0F}) {
            RegisterMorphology(named, radius, true);
        }
    }
    for (const NamedMask& named : Masks(DenseSize)) {
        RegisterMorphology(named, 3, named.name == "natural");
        RegisterMorphology(named, 266, false);
    }
    Register("grey/2048/radius:133", CompareGrey, 133.0F);
    Register("grey/2048/beyond_diagonal", MeasureGreyBeyondTheDiagonal, WorldSize);
    Register("set_operations/2048", CompareSetOperations, WorldSize);
    Register("set_operations/8192", CompareSetOperations, DenseSize);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
