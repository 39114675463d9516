#include "display/PngBytes.h"

#include <QImage>
#include <QtEndian>

#include <array>

namespace
{

/// Remainders of the bytes in the file format's checksum.
std::array<quint32, 256> makeRemainders()
{
    constexpr quint32 polynomial = 0xedb88320;
    std::array<quint32, 256> remainders{};
    for (quint32 i = 0; i < 256; ++i) {
        quint32 remainder = i;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder & 1) != 0 ? remainder >> 1 ^ polynomial : remainder >> 1;
        remainders[i] = remainder;
    }
    return remainders;
}

quint32 checksum(const QByteArray& bytes)
{
    static const std::array<quint32, 256> remainders = makeRemainders();
    quint32 sum = 0xffffffff;
    for (const char byte : bytes)
        sum = remainders[(sum ^ static_cast<unsigned char>(byte)) & 0xff] ^ sum >> 8;
    return ~sum;
}

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

void addChunk(QByteArray& file, const char* name, const QByteArray& data)
{
    file += bigEndian(static_cast<quint32>(data.size()));
    const QByteArray chunk = name + data;
    file += chunk;
    file += bigEndian(checksum(chunk));
}

/// The lines of pixels, each preceded by its filter, which is none.
QByteArray pixelBytes(const QImage& image)
{
    const int width = image.width();
    QByteArray bytes((width * 3 + 1) * image.height(), Qt::Uninitialized);
    char* to = bytes.data();
    for (int y = 0; y < image.height(); ++y) {
        *to++ = 0;
        const QRgb* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < width; ++x) {
            *to++ = static_cast<char>(qRed(line[x]));
            *to++ = static_cast<char>(qGreen(line[x]));
            *to++ = static_cast<char>(qBlue(line[x]));
        }
    }
    return bytes;
}

} // namespace

QByteArray pngBytes(const QImage& image)
{
    if (image.isNull())
        return {};
    constexpr int quickest = 1;
    constexpr int lengthBefore = 4; // what the toolkit puts before the compressed bytes
    const QImage colours = image.convertToFormat(QImage::Format_RGB32);
    QByteArray file("\x89PNG\r\n\x1a\n");
    // Eight bits, three colours, the only compression and filters there are, lines in order.
    const char kind[] = {8, 2, 0, 0, 0};
    addChunk(file, "IHDR",
             bigEndian(static_cast<quint32>(colours.width())) +
                 bigEndian(static_cast<quint32>(colours.height())) + QByteArray(kind, sizeof kind));
    for (const QString& key : image.textKeys())
        addChunk(file, "tEXt", key.toLatin1() + '\0' + image.text(key).toLatin1());
    addChunk(file, "IDAT", qCompress(pixelBytes(colours), quickest).mid(lengthBefore));
    addChunk(file, "IEND", {});
    return file;
}
