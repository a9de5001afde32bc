#pragma once

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <limits>
#include <set>
#include <utility>
#include <vector>

/// The point exchange in its plainest form: one loop a formula, lists of candidate numbers that
/// count from 1 and end in a 0, everything computed where it is needed. Shares no code with the
/// engine and is its yardstick, run by run. Random numbers come from the C library, as there.
namespace LiteralExchange {

using Row = std::vector<float>;
using Matrix = std::vector<std::vector<double>>;

struct Inverse {
    bool regular = false;
    Matrix matrix;
    double logDeterminant = 0;  // log10 of the inverted matrix's determinant
};
using Inverter = std::function<Inverse(const Matrix&)>;

/// Gauss and Jordan with full rows and partial pivoting, in extended precision.
inline Inverse InvertPlainly(const Matrix& matrix) {
    const std::size_t size = matrix.size();
    std::vector<std::vector<long double>> work(size, std::vector<long double>(2 * size, 0.0L));
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) {
            work[i][j] = static_cast<long double>(matrix[i][j]);
        }
        work[i][size + i] = 1;
    }
    Inverse result;
    long double sum = 0;
    for (std::size_t k = 0; k < size; ++k) {
        std::size_t pivot = k;
        for (std::size_t i = k; i < size; ++i) {
            if (std::fabs(work[i][k]) > std::fabs(work[pivot][k])) {
                pivot = i;
            }
        }
        if (std::fabs(work[pivot][k]) < 1e-13L) {
            return result;
        }
        std::swap(work[k], work[pivot]);
        sum += std::log10(std::fabs(work[k][k]));
        const long double divisor = work[k][k];
        for (long double& cell : work[k]) {
            cell /= divisor;
        }
        for (std::size_t i = 0; i < size; ++i) {
            const long double factor = work[i][k];
            for (std::size_t j = 0; i != k && j < 2 * size; ++j) {
                work[i][j] -= factor * work[k][j];
            }
        }
    }
    result.regular = true;
    result.logDeterminant = static_cast<double>(sum);
    result.matrix.assign(size, std::vector<double>(size));
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) {
            result.matrix[i][j] = static_cast<double>(work[i][size + j]);
        }
    }
    return result;
}

struct State {
    Matrix m;
    std::vector<double> d;  // d[c - 1] of candidate c
    std::vector<int> rows;
    float l = -99;
};

struct Move {
    int from = 0;
    int to = 0;
    std::set<std::pair<int, int>> tabu;
    std::vector<int> tried;
    float gain = 0;
    float threshold = 0;
};

struct Problem {
    std::vector<Row> x;  // candidates by columns
    int potential = 0;   // of the last columns
    int n = 0;           // rows to find
    int s = 3;
    int k = 3;
    std::vector<int> inclusions;
    Inverter invert = InvertPlainly;
};

inline float Clamped(double value) {
    if (std::fabs(value) < 1.1754943508222875e-38) {
        return 0;
    }
    if (std::fabs(value) > 3.4028234663852886e38) {
        return value > 0 ? std::numeric_limits<float>::max() : -std::numeric_limits<float>::max();
    }
    return static_cast<float>(value);
}

class Search {
  public:
    explicit Search(Problem problem) : problem_(std::move(problem)), p_(problem_.x[0].size()) {}

    /// The design of one repetition, inclusions left out; status in `status`.
    State Repetition() {
        State state = StartDesign();
        if (status == 0) {
            ExchangeRounds(state);
        }
        return state;
    }

    State StartDesign() {
        State state;
        Matrix m(p_, std::vector<double>(p_, 0.0));
        for (std::size_t j = 0; j < p_; ++j) {
            m[j][j] = 1e-4;
        }
        Matrix info = CrossProduct(problem_.inclusions);
        AddPotential(info);
        for (std::size_t a = 0; a < p_; ++a) {
            for (std::size_t b = 0; b < p_; ++b) {
                m[a][b] += info[a][b];
            }
        }
        if (!SetInverse(m, state)) {
            return state;
        }
        std::vector<int> drawn;
        while (static_cast<int>(drawn.size()) < problem_.s) {
            const int c = std::rand() % problem_.n + 1;
            bool known = false;
            for (const int other : drawn) {
                known = known || other == c;
            }
            if (!known) {
                drawn.push_back(c);
            }
        }
        for (const int c : drawn) {
            Enter(c, state);
        }
        for (int i = static_cast<int>(drawn.size()) + 1; i <= problem_.n; ++i) {
            int largest = 1;
            for (int c = 2; c <= static_cast<int>(problem_.x.size()); ++c) {
                if (D(state, c) > D(state, largest)) {
                    largest = c;
                }
            }
            Enter(largest, state);
        }
        bool included = false;
        for (const int c : drawn) {
            for (const int other : problem_.inclusions) {
                included = included || c == other;
            }
        }
        if (!included) {
            RecomputeInverse(state);
        }
        Sort(state.rows);
        return state;
    }

