#include "app/Language.h"

QString Catalogue::translate(const char* context, const char* sourceText,
                             const char* disambiguation, int n) const
{
    const QString text = QTranslator::translate(context, sourceText, disambiguation, n);
    return text.isEmpty() ? QString() : text;
}

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
