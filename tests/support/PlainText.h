#pragma once

#include <QByteArray>
#include <QString>
#include <QTextCodec>

/// How the bytes of a file are text, in the toolkit's own words: UTF-8, or what a byte order mark
/// tells; carriage returns do not count.
namespace plain
{

inline QString text(const QByteArray& file)
{
    QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec* const codec = QTextCodec::codecForUtfText(file, utf8);
    QByteArray bytes = file;
    if (codec == utf8)
        bytes.replace("\r", "") += '\n'; // the line end shows a broken character for what it is
    QString result = codec->toUnicode(bytes);
    return result.remove(QLatin1Char('\r'));
}

/// One line of a file of UTF-8; a byte order mark is a character here.
inline QString lineText(const QByteArray& line)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QByteArray whole = line + '\n';
    const QString result =
        QTextCodec::codecForName("UTF-8")->toUnicode(whole.constData(), whole.size(), &state);
    return result.chopped(1);
}

/// Text as it comes back from UTF-8, which has no halves of characters.
inline QString throughUtf8(const QString& text)
{
    return lineText(text.toUtf8());
}

} // namespace plain
