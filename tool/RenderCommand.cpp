#include "territories/TerritoryTypeList.h"
#include "tool/Commands.h"
#include "tool/FileKind.h"
#include "tool/InputFiles.h"
#include "tool/MapPicture.h"
#include "tool/PictureFile.h"
#include "tool/Progress.h"
#include "tool/ProjectData.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int MaxPictureLength = 16384;

/// These colours can be told apart with most kinds of colour vision.
constexpr std::array<QRgb, 12> LegendColors = {0xE69F00, 0x56B4E9, 0x009E73, 0xF0E442,
                                               0x0072B2, 0xD55E00, 0xCC79A7, 0x999999,
                                               0x8DD300, 0xA020F0, 0x00E5E5, 0xFF4060};
constexpr int LegendAlpha = 170;

struct RenderOptions
{
    QString output;
    /// The longer side in pixels; 0 for that of the layers.
    int length = 0;
    QStringList flags;
    /// If no layers are chosen, those that the editor shows are drawn. Each text is one name, or
    /// several with commas between.
    bool areLayersChosen = false;
    QStringList layers;
    bool doDrawZones = false;
};

ToolExit WrongOption(const QString& error)
{
    return UsageError(QStringLiteral("render"), error);
}

QSize PictureSize(QSize layerSize, int length)
{
    const int longer = std::max(layerSize.width(), layerSize.height());
    const int wanted = length > 0 ? length : std::min(longer, MaxPictureLength);
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>(qint64(side) * wanted / std::max(longer, 1)));
    };
    return {scaled(layerSize.width()), scaled(layerSize.height())};
}

/// Steps of the golden angle keep any number of hues apart.
QColor LegendColor(int index)
{
    constexpr double goldenAngle = 137.50776405;
    const auto hue = static_cast<int>(std::fmod(index * goldenAngle, 360));
    constexpr int saturation = 200;
    const bool isFixed = index < static_cast<int>(LegendColors.size());
    QColor color = isFixed ? QColor(LegendColors[static_cast<std::size_t>(index)])
                           : QColor::fromHsv(hue, saturation, index % 2 == 0 ? 255 : 150);
    color.setAlpha(LegendAlpha);
    return color;
}

/// The flags that a file may have.
struct KnownFlags
{
    /// Empty if the file holds no names.
    AreaFlagTypes types;
    int usageBits = 0;
    int valueBits = 0;
};

/// -1 if there is no such flag.
int FlagBit(const QString& text, const QString& prefix, const QVector<QString>& names)
{
    static const QRegularExpression number(QStringLiteral("^[0-9]{1,2}$"));
    const int named = names.indexOf(text);
    if (named >= 0 || !text.startsWith(prefix)) {
        return named;
    }
    const QString rest = text.mid(prefix.size());
    const int bit = names.indexOf(rest);
    return bit < 0 && number.match(rest).hasMatch() ? rest.toInt() : bit;
}

/// Finds a flag by its name, or by "usage:" or "value:" and its name or bit.
bool FindFlag(const QString& text, const KnownFlags& known, ShownFlag& flag)
{
    flag.name = text;
    flag.bit = FlagBit(text, QStringLiteral("usage:"), known.types.usages);
    flag.isUsage = flag.bit >= 0 && flag.bit < known.usageBits;
    if (flag.isUsage) {
        return true;
    }
    flag.bit = FlagBit(text, QStringLiteral("value:"), known.types.values);
    return flag.bit >= 0 && flag.bit < known.valueBits;
}

/// Returns false if a flag is not known, and puts its text into unknown.
bool FindFlags(const QStringList& texts, const KnownFlags& known, QVector<ShownFlag>& flags,
               QString& unknown)
{
    for (const QString& text : texts) {
        ShownFlag flag;
        if (!FindFlag(text, known, flag)) {
            unknown = text;
            return false;
        }
        flag.color = LegendColor(flags.size());
        flags.append(flag);
    }
    return true;
}

ToolExit Finish(const RenderOptions& options, MapPicture& picture, const QVector<ShownFlag>& flags)
{
    picture.DrawLegend(flags);
    if (!WritePicture(options.output, picture.Image())) {
        return ToolExit::NotWritten;
    }
    for (const ShownFlag& flag : flags) {
        Console::Print(QStringLiteral("%1 %2").arg(QColor(flag.color.rgb()).name(), flag.name));
    }
    return ToolExit::Done;
}

ToolExit NoMemory(const RenderOptions& options)
{
    Console::PrintError(options.output, QStringLiteral("there is no memory for the picture."));
    return ToolExit::NotWritten;
}

