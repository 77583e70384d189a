#pragma once

#include <QString>

class LayerList;
class QIODevice;
class TerritoryTypeList;

/// The exit codes of the program; those of the editor are the event loop's.
enum ExitCode
{
    ExitDone = 0,
    ExitBadArguments = 1,
    ExitNoConfig = 2,
    ExitNoOutputFolder = 3,
};

/// Reads what the batch run needs of a project document, in one pass: sizes stand before the layers
/// and zones that need them, or are not there. Flag types are not read.
void ReadBatchDocument(QIODevice& device, LayerList& layers, TerritoryTypeList& types);

/// Reads the project document at configPath and writes its area map and territory type files.
///
/// The map goes into outputPath, or where that is empty into CONFIGDIR/TYPED/Output, TYPED being
/// the folder part of configPath as typed; a relative outputPath is taken from the document's
/// folder. Layer bitmaps are read from "layers" and territory type files written to
/// "territoryTypes" below the working directory. The flag types of the document are not read, so
/// the map holds no flags. A map or a type that cannot be written is logged, and still ends with
/// ExitDone.
ExitCode RunBatchExport(const QString& configPath, const QString& outputPath);
