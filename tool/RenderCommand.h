#pragma once

struct Command;

/// Makes a picture of a project, a map or a layer bitmap.
Command RenderCommand();
