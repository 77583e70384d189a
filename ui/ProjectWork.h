#pragma once

#include "ui/EditorParts.h"
#include "ui/InputBlock.h"

/// Takes over what is being typed into a tree, a table or the box of selected zones, as leaving it
/// does. Entries that are refused are dropped. Returns whether anything was typed.
bool FinishEntries(const QuillmapWindow& window);

/// Tells whether the project's files are being read or written. Logging processes events, so an
/// action may be requested meanwhile; it must not begin then.
class ProjectWork
{
public:
    enum class Kind
    {
        None,
        Loading,
        Saving,
    };
    class Scope;

    explicit ProjectWork(const EditorParts& parts);

    bool IsBusy() const { return m_kind != Kind::None; }
    bool IsSaving() const { return m_kind == Kind::Saving; }

private:
    void Begin(Kind kind);

    EditorParts m_parts;
    Kind m_kind = Kind::None;
};

/// While this object exists, no other work begins and no input changes the project. Scopes may lie
/// within each other. What is being typed is taken over before: a window that loses the focus in
/// the middle of a save would change the project.
class ProjectWork::Scope
{
public:
    Scope(ProjectWork& work, Kind kind);
    ~Scope();
    Q_DISABLE_COPY(Scope)

private:
    ProjectWork& m_work;
    Kind m_before;
    InputBlock m_inputBlock;
};
