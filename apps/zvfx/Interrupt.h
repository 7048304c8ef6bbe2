#pragma once

namespace zvfx {

/// Makes the first Ctrl-C (or a request to terminate) ask the run to stop after the present frame; the second
/// one ends the program at once. A reader that goes away no longer ends the program but fails the write.
void watchInterrupt();

/// Whether watchInterrupt() saw one.
bool wasInterrupted();

/// Asks the sources to say that their end is reached, as Ctrl-C does.
void requestStop();

/// Whether sources are asked to stop. Any thread.
bool stopRequested();

}  // namespace zvfx
