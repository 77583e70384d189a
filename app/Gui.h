#pragma once

/// True while the application has a top-level widget. Layers and territories keep what only views
/// show (item flags, roles, default names, pictures) for as long as that is so; a batch run never
/// has any.
bool IsGuiRunning();

/// Has every move of the mouse reported, also where many come at once: strokes go through all of
/// them. To be called when the application object has been made, because the platform decides
/// otherwise when that happens.
void KeepEveryMouseMove();
