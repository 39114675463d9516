#pragma once

#include <QByteArray>
#include <QString>

/// Text as it may stand between the tags of a page and in a quoted attribute, in UTF-8. What is no
/// character of a page is shown as a replacement character.
QByteArray htmlText(const QString& text);
/// The same of bytes that should be UTF-8 and may be anything.
QByteArray htmlText(const QByteArray& bytes);

/// A part of a page that scrolls by itself, where it is long or the screen is narrow.
/// @param label  for screen readers
/// @param html   lines of the page
QByteArray scrollingHtml(const QString& label, const QByteArray& html);
