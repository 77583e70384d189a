#pragma once

struct Command;

/// Writes what the game reads of a project.
Command ExportCommand();
