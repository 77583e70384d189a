#pragma once

#include <QString>

class LayerList;
class QIODevice;
class TerritoryTypeList;

/// The exit codes of a batch run. The editor returns that of the event loop.
enum ExitCode
{
    ExitDone = 0,
    ExitBadArguments = 1,
    ExitNoConfig = 2,
    ExitNoOutputFolder = 3,
};

/// Reads the parts of a project document that a batch run needs, in one pass. Layers and zones get
/// the sizes only if these stand before them. Flag types are not read.
void ReadBatchDocument(QIODevice& device, LayerList& layers, TerritoryTypeList& types);

/// Reads the project document at configPath and writes its area map and territory type files.
///
/// The map goes into outputPath. A relative one starts at the document's folder. If it is empty,
/// the map goes into CONFIGDIR/TYPED/Output, where TYPED is the folder part of configPath as typed.
/// Layer bitmaps are read from "layers" and territory type files written to "territoryTypes" below
/// the working directory. The flag types of the document are not read, so the map holds no flags.
/// If the map or a type cannot be written, that is logged, and the result is ExitDone all the same.
/// What is written takes its places together.
ExitCode RunBatchExport(const QString& configPath, const QString& outputPath);
