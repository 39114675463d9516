#pragma once

#include "formats/StackAnswer.h"

/// "describe-tiff": what the pages of TIFF files are. Words: any number of files. All pages have
/// one size and type.
std::string describeTiff(const StackRequest& request);

/// "planes-tiff": puts pages into the shared memory, one behind the other. Words: region
/// "x,y,width,height", type, and for each page a "page" with its file, a tab and its number.
std::string planesOfTiff(const StackRequest& request);
