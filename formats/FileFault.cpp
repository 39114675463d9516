#include "formats/FileFault.h"

QString faultText(const FileFault& fault)
{
    if (fault.line == 0)
        return QStringLiteral("%1: %2").arg(fault.path, fault.reason);
    return QStringLiteral("%1:%2: %3").arg(fault.path, QString::number(fault.line), fault.reason);
}
