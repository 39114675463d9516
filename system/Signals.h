#pragma once

/// For the start of a program that writes files: a limit on the size of files (`ulimit -f`) and a
/// reader that has gone end no program any more; writing fails instead, and is reported as such.
void reportFailedWrites();
