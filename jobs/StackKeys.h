#pragma once

#include "jobs/KeyReader.h"

/// The keys of a [[map]] or [[target]] that is made from a stack of images, the stack's file aside.
KeyReader::Keys stackKeys(KeyReader& reader, JobStack& stack);

/// A region is all or nothing.
/// @param table  of the map or target
void checkStack(KeyReader& reader, const toml::table& table, const QString& key,
                const JobStack& stack);
