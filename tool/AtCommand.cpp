#include "tool/Commands.h"
#include "tool/FileKind.h"
#include "tool/PlaceAnswers.h"
#include "tool/Places.h"
#include "tool/ProjectData.h"

#include <QCommandLineParser>

namespace {

ToolExit WrongArguments(const QString& error)
{
    return UsageError(QStringLiteral("at"), error);
}

ToolExit At(const QStringList& arguments, const QCommandLineParser& options)
{
    const QString& path = arguments.first();
    const PlaceUnit unit =
        options.isSet(QStringLiteral("pixel")) ? PlaceUnit::Pixels : PlaceUnit::Metres;
    const bool isPlaceGiven = arguments.size() > 1;
    std::vector<PlaceNumbers> places(isPlaceGiven ? 1 : 0);
    if (isPlaceGiven) {
        const QString error = ParsePlace(arguments.mid(1), unit, places.front());
        if (!error.isEmpty()) {
            return WrongArguments(error);
        }
    }
    FileKind kind = FileKind::Project;
    if (!FindKind(path, kind)) {
        return ToolExit::Unreadable;
    }
    if (kind != FileKind::Project && kind != FileKind::Map) {
        return WrongArguments(QStringLiteral("a project or a map is needed."));
    }
    AreaFlagTypes types;
    if (const auto error =
            ReadTypesOption(QStringLiteral("at"), options, kind == FileKind::Map, types)) {
        return *error;
    }
    if (!isPlaceGiven && !ReadPlaces(unit, places)) {
        return ToolExit::Unreadable;
    }
    PlaceAnswers answers;
    const bool isAnswered = kind == FileKind::Project ? AskProject(path, places, unit, answers)
                                                      : AskMap(path, types, places, unit, answers);
    if (!isAnswered) {
        return ToolExit::Unreadable;
    }
    answers.Print(options.isSet(QStringLiteral("json")));
    return ToolExit::Done;
}

} // namespace

Command AtCommand()
{
    Command command = {
        QStringLiteral("at"),
        QStringLiteral("PROJECT|MAP [X Z]"),
        1,
        QStringLiteral(
            "Show what is at a place: flags, layers and zones.\n"
            "X and Z are metres from the bottom left corner of the world. Without them,\n"
            "places are read from the standard input, one 'X Z' a line. The words are the\n"
            "fields of the area map."),
        {{QStringLiteral("pixel"),
          QStringLiteral("X and Z are column and row of a layer pixel, from the top left.")},
         TypesOption(),
         {QStringLiteral("json"), QStringLiteral("Print the places as JSON.")}},
        At};
    command.numberCount = 2;
    return command;
}
