#pragma once

#include "formats/StackAnswer.h"

/// "describe-tiff": what the pages of TIFF files are. Words: any number of files; behind a "set"
/// other files, which are described by themselves. All pages of a set have one size and type.
/// Each set is told as soon as it is known, with the places of pages that lie in their files as
/// they are in memory.
std::string describeTiff(const StackRequest& request);

/// "planes-tiff": sends pages, one behind the other. Words: region "x,y,width,height", type, bytes
/// of all, and for each page a "page" with its file, a tab and its number. Those behind a "set"
/// that is "mean" become their mean in double precision. Of a "share" of the pages, "k/n", the
/// others are left out. The number of the set that is read is told.
std::string planesOfTiff(const StackRequest& request);
