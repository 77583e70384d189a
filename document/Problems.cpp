#include "document/Problems.h"

#include "app/NameRules.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/ProjectNumbers.h"
#include "layers/BitmapState.h"
#include "layers/rules/LayerRules.h"
#include "layers/rules/SettingsRules.h"
#include "territories/TerritoryRecords.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <utility>

namespace {

using Aspect = Document::LayerAspect;

const QString BitmapFolder = QStringLiteral("layers");

const ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

template <typename Items>
QStringList NamesOf(const Items& items)
{
    QStringList names;
    for (const auto* item : items) {
        names.append(item->text());
    }
    return names;
}

} // namespace

Problems::Problems(Document& document, ProjectNumbers& numbers)
    : m_document(document)
    , m_numbers(numbers)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &Problems::Work);
    ConnectDocument();
    connect(&numbers, &ProjectNumbers::Changed, this, &Problems::FollowNumbers);
    numbers.Want(*this, ProjectNumbers::Wanted::Layers);
}

Problems::~Problems() = default;

void Problems::ConnectDocument()
{
    connect(&m_document, &Document::LayerChanged, this,
            [this](const Layer*, Aspect aspect) { FollowLayer(static_cast<int>(aspect)); });
    connect(&m_document, &Document::ZonesChanged, this, &Problems::FollowTerritory);
    connect(&m_document, &Document::TerritoryChanged, this, &Problems::FollowTerritory);
    connect(&m_document, &Document::TypeChanged, this, &Problems::FollowType);
    connect(&m_document, &Document::FormulaChanged, this, [this] {
        m_areLayersStale = true;
        Wake();
    });
    connect(&m_document, &Document::FlagTypesChanged, this, [this] {
        m_areNamesStale = true;
        m_areSettingsStale = true;
        m_areLayersStale = true;
        Wake();
    });
    connect(&m_document, &Document::BackgroundPictureChanged, this, &Problems::CheckFiles);
    connect(&m_document, &Document::Saved, this, [this] {
        // The file has them no more, and the bitmaps are the program's own.
        m_leftOut.clear();
        m_savedLayers = NamesOf(m_document.Layers().Layers());
        m_areBitmapsForeign = false;
        m_areNamesStale = true;
        CheckFiles();
    });
    connect(&m_document, &Document::AboutToClear, this, &Problems::Forget);
    connect(&m_document, &Document::HistoryBegan, this, &Problems::Begin);
    // A stroke, a load or a save has ended.
    connect(&m_document, &Document::HistoryChanged, this, [this] {
        if ((IsAnyStale() || m_hasNews) && !m_timer.isActive()) {
            Wake();
        }
    });
}

void Problems::FollowLayer(int aspect)
{
    switch (static_cast<Aspect>(aspect)) {
    case Aspect::Rows:
    case Aspect::Name:
        m_areNamesStale = true;
        m_areLayersStale = true;
        m_areFilesStale = true;
        break;
    case Aspect::Flags:
        m_areLayersStale = true;
        break;
    case Aspect::Pixels:
        // The numbers tell when they are counted again. Until then the hand has not rested.
        if (m_document.LayerFormulas().HasAny()) {
            m_areLayersStale = true;
        }
        break;
    default:
        return;
    }
    Wake();
}

void Problems::FollowTerritory(const Territory* territory)
{
    const TerritoryType* type = territory->GetType();
    for (auto& [id, part] : m_types) {
        // One that was removed has no type.
        if (type ? type->Id() == id : part.territoryIds.contains(territory->Id())) {
            MakeStale(id, part);
        }
    }
    Wake();
}

void Problems::FollowType(const TerritoryType* type)
{
    m_areNamesStale = true;
    m_areTypesStale = true;
    const auto found = m_types.find(type->Id());
    if (found != m_types.end()) {
        MakeStale(found->first, found->second);
    }
    Wake();
}

void Problems::FollowNumbers()
{
    const QVector<Layer*> layers = m_document.Layers().Layers();
    bool hasChanged = false;
    for (const Layer* layer : layers) {
        const std::optional<PixelNumbers> numbers = m_numbers.Layers().OfLayer(layer->Id());
        if (!numbers) {
            continue;
        }
        const auto known = m_tallies.constFind(layer->Id());
        if (known == m_tallies.cend() || known->covered != numbers->pixels ||
            known->greys != numbers->greys) {
            m_tallies.insert(layer->Id(), {numbers->pixels, numbers->greys});
            hasChanged = true;
        }
    }
    if (hasChanged && m_isOpen) {
        m_areLayersStale = true;
        Hurry();
    }
    TellState();
}