/// Returns false after printing an error.
bool DrawBackground(const ProjectData& project, MapPicture& picture)
{
    if (!project.backgroundFile.isEmpty()) {
        const QImage background = ReadPicture(project.BackgroundPath());
        if (background.isNull()) {
            return false;
        }
        picture.DrawPicture(background);
    }
    picture.Cover(project.backgroundColor);
    return true;
}

/// Splits the texts into names, considering that names may contain commas. Returns false if a name
/// is not in the project.
bool ChosenNames(const ProjectData& project, const QStringList& texts, QSet<QString>& chosen,
                 QString& unknown)
{
    QSet<QString> known;
    for (const LayerData& layer : project.layers) {
        known.insert(layer.name);
    }
    for (const QString& text : texts) {
        const QStringList names = known.contains(text)
                                      ? QStringList{text}
                                      : text.split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (const QString& name : names) {
            if (!known.contains(name)) {
                unknown = name;
                return false;
            }
            chosen.insert(name);
        }
    }
    return true;
}

/// Finds the layers to be drawn, the lowest first. Returns false if one is not in the project.
bool ChooseLayers(const ProjectData& project, const RenderOptions& options,
                  QVector<LayerData>& chosen, QString& unknown)
{
    QSet<QString> names;
    if (!ChosenNames(project, options.layers, names, unknown)) {
        return false;
    }
    for (const LayerData& layer : project.layers) {
        if (options.areLayersChosen ? names.contains(layer.name) : layer.isVisible) {
            chosen.prepend(layer);
        }
    }
    return true;
}

/// Returns false after printing an error.
bool DrawLayers(const ProjectData& project, const QVector<LayerData>& layers, MapPicture& picture)
{
    Progress progress(QStringLiteral("Drawing layers"), layers.size());
    for (const LayerData& layer : layers) {
        if (!picture.DrawMask(LayerBitmap(project, layer), layer.color)) {
            return false;
        }
        progress.Step();
    }
    return true;
}

/// The parts of a project to draw.
struct Drawing
{
    /// The lowest first.
    QVector<LayerData> layers;
    QVector<ShownFlag> flags;
    bool areLayersDrawn = true;
    bool areZonesDrawn = false;
};

/// Returns false after printing an error.
bool DrawProject(const ProjectData& project, Drawing& drawing, MapPicture& picture)
{
    if (!DrawBackground(project, picture) ||
        (drawing.areLayersDrawn && !DrawLayers(project, drawing.layers, picture))) {
        return false;
    }
    if (!drawing.flags.isEmpty()) {
        ProjectFields fields;
        if (!fields.Open(project, ProjectFields::CutOffBitmaps::Fill) ||
            !picture.DrawFlags(fields, drawing.flags)) {
            return false;
        }
    }
    if (drawing.areZonesDrawn) {
        TerritoryTypeList types;
        if (!ReadTypeList(project.path, types)) {
            return false;
        }
        picture.DrawZones(types);
    }
    return true;
}

ToolExit RenderProject(const QString& path, const RenderOptions& options)
{
    ProjectData project;
    if (!ReadProject(path, project)) {
        return ToolExit::Unreadable;
    }
    if (IsInput(options.output, project.Files())) {
        return ToolExit::BadArguments;
    }
    Drawing drawing;
    QString unknown;
    const KnownFlags known{project.flagTypes, raster::FieldBits(project.flagTypes.usages.size()),
                           raster::FieldBits(project.flagTypes.values.size())};
    if (!FindFlags(options.flags, known, drawing.flags, unknown)) {
        return WrongOption(QStringLiteral("there is no flag %1.").arg(Console::Quoted(unknown)));
    }
    if (!ChooseLayers(project, options, drawing.layers, unknown)) {
        return WrongOption(QStringLiteral("there is no layer %1.").arg(Console::Quoted(unknown)));
    }
    const QString sizeError = project.LayerSizeError();
    if (!sizeError.isEmpty()) {
        Console::PrintError(path, sizeError);
        return ToolExit::Unreadable;
    }
    MapPicture picture(project.layerSize, PictureSize(project.layerSize, options.length));
    if (picture.IsNull()) {
        return NoMemory(options);
    }
    drawing.areLayersDrawn = drawing.flags.isEmpty() || options.areLayersChosen;
    drawing.areZonesDrawn = options.doDrawZones;
    return DrawProject(project, drawing, picture) ? Finish(options, picture, drawing.flags)
                                                  : ToolExit::Unreadable;
}

/// The usages, or the values if there are no usages.
QStringList AllFlags(const FieldBands& fields)
{
    const bool hasUsages = fields.UsageBits() > 0;
    const QString text = hasUsages ? QStringLiteral("usage:%1") : QStringLiteral("value:%1");
    QStringList texts;
    for (int bit = 0; bit < (hasUsages ? fields.UsageBits() : fields.ValueBits()); ++bit) {
        texts.append(text.arg(bit));
    }
    return texts;
}

