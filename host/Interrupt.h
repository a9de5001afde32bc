#pragma once

/// The user's wish to stop, by Ctrl-C. The first one is noted, so that the work can end in order; a
/// second one ends the program at once.
namespace Interrupt {

/// From now on notes Ctrl-C.
void Install();
[[nodiscard]] bool IsRequested();
/// Notes a wish as Ctrl-C does, or forgets one.
void Set(bool requested);
/// @throws CancelException when the user has asked to stop
void ThrowIfRequested();

}  // namespace Interrupt
