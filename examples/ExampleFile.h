#pragma once

#include <QByteArray>
#include <QSaveFile>
#include <QString>

/// Writes a file of an example.
/// @return whether it is there whole
inline bool writeExampleFile(const QString& path, const QByteArray& text)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
}
