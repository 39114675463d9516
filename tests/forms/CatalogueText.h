#pragma once

#include <QString>
#include <QVector>

/// One entry of a catalogue: a text of a form or a message, and its translation.
struct CatalogueEntry {
    QString context;
    QString source;
    QString translation; ///< empty where the source stays
    bool finished = true;
};

/// Reads the entries of a translation source (a .ts file), in the file's order. Nothing comes back
/// for a file that cannot be read or is not well formed.
QVector<CatalogueEntry> readCatalogueText(const QString& path);
