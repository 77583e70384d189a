#pragma once

/// True while the application has a top-level widget. Layers and territories store data that only
/// views need (item flags, roles, default names, pictures) only while this is true. A batch run
/// never has a widget.
bool IsGuiRunning();

/// Makes Qt report every move of the mouse, also where many come at once: strokes go through all of
/// them. Call it after the application object is made, because the platform plugin resets the
/// attribute at that moment.
void KeepEveryMouseMove();
