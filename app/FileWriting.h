#pragma once

#include <QByteArray>
#include <QString>

class FourPs;

/// Whether a file may be written while the panel shows what it shows: nothing that is shown is
/// written over. Otherwise the panel says so.
bool mayWrite(FourPs& panel, const QString& path);

/// Writes a file beside its place, renames it, and has the panel tell what became of it.
/// @return whether it is there, whole
bool writeWhole(FourPs& panel, const QString& path, const QByteArray& bytes);
