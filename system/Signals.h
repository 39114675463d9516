#pragma once

/// For the start of a program that writes files: a limit on the size of files (`ulimit -f`) and a
/// reader that has gone end no program any more; writing fails instead, and is reported as such.
void reportFailedWrites();

/// From now on the first SIGTERM, SIGINT or SIGHUP ends nothing, but is kept for stopSignal(); the
/// same one again ends the program at once. A signal that is ignored stays so.
void keepStopSignals();

/// The signal that asks to come to an end; 0 as long as there is none. For any thread.
int stopSignal();

/// A descriptor that can be read once there is a stop signal, to be waited for; -1 before
/// keepStopSignals().
int stopDescriptor();
