#pragma once

#include "document/Problem.h"
#include "document/ProblemFiles.h"
#include "territories/TerritoryRecords.h"

#include <QHash>
#include <QObject>
#include <QPointF>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

class Document;
class QDir;
class ProjectNumbers;

/// What is wrong with the open project, by the rules of `quillmap-tool check`. The window owns it.
///
/// It follows the document, and when the hand has rested for a moment it checks what was touched:
/// the names, the settings, the layers, or one territory type. It works in slices of a few
/// milliseconds when no events wait, and never during a stroke, a drag, a load or a save. The
/// numbers of pixels come from ProjectNumbers. Files are looked at on a thread, after a load and a
/// save, and when other programs changed them.
class Problems : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this object.
    Problems(Document& document, ProjectNumbers& numbers);
    ~Problems() override;
    Q_DISABLE_COPY(Problems)

    using Part = std::shared_ptr<const ProblemList>;
    /// All findings, also those that were accepted. The lists stay as they are; later findings are
    /// in other lists.
    std::vector<Part> Parts() const;
    /// Whether Parts() tells of the project as it is now. False also while files are looked at.
    bool IsUpToDate() const;
    /// For how long the hand must rest before a check; 300 ms at first.
    void SetRest(int milliseconds) { m_rest = milliseconds; }
    /// Checks without waiting until the hand has rested.
    void Hurry();
    /// Looks at the project's files again: another program changed them.
    void CheckForeignFiles();
    /// Looks at them again if bitmaps came or went: something changed in a folder.
    void FollowFolder();

    /// Called before and after each slice on the window's thread.
    using Observer = std::function<void(bool begins)>;
    void SetObserver(Observer observer) { m_observer = std::move(observer); }

signals:
    /// Parts() returns other lists.
    void Changed();
    /// IsUpToDate() returns another value.
    void StateChanged();

private:
    /// The circle of a zone as files hold it, and the scene values from which it was computed.
    struct Written
    {
        QPointF place{qQNaN(), qQNaN()};
        float radius = 0;
        WorldCircle circle;
    };
    struct TypePart
    {
        Part found;
        bool isStale = true;
        /// The territories that it had when its check began last.
        QVector<int> territoryIds;
        /// By zone id.
        std::unordered_map<int, Written> written;
    };
    /// Pixels of a layer.
    struct Tally
    {
        qint64 covered = 0;
        qint64 greys = 0;
    };
    struct TypeCheck;

    void ConnectDocument();
    void FollowLayer(int aspect);
    void FollowTerritory(const Territory* territory);
    void FollowType(const TerritoryType* type);
    void FollowNumbers();
    void CheckFiles();
    QDir Folder() const;
    void Begin(bool isSaved);
    void Forget();
    void Wake();
    void TellState();

    bool IsAnyStale() const;
    void Work();
    bool Step(const std::function<bool()>& isTimeUp);
    using Layers = std::vector<Tracked<Layer>>;
    Layers PresentLayers() const;
    Part Located(const Findings& findings, const Layers& layers) const;
    void Show(Part& part, const Findings& findings, const Layers& layers);
    void CheckAllNames();
    void CheckProjectSettings();
    void CheckAllLayers();
    void BeginFiles();

    void MakeStale(int id, TypePart& part);
    bool CheckTypes(const std::function<bool()>& isTimeUp);
    bool BeginType();
    void BeginType(const TerritoryType& type, int index, TypePart& part);
    void BeginTerritory(TypeCheck& check, Territory& territory);
    void CheckZones(TypeCheck& check, const std::function<bool()>& isTimeUp);
    void CheckOneZone(TypeCheck& check, Zone& zone);
    static const WorldCircle& CircleOf(TypePart& part, const Zone& zone, const ZoneRecord& record);
    void EndType();

    Document& m_document;
    ProjectNumbers& m_numbers;
    /// By layer id, as they were known last.
    QHash<int, Tally> m_tallies;
    ProblemFiles m_files;
    Part m_names;
    Part m_settings;
    Part m_layers;
    Part m_bitmaps;
    /// By the type's id, which is the order of the file.
    std::map<int, TypePart> m_types;
    /// Null while none is under way.
    std::shared_ptr<TypeCheck> m_check;
    /// The layers that the last load left out, while the project's file has them.
    QStringList m_leftOut;
    /// The names of the layers in the project's file. Their bitmaps belong to it until it is saved.
    QStringList m_savedLayers;
    /// The bitmaps in the project's folder when the files were looked at last.
    QStringList m_bitmapNames;
    QString m_backgroundFault;
    /// Whether there is a project.
    bool m_isOpen = false;
    bool m_areNamesStale = false;
    bool m_areSettingsStale = false;
    bool m_areLayersStale = false;
    bool m_areTypesStale = false;
    bool m_areFilesStale = false;
    /// Bitmaps may end too early, unless the program has written them itself.
    bool m_areBitmapsForeign = false;
    /// Changed is due.
    bool m_hasNews = false;
    /// As StateChanged told last.
    bool m_wasUpToDate = true;
    int m_rest = 300;
    QTimer m_timer;
    Observer m_observer;
};
