#pragma once

struct Command;

/// Tells what a file holds.
Command InfoCommand();
