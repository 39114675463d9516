#include "app/Language.h"

bool wantsJapanese(const QStringList& arguments)
{
    bool japanese = true;
    for (int i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("-j"))
            japanese = true;
        if (arguments[i] == QLatin1String("-e"))
            japanese = false;
    }
    return japanese;
}
