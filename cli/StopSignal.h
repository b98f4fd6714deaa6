#pragma once

/// SIGINT, SIGTERM and SIGHUP end the program where nothing is half done: they are noted, and looked at
/// there.
namespace StopSignal {

/// Notes the signals from now on; one that was ignored when the program started stays ignored.
void install();

/// True when the program was asked to end.
bool requested();

/// Sleeps, but not beyond such a request.
void sleepFor(int milliseconds);

/// Ends the program by the signal that asked for it, so that the shell sees it.
[[noreturn]] void endProgram();

} // namespace StopSignal