    int status = 0;

  private:
    const Row& X(int c) const { return problem_.x[static_cast<std::size_t>(c - 1)]; }
    static double& D(State& state, int c) { return state.d[static_cast<std::size_t>(c - 1)]; }

    static void Sort(std::vector<int>& values) {
        for (std::size_t i = 1; i < values.size(); ++i) {
            for (std::size_t j = i; j > 0 && values[j - 1] > values[j]; --j) {
                std::swap(values[j - 1], values[j]);
            }
        }
    }

    Matrix CrossProduct(const std::vector<int>& rows) const {
        Matrix product(p_, std::vector<double>(p_, 0.0));
        for (std::size_t i = 0; i < p_; ++i) {
            for (std::size_t j = 0; j < p_; ++j) {
                for (const int c : rows) {
                    product[i][j] += static_cast<double>(X(c)[i] * X(c)[j]);
                }
            }
        }
        return product;
    }

    void AddPotential(Matrix& info) const {
        for (std::size_t j = p_ - static_cast<std::size_t>(problem_.potential); j < p_; ++j) {
            info[j][j] += 1.0;
        }
    }

    bool SetInverse(const Matrix& m, State& state) {
        const Inverse inverse = problem_.invert(m);
        if (!inverse.regular) {
            status = 5005;
            return false;
        }
        state.m = inverse.matrix;
        state.l = static_cast<float>(inverse.logDeterminant);
        state.d.clear();
        for (const Row& x : problem_.x) {
            double d = 0;
            for (std::size_t a = 0; a < p_; ++a) {
                double inner = 0;
                for (std::size_t b = 0; b < p_; ++b) {
                    inner += state.m[a][b] * static_cast<double>(x[b]);
                }
                d += static_cast<double>(x[a]) * inner;
            }
            state.d.push_back(d);
        }
        return true;
    }

    void RecomputeInverse(State& state) {
        Matrix m = CrossProduct(state.rows);
        Matrix info = CrossProduct(problem_.inclusions);
        AddPotential(info);
        for (std::size_t a = 0; a < p_; ++a) {
            for (std::size_t b = 0; b < p_; ++b) {
                m[a][b] += info[a][b];
            }
        }
        SetInverse(m, state);
    }

    std::vector<double> Times(const Matrix& m, int c) const {
        std::vector<double> u(p_, 0.0);
        for (std::size_t a = 0; a < p_; ++a) {
            for (std::size_t b = 0; b < p_; ++b) {
                u[a] += m[a][b] * static_cast<double>(X(c)[b]);
            }
        }
        return u;
    }

    double Dot(int c, const std::vector<double>& u) const {
        double sum = 0;
        for (std::size_t a = 0; a < p_; ++a) {
            sum += static_cast<double>(X(c)[a]) * u[a];
        }
        return sum;
    }

    void Enter(int c, State& state) const {
        const std::vector<double> u = Times(state.m, c);
        const double t = 1 + Dot(c, u);
        for (std::size_t a = 0; a < p_; ++a) {
            for (std::size_t b = 0; b < p_; ++b) {
                state.m[a][b] -= u[a] * u[b] / t;
            }
        }
        state.l = static_cast<float>(static_cast<double>(state.l) + std::log10(1 + D(state, c)));
        for (int k = 1; k <= static_cast<int>(problem_.x.size()); ++k) {
            const double product = Dot(k, u);
            D(state, k) -= product * product / t;
        }
        state.rows.push_back(c);
    }

    void ApplyExchange(State& state, const Move& move) const {
        state.l = static_cast<float>(static_cast<double>(state.l) +
                                     std::log10(static_cast<double>(move.gain) + 1));
        std::vector<double> u = Times(state.m, move.to);
        double t = 1 + Dot(move.to, u);
        for (std::size_t a = 0; a < p_; ++a) {
            for (std::size_t b = 0; b < p_; ++b) {
                state.m[a][b] -= (u[a] / t) * u[b];
            }
        }
        for (int k = 1; k <= static_cast<int>(problem_.x.size()); ++k) {
            const double product = Dot(k, u);
            D(state, k) -= (product / t) * product;
        }
        u = Times(state.m, move.from);
        t = 1 - Dot(move.from, u);
        for (std::size_t a = 0; a < p_; ++a) {
            for (std::size_t b = 0; b < p_; ++b) {
                state.m[a][b] += (u[a] / t) * u[b];
            }
        }
        for (int k = 1; k <= static_cast<int>(problem_.x.size()); ++k) {
            const double product = Dot(k, u);
            D(state, k) += (product / t) * product;
        }
    }

