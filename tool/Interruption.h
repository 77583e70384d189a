#pragma once

/// Handles Ctrl-C and the other signals that ask a program to end. After such a signal all reading
/// fails, nothing more is written or printed, and half-written files are removed as after any other
/// error.
namespace Interruption {

/// Installs the handlers. A second signal of the same kind ends the program at once. Signals that
/// the caller of the program ignores stay ignored.
void Watch();
bool HasCome();
/// 128 plus the signal's number, as shells expect after a signal.
int ExitCode();

} // namespace Interruption
