#pragma once

/// The environment variable in which drovik-batch hands a job over to the window that it starts: a
/// path from the root.
constexpr char givenJobVariable[] = "DROVIK_SHOW_JOB";
