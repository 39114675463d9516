#include "text/TextBytes.h"

#include "system/MemoryBytes.h"

#include <QTextCodec>

#include <algorithm>
#include <array>
#include <cstring>

namespace
{

constexpr int utf8 = 106; ///< its number in the registry of character sets
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

/// Appends text in UTF-8. False where memory is refused.
bool append(const QString& text, PixelArray<char>& bytes)
{
    const QByteArray encoded = text.toUtf8();
    return bytes.append(encoded.constData(), static_cast<std::size_t>(encoded.size()));
}

/// Converts a whole file to UTF-8, without its byte order mark.
ReadOutcome convert(const ByteSource& file, QTextCodec& codec, std::size_t memory,
                    PixelArray<char>& bytes)
{
    // Two bytes become three at most, those of a character of UTF-16 beyond Latin.
    const auto size = static_cast<std::size_t>(file.size());
    if (size > memory / 2 || !bytes.reserve(size / 2 * 3 + utf8Mark.size()))
        return ReadOutcome::TooLarge;
    std::array<char, 1 << 16> piece{};
    QTextCodec::ConverterState state;
    QString text; // keeps the first half of a character whose second is in the next piece
    for (std::int64_t at = 0; at < file.size();) {
        const auto count = std::min<std::int64_t>(piece.size(), file.size() - at);
        if (!file.read(piece.data(), static_cast<std::size_t>(count), at))
            return ReadOutcome::Unreadable;
        at += count;
        text += codec.toUnicode(piece.data(), static_cast<int>(count), &state);
        const bool half =
            at < file.size() && !text.isEmpty() && text.at(text.size() - 1).isHighSurrogate();
        if (!append(half ? text.chopped(1) : text, bytes))
            return ReadOutcome::TooLarge;
        text = half ? text.right(1) : QString();
    }
    return ReadOutcome::Read;
}

} // namespace

QString textFromUtf8(std::string_view bytes)
{
    QString marks; // the toolkit's conversion drops one at the beginning
    while (bytes.substr(0, utf8Mark.size()) == utf8Mark) {
        marks += QChar(QChar::ByteOrderMark);
        bytes.remove_prefix(utf8Mark.size());
    }
    return marks + QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

std::string_view withoutReturns(std::string_view line, std::string& scratch)
{
    while (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if (line.empty() || std::memchr(line.data(), '\r', line.size()) == nullptr)
        return line;
    scratch.assign(line);
    scratch.erase(std::remove(scratch.begin(), scratch.end(), '\r'), scratch.end());
    return scratch;
}

TextBytes::TextBytes(const ByteSource& file, std::size_t memory) : m_file(file)
{
    std::array<char, 4> head{}; // the longest byte order mark
    const auto size = static_cast<int>(std::min<std::int64_t>(head.size(), file.size()));
    if (!file.read(head.data(), static_cast<std::size_t>(size), 0)) {
        m_outcome = ReadOutcome::Unreadable;
        return;
    }
    QTextCodec* const marked =
        QTextCodec::codecForUtfText(QByteArray::fromRawData(head.data(), size), nullptr);
    if (marked == nullptr)
        return;
    if (marked->mibEnum() == utf8) {
        m_start = static_cast<std::int64_t>(utf8Mark.size());
        return;
    }
    PixelArray<char> bytes;
    m_outcome = convert(file, *marked, memory, bytes);
    if (m_outcome == ReadOutcome::Read)
        m_converted = std::make_unique<MemoryBytes>(std::move(bytes));
}
