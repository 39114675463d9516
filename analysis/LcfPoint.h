#pragma once

/// The point methods' result at the time of a linear combination fit beside the fit's own.
struct LCFvs4PSPoint {
    double psA;
    double psValence;
    double lcfA;
    double lcfValence;
};
