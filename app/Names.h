#pragma once

#include <QString>

/// True when a layer or a territory type may have this name, which becomes a file name: something
/// is left after trimming, and none of < > : " / \ | ? * is in it.
bool IsValidName(const QString& name);

/// True when the name, as a path below a folder, has ".." for one of its folders. A file of that
/// name could be anywhere.
bool LeadsUpward(const QString& name);

/// The name itself when it is valid, otherwise a valid one that resembles it.
QString ToValidName(const QString& name);
