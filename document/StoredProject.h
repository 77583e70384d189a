#pragma once

#include "layers/LayerList.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// A state of a project that is kept outside of it: what a journal holds, or an earlier version.
struct StoredProject
{
    /// The document, as ProjectReader reads it.
    QByteArray text;
    /// Gives the masks of its layers.
    MaskSource masks;
    /// Where the document was or will be saved; empty for a project that was never saved.
    QString path;
    /// The folder that the names in the document start from, when it has no path; may be empty.
    QString folder = {};
    /// The files on disk that are the project's own, apart from other files beside them.
    QStringList files = {};
    /// The document of the formulas, where they are not in the text; empty for none.
    QByteArray formulas = {};
};
