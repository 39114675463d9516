#pragma once

#include "analysis/ThicknessRatio.h"
#include "batch/ClosureLine.h"

#include <QMetaType>

// What columns of the tests' tables hold.
Q_DECLARE_METATYPE(Closure)
Q_DECLARE_METATYPE(ThicknessType)