    static bool Holds(const std::vector<int>& list, int value) {
        for (const int entry : list) {
            if (entry == value) {
                return true;
            }
        }
        return false;
    }

    void ExchangeRounds(State& current) {
        std::vector<int> used;
        State best = current;
        for (int round = 1;; ++round) {
            if (round > 50) {
                status = 6004;
                return;
            }
            Move move;
            ExchangePass(used, best, round, move);
            if (status != 0) {
                return;
            }
            current = best;
            for (const int c : move.tried) {
                if (c != 0) {
                    used.push_back(c);
                }
            }
            bool all = true;
            for (const int c : best.rows) {
                all = all && Holds(used, c);
            }
            if (all) {
                return;
            }
        }
    }

    void ExchangePass(std::vector<int>& used, State& best, int& round, Move& move) {
        State current = best;
        const auto count = static_cast<int>(problem_.x.size());
        int pass = 1;
        int c = 0;
        for (;;) {
            std::vector<int> leaving(static_cast<std::size_t>(count) + 1, 0);
            std::size_t filled = 0;
            for (const int row : current.rows) {
                if (!Holds(leaving, row) && !Holds(used, row)) {
                    leaving[filled++] = row;
                }
            }
            for (std::size_t i = 0; i < static_cast<std::size_t>(problem_.k) && i < filled; ++i) {
                std::size_t low = i;
                for (std::size_t j = i + 1; j < filled; ++j) {
                    if (D(current, leaving[low]) >= D(current, leaving[j])) {
                        low = j;
                    }
                }
                std::swap(leaving[i], leaving[low]);
            }
            for (std::size_t i = static_cast<std::size_t>(problem_.k); i < leaving.size(); ++i) {
                leaving[i] = 0;
            }
            std::vector<int> entering;
            for (int j = 1; j <= count; ++j) {
                if (D(current, j) >= static_cast<double>(move.threshold)) {
                    entering.push_back(j);
                }
            }
            BestExchange(leaving, entering, current, move);
            const double x = static_cast<double>(move.gain) + 1;
            if (x <= 0) {
                status = 6007;
                return;
            }
            const double g = std::log10(x);
            if (static_cast<double>(best.l) + 1e-6 - static_cast<double>(current.l) >= g) {
                c += 1;
                if (c == 1) {
                    move.tried = pass == 1 ? leaving : std::vector<int>();
                }
                if (c == 2 || (c == 1 && pass > 1)) {
                    return;
                }
                if (move.gain <= 0) {
                    move.tabu.insert({move.from, move.to});
                    pass += 1;
                    continue;
                }
            } else if (c > 0) {
                c = 0;
            }
            for (int& row : current.rows) {
                if (row == move.from) {
                    row = move.to;
                    break;
                }
            }
            Sort(current.rows);
            if (current.rows == best.rows) {
                return;
            }
            ApplyExchange(current, move);
            double sum = 0;
            for (const int j : entering) {
                sum += D(current, j);
            }
            move.threshold = Clamped(sum / static_cast<double>(entering.size()));
            if (c == 0) {
                used.clear();
                if (pass == 1) {
                    used.push_back(move.to);
                }
            }
            move.tabu.clear();
            move.tabu.insert({move.to, move.from});
            if (c < 1) {
                best = current;
                round = 0;
            }
            pass += 1;
        }
    }

    void BestExchange(const std::vector<int>& leaving,
                      const std::vector<int>& entering,
                      State& state,
                      Move& move) const {
        move.gain = -0.99F;
        move.from = leaving[0];
        move.to = leaving[0];
        for (std::size_t a = 0; a < leaving.size() && leaving[a] != 0; ++a) {
            const int i = leaving[a];
            std::vector<int> e;
            for (const int j : entering) {
                if (D(state, j) > D(state, i)) {
                    e.push_back(j);
                }
            }
            if (e.empty()) {
                return;
            }
            const std::vector<double> u = Times(state.m, i);
            double largest = -3.4028234663852886e38;
            int chosen = 0;
            for (const int j : e) {
                const double dij = Dot(j, u);
                const double di = D(state, i);
                const double dj = D(state, j);
                const double delta = dj - di - (dj * di - dij * dij);
                if (delta > largest && move.tabu.count({i, j}) == 0) {
                    largest = delta;
                    chosen = j;
                }
            }
            if (chosen != 0 && largest > static_cast<double>(move.gain)) {
                move.gain = Clamped(largest);
                move.from = i;
                move.to = chosen;
            }
        }
    }

    Problem problem_;
    std::size_t p_;
};

}  // namespace LiteralExchange
