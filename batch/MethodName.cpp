#include "batch/MethodName.h"

QByteArray methodName(Method method)
{
    switch (method) {
    case Method::ThreePoint:
        return "3ps";
    case Method::FourPointExact:
        return "4ps";
    case Method::FourPointLeastSquares:
        break;
    }
    return "4ps2";
}
