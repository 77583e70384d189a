#pragma once

struct Command;

/// Looks for what makes a project's output wrong or surprising.
Command CheckCommand();
