#include "analysis/StudentT.h"

#include "analysis/Constants.h"

#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>

#include <cmath>

namespace
{

/// Nothing is thrown and no errno is set: the arguments are looked at before.
using Policy = boost::math::policies::policy<
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>,
    boost::math::policies::promote_double<false>>;

/// From here on the distribution is normal to five digits.
constexpr double nearlyNormal = 1e5;

} // namespace

double studentQuantile(double level, double degrees)
{
    if (!(level > 0.0 && level < 1.0) || !(degrees > 0.0))
        return notANumber;
    const double below = 0.5 + 0.5 * level;
    if (degrees > nearlyNormal)
        return quantile(boost::math::normal_distribution<double, Policy>(), below);
    return quantile(boost::math::students_t_distribution<double, Policy>(degrees), below);
}
