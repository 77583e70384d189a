#pragma once

/// True while the application has a top-level widget. Layers and territories keep what only views
/// show (item flags, roles, default names, pictures) for as long as that is so; a batch run never
/// has any.
bool IsGuiRunning();
