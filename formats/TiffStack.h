#pragma once

#include "formats/Stack.h"

/// Opens TIFF images, the pages of one file or of several ("name_*.tif", in the order of their
/// names), with their energies in a text: one a line, or one on each line with a file's name.
std::unique_ptr<Stack> openTiffStack(const StackSource& source, FileFault& fault);

/// The files that such a stack is made of beside those that its source names, as far as they are
/// there: the text of the energies, and the images that it names.
QStringList tiffFilesBeside(const StackSource& source);
