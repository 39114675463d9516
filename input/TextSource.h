#pragma once

#include <QTextCodec>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

class QFile;
class QIODevice;
class QString;

/// Opens a regular file for reading. A folder, a pipe or a device is not opened: reading it might
/// never end.
bool openRegularFile(QFile& file, const QString& path);

/// Text of a file in pieces, for scanning byte by byte: what QTextStream reads from the file in
/// text mode (the locale's encoding, or the one that a byte order mark tells; carriage returns
/// dropped), with less work where a piece is plain ASCII and memory for one piece at a time.
///
/// Pieces are UTF-8 of which a scanner needs to know little: every blank that is not ASCII comes as
/// a space, every other character that is not ASCII as '?', save the minus sign U+2212, which may
/// stand in a number.
class TextSource
{
public:
    /// @param device  open for reading, not in text mode; it must outlive the source
    explicit TextSource(QIODevice& device) : m_device(device) {}

    /// The next piece; it stays as it is until the next call. Pieces never end within a character.
    /// @return false at the end of the file or where it cannot be read any further
    bool next(std::string_view& piece);

private:
    /// QTextStream converts its file in pieces of this size; with the same size the decoder sees
    /// the same pieces.
    static constexpr std::size_t pieceSize = 16384;

    void chooseCodec();
    std::string_view withoutReturns(char* first, std::size_t size);
    std::string_view decoded(const char* first, std::size_t size);

    QIODevice& m_device;
    std::array<char, 4 * pieceSize> m_block; ///< as read
    std::size_t m_begin = 0;                 ///< of what is left of the block
    std::size_t m_end = 0;
    QTextCodec* m_codec = nullptr;
    bool m_keepsAscii = false; ///< the encoding leaves ASCII as it is and has no shift states
    QTextCodec::ConverterState m_state;
    std::string m_text; ///< the piece where it is not plain ASCII
};
