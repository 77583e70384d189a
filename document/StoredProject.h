#pragma once

#include "layers/LayerList.h"

#include <QByteArray>
#include <QString>

/// A state of a project that is kept outside of it: what a journal holds, or an earlier version.
struct StoredProject
{
    /// The document, as ProjectReader reads it.
    QByteArray text;
    /// Gives the masks of its layers.
    MaskSource masks;
    /// Where the document was or will be saved; empty for a project that was never saved.
    QString path;
};
