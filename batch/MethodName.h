#pragma once

#include "analysis/Method.h"

#include <QByteArray>

/// A method as the tables of results name it: "3ps", "4ps", "4ps2".
QByteArray methodName(Method method);
