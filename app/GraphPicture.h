#pragma once

#include <QByteArray>
#include <QImage>
#include <QStringList>

class DispArea;

/// What a canvas shows, painted by the painters of the window on another device, in the size that
/// it has on the screen.

/// As pixels, several for each of the canvas where that is no poster, so that it can be printed.
QImage graphImage(DispArea& canvas);

/// Suffixes of the formats in which graphPicture() is: "png", "svg", "pdf".
QStringList pictureSuffixes();

/// As the bytes of a file. Lines and letters of SVG and PDF stay sharp at any size.
/// @param suffix  one of pictureSuffixes()
/// @param title  of the document, where the format has one
/// @return nothing where memory is refused
QByteArray graphPicture(DispArea& canvas, const QString& suffix, const QString& title);
