#pragma once

#include "tests/tool/SampleProject.h"

#include <QMetaType>
#include <QStringList>

#include <functional>

/// The sample, with its second zone within the world. It breaks no rule of `check`.
class CleanProject : public SampleProject
{
public:
    CleanProject() { Replace("x=\"800\" z=\"0\"", "x=\"700\" z=\"100\""); }
};

/// A change that breaks a rule.
using Break = std::function<void(SampleProject&)>;
Q_DECLARE_METATYPE(Break)

Break Replacing(const QByteArray& before, const QByteArray& after);

/// Breaks a clean project, and fails the test unless `check` prints exactly these findings, such as
/// "error: layer 'Shore': ...", and ends as they demand.
void CheckFindings(const Break& doBreak, const QStringList& findings);
