#pragma once

#include <cmath>

/// Distributions behind the power of an F test, in long double by their series.
namespace oracles {

/// The regularised incomplete beta function by its continued fraction (Lentz's method).
inline long double IncompleteBeta(long double a, long double b, long double x) {
    if (x <= 0) {
        return 0;
    }
    if (x >= 1) {
        return 1;
    }
    if (x > (a + 1) / (a + b + 2)) {
        return 1 - IncompleteBeta(b, a, 1 - x);
    }
    const long double front = std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) +
                                       a * std::log(x) + b * std::log1p(-x)) /
                              a;
    constexpr long double tiny = 1e-300L;
    long double c = 1, d = 1 - (a + b) * x / (a + 1);
    d = 1 / (std::abs(d) < tiny ? tiny : d);
    long double fraction = d;
    for (int m = 1; m < 5000; ++m) {
        const long double even = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m));
        d = 1 / (1 + even * d);
        c = 1 + even / c;
        fraction *= c * d;
        const long double odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1));
        d = 1 / (1 + odd * d);
        c = 1 + odd / c;
        fraction *= c * d;
        if (std::abs(c * d - 1) < 1e-18L) {
            break;
        }
    }
    return front * fraction;
}

/// The critical value of F by bisection.
inline long double CriticalF(long double df1, long double df2, long double probability) {
    long double low = 0, high = 1;
    const auto below = [&](long double f) {
        return IncompleteBeta(df1 / 2, df2 / 2, df1 * f / (df1 * f + df2)) < probability;
    };
    while (below(high)) {
        high *= 2;
    }
    for (int i = 0; i < 200; ++i) {
        const long double middle = (low + high) / 2;
        (below(middle) ? low : high) = middle;
    }
    return (low + high) / 2;
}

/// The probability that non-central F exceeds the critical value: a Poisson mixture of beta
/// distributions.
inline long double PowerOfF(long double df1,
                            long double df2,
                            long double nonCentrality,
                            long double probability) {
    const long double f = CriticalF(df1, df2, probability);
    const long double x = df1 * f / (df1 * f + df2);
    long double below = 0;
    for (int j = 0; j < 2000; ++j) {
        const long double weight =
            std::exp(-nonCentrality / 2 + j * std::log(nonCentrality / 2) - std::lgamma(j + 1.0L));
        below += weight * IncompleteBeta(df1 / 2 + j, df2 / 2, x);
    }
    return 1 - below;
}

}  // namespace oracles
