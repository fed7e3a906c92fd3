// Requests from outside to end the program: SIGTERM, and SIGHUP when the terminal has gone. They
// are noted and acted on between two records, frequencies or steps, so that nothing is cut in two.
#pragma once

namespace quelor {

/// From here on the two signals are noted, but for one that the program was started to ignore.
void watch_end_signals();
/// The signal that has come; 0 when none has.
int end_signal();
/// Tells from where the next lines are read: a signal then ends that input, so that a read which
/// waits for a line comes back.
void reading_from(int descriptor);

} // namespace quelor
