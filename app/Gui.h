#pragma once

/// True while the application has a top-level widget. Layers and territories store data that only
/// views need (item flags, roles, default names, pictures) only while this is true. A batch run
/// never has a widget.
bool IsGuiRunning();

/// Has every move of the mouse reported, also where many come at once: strokes go through all of
/// them. To be called when the application object has been made, because the platform decides
/// otherwise when that happens.
void KeepEveryMouseMove();
