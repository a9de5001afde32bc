#pragma once

#include <cmath>
#include <complex>
#include <limits>
#include <utility>
#include <vector>

#include "foundation/mat/DlibMatrix.h"
#include "foundation/mat/NCDataMatrix.h"

/// The exchange search for the I-value in its plain form: every exchange is judged by matrix
/// products of its own, the removal of a row being the addition of the row times the imaginary
/// unit. Slow.
namespace oracles {

class IOptimalOracle {
  public:
    using Matrix = dlib::matrix<double>;
    using ComplexMatrix = dlib::matrix<std::complex<double>>;

    struct Search {
        std::vector<int> pool;
        std::vector<int> design;
        double value = 0;
    };
    struct Choice {
        double change = 0;
        int pool = -1;
        int run = 0;
    };

    explicit IOptimalOracle(const NCDataMatrix<float>& candidates)
        : candidates_(candidates.SizeRows(), candidates.SizeColumns()) {
        for (int i = 0; i < candidates.SizeRows(); ++i) {
            for (int j = 0; j < candidates.SizeColumns(); ++j) {
                candidates_(i, j) = static_cast<double>(candidates(i + 1, j + 1));
            }
        }
        moments_ = dlib::trans(candidates_) * candidates_;
    }

    [[nodiscard]] double IValue(const std::vector<int>& design) const {
        return IValue(Rows(design));
    }

    [[nodiscard]] double IValue(const Matrix& x) const {
        Matrix inverse;
        if (!Inverse(x, inverse)) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        return static_cast<double>(x.nr()) * dlib::trace(moments_ * inverse) /
               static_cast<double>(candidates_.nr());
    }

    /// Change of trace(M P) when run `run` of the design becomes candidate `row`.
    [[nodiscard]] double Evaluate(const std::vector<int>& design,
                                  int run,
                                  int row,
                                  const Matrix& inverse) const {
        const long p = candidates_.nc();
        ComplexMatrix w(p, 2);
        for (long i = 0; i < p; ++i) {
            w(i, 0) = candidates_(row, i);
            w(i, 1) = std::complex<double>(0, candidates_(design[static_cast<size_t>(run)], i));
        }
        const ComplexMatrix wide = dlib::complex_matrix(inverse);
        ComplexMatrix small = dlib::trans(w) * wide * w;
        small(0, 0) += 1.0;
        small(1, 1) += 1.0;
        const double d = (small(0, 0) * small(1, 1) - small(0, 1) * small(1, 0)).real();
        // What rounding leaves of a zero may be negative and may be far above the smallest numbers.
        if (!(d > 1e-10)) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        std::swap(small(0, 0), small(1, 1));
        small(0, 1) = -small(0, 1);
        small(1, 0) = -small(1, 0);
        small *= 1.0 / std::complex<double>(d, 0);
        const Matrix r = dlib::real(w * small * dlib::trans(w));
        const Matrix q = inverse * r * inverse;
        return -dlib::trace(moments_ * q);
    }

    [[nodiscard]] Choice Best(const Search& search) const {
        Matrix inverse;
        Choice best;
        if (!Inverse(Rows(search.design), inverse)) {
            return best;
        }
        for (size_t a = 0; a < search.pool.size(); ++a) {
            for (size_t j = 0; j < search.design.size(); ++j) {
                const double change =
                    Evaluate(search.design, static_cast<int>(j), search.pool[a], inverse);
                if (change < best.change) {
                    best = {change, static_cast<int>(a), static_cast<int>(j)};
                }
            }
        }
        return best;
    }

    /// Makes the exchange when it gains enough.
    [[nodiscard]] bool Apply(Search& search, const Choice& choice) const {
        const double value = static_cast<double>(search.design.size()) * choice.change /
                                 static_cast<double>(candidates_.nr()) +
                             search.value;
        if (!(value < search.value && search.value - value >= 0.001 * value && choice.pool >= 0)) {
            return false;
        }
        search.value = value;
        const auto at = static_cast<size_t>(choice.pool);
        search.design[static_cast<size_t>(choice.run)] = search.pool[at];
        std::swap(search.pool[at], search.pool.back());
        search.pool.pop_back();
        return true;
    }

    /// The whole search from a start design, all of whose rows stay in the pool.
    [[nodiscard]] Search Run(const std::vector<int>& start, unsigned steps) const {
        Search search{{}, start, IValue(start)};
        for (int row = 0; row < static_cast<int>(candidates_.nr()); ++row) {
            search.pool.push_back(row);
        }
        for (unsigned left = steps + 1; left > 0 && Apply(search, Best(search)); --left) {
        }
        return search;
    }

    [[nodiscard]] Matrix Rows(const std::vector<int>& design) const {
        Matrix x(static_cast<long>(design.size()), candidates_.nc());
        for (size_t i = 0; i < design.size(); ++i) {
            dlib::set_rowm(x, static_cast<long>(i)) = dlib::rowm(candidates_, design[i]);
        }
        return x;
    }

    [[nodiscard]] static bool Inverse(const Matrix& x, Matrix& inverse) {
        const Matrix information = dlib::trans(x) * x;
        Matrix u, w, v;
        dlib::svd4(dlib::SVD_FULL_U, true, information, u, w, v);
        if (dlib::min(w) < 1e-17 || dlib::max(w) / dlib::min(w) > 100000.0) {
            return false;
        }
        inverse = dlib::scale_columns(v, dlib::reciprocal(w)) * dlib::trans(u);
        return true;
    }

  private:
    Matrix candidates_;
    Matrix moments_;
};

}  // namespace oracles
