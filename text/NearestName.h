#pragma once

#include <QString>
#include <QStringList>

/// The name that a misspelt one was most likely meant to be: the one that the fewest letters put
/// in, left out or exchanged make of it (V. I. Levenshtein, Sov. Phys. Dokl. 10 (1966) 707), the
/// first of several.
/// @return empty where more than a third of the letters would have to change, and more than one
QString nearestName(const QString& misspelt, const QStringList& names);
