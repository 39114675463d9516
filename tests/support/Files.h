#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// The bytes of a file; "missing" where it cannot be opened.
inline QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

/// Makes a file of these bytes; the test ends where it cannot.
/// @return its path
inline QString create(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s cannot be written", qPrintable(path));
    return path;
}
