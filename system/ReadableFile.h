#pragma once

#include <QString>

class QFile;

/// Opens a regular file for reading. Nothing else is touched: a device may block, a pipe waits for
/// somebody who writes.
/// @param file  one without a name
/// @return why it cannot be opened ("there is no such file"); empty where it is open
QString openReadable(const QString& path, QFile& file);

/// The same without keeping the file open.
QString whyUnreadable(const QString& path);
