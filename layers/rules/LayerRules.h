#pragma once

#include "app/Finding.h"
#include "layers/AreaFlagTypes.h"
#include "layers/FormulaState.h"

#include <QString>

// Rules of one layer. None of them needs a mask: counts do.

/// index: the layer's place in the list.
FindingSpot LayerSpot(int index, const QString& name);

/// Appends bits without a type, and a layer without flags.
void CheckLayerFlags(const FindingSpot& layer, quint32 usageFlags, quint32 valueFlags,
                     const AreaFlagTypes& types, Findings& findings);

/// Appends a layer without pixels, and one with grey values. coveredCount: the pixels that are not
/// 0; greyCount: those that are neither 0 nor 255.
void CheckLayerPixels(const FindingSpot& layer, qint64 coveredCount, qint64 greyCount,
                      Findings& findings);

/// Why a layer has no pixels.
enum class BitmapFault
{
    None,
    Missing,
    Unreadable,
    WrongSize,
};

/// Appends a bitmap that is dropped when the project is loaded. error: what is wrong with it, such
/// as "does not exist."
void CheckBitmap(const FindingSpot& layer, BitmapFault fault, const QString& error,
                 Findings& findings);
/// Appends a bitmap that ends before its last pixel.
void AddCutOffBitmap(const FindingSpot& layer, Findings& findings);
/// Appends a bitmap that failed while it was read.
void AddFailedBitmap(const FindingSpot& layer, Findings& findings);
/// Appends a bitmap of the folder "layers" that no layer has. file: its name with the ending.
void AddOrphanBitmap(const QString& file, Findings& findings);

/// Appends a computed layer that is out of date or broken. One that was edited by hand is meant so.
void CheckFormula(const FindingSpot& layer, FormulaState state, Findings& findings);
/// Appends a file of formulas that cannot be read. fault: a sentence without its full stop.
void AddUnreadableFormulas(const QString& file, const QString& fault, Findings& findings);
