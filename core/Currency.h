// Currency: a fixed-point amount with four decimals held in a 64-bit integer, so that sums of
// money add up exactly.
#pragma once

#include "mattoni_core_export.h"

#include <QMetaType>
#include <QtGlobal>

namespace mattoni {

class MATTONI_CORE_EXPORT Currency
{
public:
    static constexpr qint64 Scale = 10000;

    constexpr Currency() = default;
    // Rounds to the nearest ten-thousandth, ties to even, as the FPU does when storing currency.
    Currency(double value);
    constexpr Currency(int whole) : m_raw(qint64(whole) * Scale) {}
    constexpr Currency(qint64 whole) : m_raw(whole * Scale) {}

    static constexpr Currency FromRaw(qint64 raw)
    {
        Currency c;
        c.m_raw = raw;
        return c;
    }

    constexpr qint64 Raw() const { return m_raw; }
    double ToDouble() const { return double(m_raw) / double(Scale); }
    explicit operator double() const { return ToDouble(); }

    Currency operator-() const { return FromRaw(-m_raw); }
    Currency operator+(Currency o) const { return FromRaw(m_raw + o.m_raw); }
    Currency operator-(Currency o) const { return FromRaw(m_raw - o.m_raw); }
    Currency operator*(Currency o) const;
    Currency operator/(Currency o) const;
    Currency &operator+=(Currency o) { m_raw += o.m_raw; return *this; }
    Currency &operator-=(Currency o) { m_raw -= o.m_raw; return *this; }

    friend constexpr bool operator==(Currency a, Currency b) { return a.m_raw == b.m_raw; }
    friend constexpr auto operator<=>(Currency a, Currency b) { return a.m_raw <=> b.m_raw; }

private:
    qint64 m_raw = 0;
};

} // namespace mattoni

Q_DECLARE_METATYPE(mattoni::Currency)
