#pragma once

struct Command;

/// Tells where two maps or two projects differ.
Command CompareCommand();
