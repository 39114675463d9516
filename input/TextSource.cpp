#include "input/TextSource.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace
{

bool isAscii(const char* first, std::size_t size)
{
    unsigned char bits = 0;
    for (std::size_t i = 0; i < size; ++i)
        bits |= static_cast<unsigned char>(first[i]);
    return bits < 0x80;
}

constexpr ushort minusSign = 0x2212;
constexpr std::string_view minusSignText = "\xE2\x88\x92";
constexpr std::size_t substituteCount = 0x3001; // the ideographic space is the last blank

/// What stands in a piece for each character up to the last blank.
std::array<char, substituteCount> substitutes()
{
    std::array<char, substituteCount> result{};
    for (ushort code = 0; code < substituteCount; ++code) {
        const char other = QChar(code).isSpace() ? ' ' : '?';
        result[code] = code < 0x80 ? static_cast<char>(code) : other;
    }
    return result;
}

/// Writes the characters of a piece; at most minusSignText.size() bytes for each.
char* write(char* to, const QString& text)
{
    static const std::array<char, substituteCount> substitute = substitutes();
    for (const QChar character : text) {
        const ushort code = character.unicode();
        if (code == minusSign)
            to = std::copy(minusSignText.begin(), minusSignText.end(), to);
        else if (code != '\r')
            *to++ = code < substituteCount ? substitute[code] : '?';
    }
    return to;
}

} // namespace

bool openRegularFile(QFile& file, const QString& path)
{
    if (!QFileInfo(path).isFile())
        return false;
    file.setFileName(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool TextSource::next(std::string_view& piece)
{
    if (m_begin == m_end) {
        const qint64 count = m_device.read(m_block.data(), static_cast<qint64>(m_block.size()));
        if (count <= 0)
            return false;
        m_begin = 0;
        m_end = static_cast<std::size_t>(count);
        if (m_codec == nullptr)
            chooseCodec();
    }
    char* first = m_block.data() + m_begin;
    const std::size_t size = std::min(pieceSize, m_end - m_begin);
    m_begin += size;
    if (m_keepsAscii && m_state.remainingChars == 0 && isAscii(first, size))
        piece = withoutReturns(first, size);
    else
        piece = decoded(first, size);
    return true;
}

void TextSource::chooseCodec()
{
    constexpr int utf8 = 106;
    constexpr int latin1 = 4;
    const auto head =
        QByteArray::fromRawData(m_block.data(), static_cast<int>(std::min(pieceSize, m_end)));
    m_codec = QTextCodec::codecForUtfText(head, QTextCodec::codecForLocale());
    m_keepsAscii = m_codec->mibEnum() == utf8 || m_codec->mibEnum() == latin1;
}

std::string_view TextSource::withoutReturns(char* first, std::size_t size)
{
    char* last = first + size;
    if (std::memchr(first, '\r', size) != nullptr)
        last = std::remove(first, last, '\r');
    return {first, static_cast<std::size_t>(last - first)};
}

std::string_view TextSource::decoded(const char* first, std::size_t size)
{
    const QString text = m_codec->toUnicode(first, static_cast<int>(size), &m_state);
    m_text.resize(static_cast<std::size_t>(text.size()) * minusSignText.size());
    const char* const last = write(m_text.data(), text);
    return {m_text.data(), static_cast<std::size_t>(last - m_text.data())};
}
