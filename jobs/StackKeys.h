#pragma once

#include "jobs/KeyReader.h"

/// The keys of a [[map]] that is made from a stack of images, and of its region.
KeyReader::Keys stackKeys(KeyReader& reader, JobStack& stack);