void Problems::CheckForeignFiles()
{
    m_areBitmapsForeign = true;
    CheckFiles();
}

QDir Problems::Folder() const
{
    // A project that is only viewed leaves the settings in the folder of file dialogs.
    const QString path = m_document.Path();
    return path.isEmpty() ? Settings().Dir() : QFileInfo(path).dir();
}

void Problems::FollowFolder()
{
    if (OrphanBitmaps(Folder().filePath(BitmapFolder), {}) != m_bitmapNames) {
        CheckFiles();
    }
}

void Problems::CheckFiles()
{
    if (m_isOpen) {
        m_areFilesStale = true;
        Wake();
    }
}

void Problems::Begin(bool isSaved)
{
    Forget();
    m_isOpen = true;
    m_leftOut = m_document.Layers().LeftOut();
    m_savedLayers = NamesOf(m_document.Layers().Layers());
    m_areBitmapsForeign = isSaved;
    m_areNamesStale = true;
    m_areSettingsStale = true;
    m_areLayersStale = true;
    m_areTypesStale = true;
    m_areFilesStale = true;
    Wake();
}

void Problems::Forget()
{
    m_isOpen = false;
    m_timer.stop();
    m_files.Cancel();
    m_check.reset();
    m_types.clear();
    m_tallies.clear();
    m_leftOut.clear();
    m_savedLayers.clear();
    m_backgroundFault.clear();
    for (Part* part : {&m_names, &m_settings, &m_layers, &m_bitmaps}) {
        part->reset();
    }
    m_areNamesStale = false;
    m_areSettingsStale = false;
    m_areLayersStale = false;
    m_areTypesStale = false;
    m_areFilesStale = false;
    m_hasNews = false;
    emit Changed();
    TellState();
}

std::vector<Problems::Part> Problems::Parts() const
{
    std::vector<Part> parts;
    const auto add = [&parts](const Part& part) {
        if (part && !part->empty()) {
            parts.push_back(part);
        }
    };
    add(m_names);
    add(m_settings);
    add(m_layers);
    add(m_bitmaps);
    for (const auto& [id, part] : m_types) {
        add(part.found);
    }
    return parts;
}

bool Problems::IsUpToDate() const
{
    return !m_isOpen ||
           (!IsAnyStale() && !m_hasNews && !m_files.IsBusy() && m_numbers.IsUpToDate());
}

bool Problems::IsAnyStale() const
{
    return m_areNamesStale || m_areSettingsStale || m_areLayersStale || m_areTypesStale ||
           m_areFilesStale;
}

void Problems::Wake()
{
    if (m_isOpen) {
        m_timer.start(m_rest);
        TellState();
    }
}

void Problems::TellState()
{
    const bool isUpToDate = IsUpToDate();
    if (isUpToDate != std::exchange(m_wasUpToDate, isUpToDate)) {
        emit StateChanged();
    }
}

void Problems::Hurry()
{
    if (m_isOpen && (IsAnyStale() || m_hasNews)) {
        m_timer.start(0);
    }
}

void Problems::Work()
{
    if (m_document.IsBusy()) {
        // HistoryChanged tells when that ends.
        return;
    }
    if (m_document.IsApplying()) {
        Wake();
        return;
    }
    if (m_observer) {
        m_observer(true);
    }
    constexpr qint64 sliceNanoseconds = 1'500'000;
    QElapsedTimer clock;
    clock.start();
    const auto isTimeUp = [&clock] { return clock.nsecsElapsed() > sliceNanoseconds; };
    bool isLeft = Step(isTimeUp);
    while (isLeft && !isTimeUp()) {
        isLeft = Step(isTimeUp);
    }
    if (isLeft) {
        m_timer.start(0);
    } else if (std::exchange(m_hasNews, false)) {
        emit Changed();
    }
    TellState();
    if (m_observer) {
        m_observer(false);
    }
}

bool Problems::Step(const std::function<bool()>& isTimeUp)
{
    if (std::exchange(m_areNamesStale, false)) {
        CheckAllNames();
        return true;
    }
    if (std::exchange(m_areFilesStale, false)) {
        BeginFiles();
        return true;
    }
    if (std::exchange(m_areSettingsStale, false)) {
        CheckProjectSettings();
        return true;
    }
    if (m_areLayersStale) {
        if (m_document.LayerFormulas().ReadMasks(isTimeUp)) {
            m_areLayersStale = false;
            CheckAllLayers();
        }
        return true;
    }
    return m_areTypesStale && CheckTypes(isTimeUp);
}

