#pragma once

#include "display/GraphFrame.h"

#include <QStringList>

#include <functional>

class QImage;
class QPainter;

/// What came of pictures.
struct PictureFiles {
    QStringList written; ///< paths, always in the same order
    QStringList failed;  ///< paths that could not be written

    void add(const PictureFiles& more);
};

/// Writes a PNG file beside its place and renames it; its folder is made if need be. The image's
/// texts go into the file.
PictureFiles writePicture(const QString& path, const QImage& image);

/// Paints a graph of the window as the window does, with its titles inside. An empty graph has no
/// picture.
/// @param paint  what the canvas calls in a repaint
QImage graphPicture(const QString& xTitle, const QString& yTitle,
                    const std::function<void(QPainter&, GraphFrame&)>& paint);
