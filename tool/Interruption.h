#pragma once

/// What comes of Ctrl-C, and of the signals that ask a program to end: all reading fails from then
/// on, nothing more is written or said, and what was half written goes as after any other error.
namespace Interruption {

/// From now on signals are taken; a second one of a kind ends the program at once. Signals that the
/// caller of the program turned off stay off.
void Watch();
bool HasCome();
/// What shells expect of a program that a signal ended.
int ExitCode();

} // namespace Interruption