Problems::Layers Problems::PresentLayers() const
{
    const QVector<Layer*> layers = m_document.Layers().Layers();
    return {layers.begin(), layers.end()};
}

/// layers: those that the indexes of the findings count.
Problems::Part Problems::Located(const Findings& findings, const Layers& layers) const
{
    const QVector<TerritoryType*> types = m_document.Types().Types();
    ProblemList problems;
    problems.reserve(static_cast<std::size_t>(findings.size()));
    for (const Finding& finding : findings) {
        Problem problem{finding, {}, {}, {}, {}};
        const int index = finding.subject.index;
        if (finding.subject.kind == FindingSubject::Kind::Type) {
            problem.type = types.value(index);
        } else if (finding.subject.kind == FindingSubject::Kind::Layer && index >= 0 &&
                   index < static_cast<int>(layers.size())) {
            problem.layer = layers[static_cast<std::size_t>(index)];
        }
        problems.push_back(problem);
    }
    return std::make_shared<const ProblemList>(std::move(problems));
}

void Problems::Show(Part& part, const Findings& findings, const Layers& layers)
{
    part = Located(findings, layers);
    m_hasNews = true;
}

void Problems::CheckAllNames()
{
    const AreaFlagTypes& flagTypes = Settings().FlagTypes();
    ProjectNames names{{},
                       NamesOf(m_document.Layers().Layers()),
                       NamesOf(m_document.Types().Types()),
                       flagTypes.usages.toList(),
                       flagTypes.values.toList(),
                       {}};
    // A project that was never saved has no name yet.
    if (!Settings().FileName().isEmpty() || !Settings().Name().isEmpty()) {
        names.project = Settings().Name();
    }
    // Territories are checked with their types.
    Findings findings;
    CheckProjectNames(names, findings);
    Show(m_names, findings, PresentLayers());
}

void Problems::CheckProjectSettings()
{
    const ProjectSettings& settings = Settings();
    SettingsFacts facts;
    facts.layerSize = settings.LayerSize();
    facts.worldSize = {settings.WorldWidth(), settings.WorldHeight()};
    facts.usageCount = settings.FlagTypes().usages.size();
    facts.valueCount = settings.FlagTypes().values.size();
    facts.background = settings.BackgroundFile();
    facts.backgroundFault = m_backgroundFault;
    Findings findings;
    CheckSettings(facts, findings);
    Show(m_settings, findings, {});
}

void Problems::CheckAllLayers()
{
    const QVector<Layer*> layers = m_document.Layers().Layers();
    const Formulas& formulas = m_document.LayerFormulas();
    Findings findings;
    for (int i = 0; i < layers.size(); ++i) {
        const Layer& layer = *layers[i];
        const FindingSpot spot = LayerSpot(i, layer.text());
        CheckLayerFlags(spot, layer.UsageFlags(), layer.ValueFlags(), Settings().FlagTypes(),
                        findings);
        const auto tally = m_tallies.constFind(layer.Id());
        if (tally != m_tallies.cend()) {
            CheckLayerPixels(spot, tally->covered, tally->greys, findings);
        }
        CheckFormula(spot, formulas.StateOf(layer), findings);
    }
    Show(m_layers, findings, PresentLayers());
}

void Problems::BeginFiles()
{
    const ProjectSettings& settings = Settings();
    ProjectFacts facts;
    facts.path = m_document.Path();
    const QDir folder = Folder();
    facts.bitmapFolder = folder.filePath(BitmapFolder);
    m_bitmapNames = OrphanBitmaps(facts.bitmapFolder, {});
    facts.layers = NamesOf(m_document.Layers().Layers());
    facts.leftOut = m_leftOut;
    facts.saved = m_savedLayers;
    facts.layerSize = settings.LayerSize();
    if (!settings.BackgroundFile().isEmpty()) {
        facts.background = folder.path() + QLatin1Char('/') + settings.BackgroundFile();
    }
    facts.areBitmapsForeign = m_areBitmapsForeign;
    m_files.Begin(facts, this, [this, layers = PresentLayers()](const FileFindings& found) {
        // Told by the next slice: the hand may be at work now.
        Show(m_bitmaps, found.bitmaps, layers);
        m_backgroundFault = found.backgroundFault;
        m_areSettingsStale = true;
        Hurry();
    });
}
