#pragma once

namespace platform {

/// Writing beyond the size that files may have fails like writing to a full disk, instead of ending
/// the program without a word.
void LetTooLargeFilesFail();
/// The same for writing to a pipe that has lost its reader.
void LetClosedPipesFail();

/// Must do no more than a signal handler may; it gets the signal's number.
using SignalHandler = void (*)(int);

/// Calls the handler for Ctrl-C and for the signals that ask a program to end. A second signal of a
/// kind ends the program at once. Signals that the caller of the program turned off stay off. On
/// Linux a signal also ends a write that waits for a full pipe.
void CatchRequestsToEnd(SignalHandler handler);

} // namespace platform
