// Currency arithmetic.
#include "Currency.h"

#include <cmath>

namespace mattoni {

Currency::Currency(double value)
    : m_raw(qint64(std::nearbyint(value * double(Scale))))
{
}

Currency Currency::operator*(Currency o) const
{
    return Currency(ToDouble() * o.ToDouble());
}

Currency Currency::operator/(Currency o) const
{
    return Currency(ToDouble() / o.ToDouble());
}

} // namespace mattoni
