#pragma once

#include <QString>

/// Why a file cannot be used.
struct FileFault {
    QString path;
    int line = 0; ///< of a text, 1 for the first; 0 where the reason has no line
    QString reason;
};

/// "path:line: reason", without the line where there is none.
QString faultText(const FileFault& fault);
