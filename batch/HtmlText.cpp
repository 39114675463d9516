#include "batch/HtmlText.h"

#include "text/TextBytes.h"

namespace
{

bool mayStand(QChar character)
{
    const ushort code = character.unicode();
    if (code == '\n' || code == '\t')
        return true;
    return code >= 0x20 && !(code >= 0x7f && code < 0xa0) && code < 0xfffe;
}

} // namespace

QByteArray htmlText(const QString& text)
{
    QString clean = text;
    for (QChar& character : clean)
        if (!mayStand(character))
            character = QChar::ReplacementCharacter;
    return clean.toHtmlEscaped().toUtf8();
}

QByteArray htmlText(const QByteArray& bytes)
{
    return htmlText(textFromUtf8({bytes.constData(), static_cast<std::size_t>(bytes.size())}));
}

QByteArray scrollingHtml(const QString& label, const QByteArray& html)
{
    return R"(<div class="scroll" tabindex="0" role="region" aria-label=")" + htmlText(label) +
           "\">\n" + html + "</div>\n";
}