ToolExit RenderMap(const QString& path, const RenderOptions& options)
{
    MapFields fields;
    if (!fields.Open(path)) {
        return ToolExit::Unreadable;
    }
    QVector<ShownFlag> flags;
    QString unknown;
    const QStringList texts = options.flags.isEmpty() ? AllFlags(fields) : options.flags;
    if (!FindFlags(texts, {{}, fields.UsageBits(), fields.ValueBits()}, flags, unknown)) {
        return WrongOption(QStringLiteral("there is no flag %1, a map knows them as usage:BIT and "
                                          "value:BIT.")
                               .arg(Console::Quoted(unknown)));
    }
    MapPicture picture(fields.Size(), PictureSize(fields.Size(), options.length));
    if (picture.IsNull()) {
        return NoMemory(options);
    }
    if (!picture.DrawFlags(fields, flags)) {
        return ToolExit::Unreadable;
    }
    if (options.flags.isEmpty()) {
        const auto isAbsent = [](const ShownFlag& flag) { return !flag.isSeen; };
        flags.erase(std::remove_if(flags.begin(), flags.end(), isAbsent), flags.end());
    }
    return Finish(options, picture, flags);
}

ToolExit RenderBitmap(const QString& path, const RenderOptions& options)
{
    const LayerBitmap bitmap(path);
    if (bitmap.GetProblem() != LayerBitmap::Problem::None) {
        bitmap.PrintProblem();
        return ToolExit::Unreadable;
    }
    MapPicture picture(bitmap.Size(), PictureSize(bitmap.Size(), options.length));
    if (picture.IsNull()) {
        return NoMemory(options);
    }
    picture.Cover(Qt::black);
    return picture.DrawMask(bitmap, Qt::white) ? Finish(options, picture, {})
                                               : ToolExit::Unreadable;
}

ToolExit Render(const QStringList& files, const QCommandLineParser& parser)
{
    RenderOptions options;
    options.output = parser.value(QStringLiteral("output"));
    if (options.output.isEmpty()) {
        return WrongOption(QStringLiteral("the option -o is needed."));
    }
    const QString size = parser.value(QStringLiteral("size"));
    options.length = size.toInt();
    if (parser.isSet(QStringLiteral("size")) &&
        (options.length < 1 || options.length > MaxPictureLength)) {
        return WrongOption(QStringLiteral("a size is 1 to %1.").arg(MaxPictureLength));
    }
    options.flags = parser.values(QStringLiteral("flag"));
    options.areLayersChosen = parser.isSet(QStringLiteral("layers"));
    options.layers = parser.values(QStringLiteral("layers"));
    options.doDrawZones = parser.isSet(QStringLiteral("zones"));
    const QString& path = files.first();
    if (IsInput(options.output, files)) {
        return ToolExit::BadArguments;
    }
    FileKind kind = FileKind::Bitmap;
    if (!FindKind(path, kind)) {
        return ToolExit::Unreadable;
    }
    if (kind != FileKind::Project && (options.areLayersChosen || options.doDrawZones)) {
        return WrongOption(QStringLiteral("only projects have layers and zones."));
    }
    switch (kind) {
    case FileKind::Project:
        return RenderProject(path, options);
    case FileKind::Map:
        return RenderMap(path, options);
    case FileKind::Bitmap:
        return options.flags.isEmpty()
                   ? RenderBitmap(path, options)
                   : WrongOption(QStringLiteral("a layer bitmap has no flags."));
    default:
        return WrongOption(QStringLiteral("a project, map or layer bitmap is needed."));
    }
}

} // namespace

Command RenderCommand()
{
    return {
        QStringLiteral("render"),
        QStringLiteral("FILE"),
        1,
        QStringLiteral("Make a PNG picture of a project, map or layer bitmap.\n"
                       "A project looks as in the editor. With --flag, areas are shown in the "
                       "colours\nof a legend, which is printed too. A map shows its usages "
                       "unless flags are named."),
        {{{QStringLiteral("o"), QStringLiteral("output")},
          QStringLiteral("Write the picture to this file."),
          QStringLiteral("PICTURE")},
         {QStringLiteral("size"),
          QStringLiteral("Length of the longer side (that of the layers by default)."),
          QStringLiteral("PIXELS")},
         {QStringLiteral("flag"),
          QStringLiteral(
              "Show a flag: NAME, usage:NAME or usage:BIT (or value:). May be repeated."),
          QStringLiteral("NAME")},
         {QStringLiteral("layers"),
          QStringLiteral("Show these layers (A,B) instead of the visible ones. May be repeated."),
          QStringLiteral("NAMES")},
         {QStringLiteral("zones"), QStringLiteral("Show the zones of the visible territories.")}},
        Render};
}
