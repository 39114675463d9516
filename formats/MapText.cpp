#include "formats/MapText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace
{

constexpr std::size_t blockBytes = std::size_t{1} << 16;

/// Puts numbers and characters into a block that is written when it is full.
class Lines
{
public:
    explicit Lines(SafeFile& file) : m_file(file) {}

    void number(double value, char behind)
    {
        constexpr std::size_t longest = 32;
        if (m_end + longest > m_block.size())
            flush();
        char* to = m_block.data() + m_end;
        if (std::isfinite(value))
            to = std::to_chars(to, to + longest, value).ptr;
        else
            for (const char c : {'n', 'a', 'n'})
                *to++ = c;
        *to++ = behind;
        m_end = static_cast<std::size_t>(to - m_block.data());
    }

    bool flush()
    {
        m_good = m_good && m_file.write(m_block.data(), static_cast<qint64>(m_end));
        m_end = 0;
        return m_good;
    }

private:
    SafeFile& m_file;
    std::array<char, blockBytes> m_block{};
    std::size_t m_end = 0;
    bool m_good = true;
};

} // namespace

bool writeMapText(SafeFile& file, const MapData& map, double energy)
{
    const QByteArray header = "# AXIS 0 x - - - " + QByteArray::number(map.columns) +
                              "\n# AXIS 1 y - - - " + QByteArray::number(map.rows) +
                              "\n# ENERGY 1 " + QByteArray::number(energy, 'g', 17) +
                              "\n# x y mu-t 0\n";
    if (!file.write(header.constData(), header.size()))
        return false;
    Lines lines(file);
    for (std::size_t i = 0; i < map.mut.size(); ++i) {
        const MapPosition position =
            map.positions && i < map.positions->size() ? (*map.positions)[i] : MapPosition{};
        lines.number(position.first, ' ');
        lines.number(position.second, ' ');
        lines.number(map.mut[i], ' ');
        lines.number(0.0, '\n');
    }
    return lines.flush();
}
