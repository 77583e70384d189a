#include "tool/Commands.h"
#include "tool/DerivedLayers.h"
#include "tool/ProjectData.h"

#include <QCommandLineParser>

namespace {

ToolExit Check(const DerivedLayers& layers)
{
    ToolExit exit = ToolExit::Done;
    layers.ForEachOutdated([&exit](const QString& name, FormulaState state) {
        Console::Print(QStringLiteral("%1: %2").arg(name, StateText(state)));
        exit = ToolExit::Found;
    });
    return exit;
}

ToolExit Derive(const QStringList& files, const QCommandLineParser& options)
{
    ProjectData project;
    if (!ReadProject(files.first(), project)) {
        return ToolExit::Unreadable;
    }
    DerivedLayers layers;
    if (const auto exit = layers.Open(project, files.mid(1))) {
        return *exit;
    }
    if (options.isSet(QStringLiteral("check"))) {
        return Check(layers);
    }
    if (!layers.Compute()) {
        return ToolExit::Unreadable;
    }
    const auto print = [](const QString& path) { Console::Print(path); };
    return layers.Write(print) ? ToolExit::Done : ToolExit::NotWritten;
}

} // namespace

Command DeriveCommand()
{
    Command command{
        QStringLiteral("derive"),
        QStringLiteral("PROJECT [LAYER]..."),
        1,
        QStringLiteral("Compute layers anew from the formulas that the project keeps of them.\n"
                       "Computes the layers and what they are made of, or without LAYER all, and\n"
                       "replaces their bitmaps, hand edits too, or none if something fails.\n"
                       "Prints the names of the files."),
        {{QStringLiteral("check"),
          QStringLiteral("Write nothing, print what is out of date or edited by hand, and end "
                         "with 1 if anything is.")}},
        Derive};
    command.takesMore = true;
    return command;
}
