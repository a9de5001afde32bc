#include "designs/optimal/engine/ExchangeTable.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "designs/optimal/engine/VectorKernels.h"

namespace {

using VectorKernels::Block;
using VectorKernels::cBlock;
using VectorKernels::Dot;
using VectorKernels::Load;
using VectorKernels::Mask;
using VectorKernels::Spread;
using VectorKernels::Store;

// Rounding adds up from update to update; a fresh start now and then keeps it near that of one.
constexpr int cMostUpdates = 32;
// An exchange with a smaller determinant ratio enlarges what rounding left in P by its inverse.
constexpr double cSmallestUpdateRatio = 0.01;
// Pairs this close to the best, as a share of trace(M P), are computed afresh. The smallest
// exchange that the search makes gains a thousandth, so nothing of weight is passed over, and
// rounding is far below: about 1e-15 in a regular design, 1e-11 at the limit of conditioning.
constexpr double cMargin = 1e-9;
// Kept numbers that are off by more than this share of trace(M P) are computed anew.
constexpr double cMostDrift = 1e-3 * cMargin;
#ifdef _OPENMP
// Threads are worth their start for this many pairs, about a millisecond of work.
constexpr std::size_t cPairsForThreads = 200000;
#endif

/// What trace(M P) loses by one exchange; 0 for one that makes the design singular.
double Gain(
    double own, double ownSpread, double shrink, double runSpread, double c, double spread) {
    const double ratio = (1.0 + own) * shrink + c * c;
    if (!(ratio > ExchangeTable::cSmallestRatio)) {
        return 0;
    }
    return (shrink * ownSpread + 2.0 * (c * spread) - (1.0 + own) * runSpread) / ratio;
}

/// out = z'B for `rows` rows of B; `width` and `stride` are multiples of four.
void Combine(double* out,
             const double* z,
             const double* b,
             std::size_t rows,
             std::size_t width,
             std::size_t stride) {
    for (std::size_t at = 0; at < width; at += 2 * cBlock) {
        Block low{}, high{};
        for (std::size_t i = 0; i < rows; ++i) {
            Block factor, first, second;
            Spread(factor, z[i]);
            Load(first, b + i * stride + at);
            Load(second, b + i * stride + at + cBlock);
            low += factor * first;
            high += factor * second;
        }
        Store(out + at, low);
        Store(out + at + cBlock, high);
    }
}

/// z'Bz
double Quadratic(const double* z, const PaddedMatrix& b) {
    Block sum{};
    for (std::size_t at = 0; at < b.Stride(); at += cBlock) {
        Block column{};
        for (std::size_t i = 0; i < b.Rows(); ++i) {
            Block factor, row;
            Spread(factor, z[i]);
            Load(row, b.Row(i) + at);
            column += factor * row;
        }
        Block part;
        Load(part, z + at);
        sum += part * column;
    }
    return VectorKernels::Sum(sum);
}

}  // namespace

ExchangeTable::ExchangeTable(const PaddedMatrix& candidates, std::size_t runs, std::size_t mostKept)
    : candidates_(candidates),
      runs_(runs),
      inverseOfRuns_(runs, candidates.Columns()),
      spreadOfRuns_(runs, candidates.Columns()) {
    paddedRuns_ = (runs + cBlock - 1) / cBlock * cBlock;
    shrink_.assign(paddedRuns_, 0);
    ownSpread_.assign(paddedRuns_, 0);
    const std::size_t width = 2 * paddedRuns_;
    const std::size_t rows =
        std::min(candidates.Rows(), std::max<std::size_t>(mostKept / width, 1));
    keptPairs_ = PaddedMatrix(rows, width);
    keptOwn_ = PaddedMatrix(rows, 2);
    for (auto* list : {&update_.t1, &update_.t2, &update_.v1, &update_.v2}) {
        list->assign(paddedRuns_, 0);
    }
    update_.inverseOfEntering.assign(candidates.Stride(), 0);
    update_.spreadOfEntering.assign(candidates.Stride(), 0);
}

ExchangeTable::Exchange ExchangeTable::FindBest(const std::vector<int>& pool,
                                                const std::vector<int>& design,
                                                const Step& step) {
    ComputeRuns(design, step);
    gains_.assign(pool.size(), 0);
    const bool keepsAll = keptPairs_.Rows() == candidates_.Rows();
    bool afresh = !isKept_ || !keepsAll || updates_ > cMostUpdates;
    const double margin = cMargin * std::abs(step.trace);
    while (true) {
        Screen(pool, step, afresh);
        freshScreens_ += afresh ? 1 : 0;
        isKept_ = true;
        const double best = gains_.empty() ? 0 : *std::max_element(gains_.begin(), gains_.end());
        const Exchange exchange = Decide(pool, step, best, margin);
        const double drift = std::abs(best + exchange.change);
        if (afresh || drift <= cMostDrift * std::abs(step.trace)) {
            updates_ = afresh ? 0 : updates_;
            return exchange;
        }
        afresh = true;
    }
}

void ExchangeTable::Replace(int row, int run, const Step& step) {
    const double* x = candidates_.Row(static_cast<std::size_t>(row));
    const auto j = static_cast<std::size_t>(run);
    const std::size_t p = candidates_.Columns();
    const std::size_t stride = candidates_.Stride();
    // The leaving run in the terms of the step it belongs to.
    const double* py = inverseOfRuns_.Row(j);
    const double* qy = spreadOfRuns_.Row(j);
    std::vector<double>& px = update_.inverseOfEntering;
    std::vector<double>& qx = update_.spreadOfEntering;
    Combine(px.data(), x, step.inverse.Row(0), p, stride, stride);
    Combine(qx.data(), x, step.spread.Row(0), p, stride, stride);

    const double a = Dot(x, px.data(), stride);
    const double c = Dot(x, py, stride);
    const double shrink = shrink_[j];
    const double ratio = (1.0 + a) * shrink + c * c;
    if (!(ratio > cSmallestUpdateRatio)) {
        isKept_ = false;
        return;
    }
    ++updates_;
    Update& u = update_;
    u.run = j;
    u.t11 = shrink / ratio;
    u.t12 = c / ratio;
    u.t22 = -(1.0 + a) / ratio;
    const double g11 = Dot(x, qx.data(), stride);
    const double g12 = Dot(x, qy, stride);
    const double g22 = ownSpread_[j];
    const double m11 = u.t11 * g11 + u.t12 * g12;  // T G
    const double m12 = u.t11 * g12 + u.t12 * g22;
    const double m21 = u.t12 * g11 + u.t22 * g12;
    const double m22 = u.t12 * g12 + u.t22 * g22;
    u.u11 = m11 * u.t11 + m12 * u.t12;
    u.u12 = m11 * u.t12 + m12 * u.t22;
    u.u22 = m21 * u.t12 + m22 * u.t22;
    for (std::size_t i = 0; i < runs_; ++i) {
        const double* w = i == j ? x : runRows_[i];
        const double l1 = Dot(px.data(), w, stride), l2 = Dot(py, w, stride);
        const double n1 = Dot(qx.data(), w, stride), n2 = Dot(qy, w, stride);
        u.t1[i] = u.t11 * l1 + u.t12 * l2;
        u.t2[i] = u.t12 * l1 + u.t22 * l2;
        u.v1[i] = (u.t11 * n1 + u.t12 * n2) - (u.u11 * l1 + u.u12 * l2);
        u.v2[i] = (u.t12 * n1 + u.t22 * n2) - (u.u12 * l1 + u.u22 * l2);
    }
}

void ExchangeTable::ComputeRuns(const std::vector<int>& design, const Step& step) {
    assert(design.size() == runs_);
    const std::size_t p = candidates_.Columns();
    const std::size_t stride = candidates_.Stride();
    runRows_.resize(runs_);
    for (std::size_t j = 0; j < runs_; ++j) {
        const double* y = candidates_.Row(static_cast<std::size_t>(design[j]));
        runRows_[j] = y;
        Combine(inverseOfRuns_.Row(j), y, step.inverse.Row(0), p, stride, stride);
        Combine(spreadOfRuns_.Row(j), y, step.spread.Row(0), p, stride, stride);
        shrink_[j] = 1.0 - Dot(y, inverseOfRuns_.Row(j), stride);
        ownSpread_[j] = Dot(y, spreadOfRuns_.Row(j), stride);
    }
}

void ExchangeTable::Screen(const std::vector<int>& pool, const Step& step, bool afresh) {
    const bool keepsAll = keptPairs_.Rows() == candidates_.Rows();
    const std::size_t tile = keepsAll ? pool.size() : keptPairs_.Rows();
    const PaddedMatrix columns = afresh ? RunColumns() : PaddedMatrix();
    for (std::size_t first = 0; first < pool.size(); first += tile) {
        const std::size_t end = std::min(pool.size(), first + tile);
        // Every candidate's gain is its own, so the division of the loop does not matter.
#ifdef _OPENMP
#pragma omp parallel for schedule(static) if ((end - first) * runs_ >= cPairsForThreads)
#endif
        for (std::size_t at = first; at < end; ++at) {
            const auto row = static_cast<std::size_t>(pool[at]);
            const std::size_t slot = keepsAll ? row : at - first;
            if (afresh) {
                ComputeKept(row, slot, step, columns);
            } else {
                UpdateKept(row, slot);
            }
            gains_[at] = BestGain(slot);
        }
    }
}

ExchangeTable::Exchange ExchangeTable::Decide(const std::vector<int>& pool,
                                              const Step& step,
                                              double bestGain,
                                              double margin) const {
    Exchange best;
    if (!(bestGain > 0)) {
        return best;
    }
    double gain = 0;
    const std::size_t stride = candidates_.Stride();
    for (std::size_t at = 0; at < pool.size(); ++at) {
        if (!(gains_[at] >= bestGain - margin)) {
            continue;
        }
        const double* x = candidates_.Row(static_cast<std::size_t>(pool[at]));
        const double own = Quadratic(x, step.inverse);
        const double ownSpread = Quadratic(x, step.spread);
        for (std::size_t j = 0; j < runs_; ++j) {
            const double candidate = Gain(own,
                                          ownSpread,
                                          shrink_[j],
                                          ownSpread_[j],
                                          Dot(x, inverseOfRuns_.Row(j), stride),
                                          Dot(x, spreadOfRuns_.Row(j), stride));
            if (candidate > gain) {
                gain = candidate;
                best = {-candidate, static_cast<int>(at), static_cast<int>(j)};
            }
        }
    }
    return best;
}

PaddedMatrix ExchangeTable::RunColumns() const {
    PaddedMatrix columns(candidates_.Columns(), 2 * paddedRuns_);
    for (std::size_t j = 0; j < runs_; ++j) {
        for (std::size_t i = 0; i < columns.Rows(); ++i) {
            columns(i, j) = inverseOfRuns_(j, i);
            columns(i, paddedRuns_ + j) = spreadOfRuns_(j, i);
        }
    }
    return columns;
}

void ExchangeTable::ComputeKept(std::size_t row,
                                std::size_t slot,
                                const Step& step,
                                const PaddedMatrix& columns) {
    const double* z = candidates_.Row(row);
    Combine(keptPairs_.Row(slot),
            z,
            columns.Row(0),
            columns.Rows(),
            columns.Stride(),
            columns.Stride());
    keptOwn_(slot, 0) = Quadratic(z, step.inverse);
    keptOwn_(slot, 1) = Quadratic(z, step.spread);
}

void ExchangeTable::UpdateKept(std::size_t row, std::size_t slot) {
    const double* z = candidates_.Row(row);
    double* inverse = keptPairs_.Row(slot);
    double* spread = inverse + paddedRuns_;
    const Update& u = update_;
    const double l1 = Dot(z, u.inverseOfEntering.data(), candidates_.Stride());
    const double n1 = Dot(z, u.spreadOfEntering.data(), candidates_.Stride());
    const double l2 = inverse[u.run];
    const double n2 = spread[u.run];
    inverse[u.run] = l1;
    spread[u.run] = n1;

    const double t1 = u.t11 * l1 + u.t12 * l2;
    const double t2 = u.t12 * l1 + u.t22 * l2;
    keptOwn_(slot, 0) -= t1 * l1 + t2 * l2;
    keptOwn_(slot, 1) -= 2.0 * (t1 * n1 + t2 * n2) -
                         (l1 * (u.u11 * l1 + u.u12 * l2) + l2 * (u.u12 * l1 + u.u22 * l2));
    Block l1s, l2s, n1s, n2s;
    Spread(l1s, l1);
    Spread(l2s, l2);
    Spread(n1s, n1);
    Spread(n2s, n2);
    for (std::size_t j = 0; j < paddedRuns_; j += cBlock) {
        Block t1s, t2s, v1s, v2s, p, q;
        Load(t1s, &u.t1[j]);
        Load(t2s, &u.t2[j]);
        Load(v1s, &u.v1[j]);
        Load(v2s, &u.v2[j]);
        Load(p, inverse + j);
        Load(q, spread + j);
        p -= l1s * t1s + l2s * t2s;
        q -= (l1s * v1s + l2s * v2s) + (n1s * t1s + n2s * t2s);
        Store(inverse + j, p);
        Store(spread + j, q);
    }
}

double ExchangeTable::BestGain(std::size_t slot) const {
    const double* inverse = keptPairs_.Row(slot);
    const double* spread = inverse + paddedRuns_;
    Block grown, ownSpread, two, smallest, best{};
    Spread(grown, 1.0 + keptOwn_(slot, 0));
    Spread(ownSpread, keptOwn_(slot, 1));
    Spread(two, 2.0);
    Spread(smallest, cSmallestRatio);
    for (std::size_t j = 0; j < paddedRuns_; j += cBlock) {
        Block shrink, runSpread, c, s;
        Load(shrink, &shrink_[j]);
        Load(runSpread, &ownSpread_[j]);
        Load(c, inverse + j);
        Load(s, spread + j);
        const Block ratio = grown * shrink + c * c;
        const Block gain = (shrink * ownSpread + two * (c * s) - grown * runSpread) / ratio;
        const Mask better = (ratio > smallest) & (gain > best);
        const Mask chosen =
            (reinterpret_cast<Mask>(gain) & better) | (reinterpret_cast<Mask>(best) & ~better);
        best = reinterpret_cast<Block>(chosen);
    }
    return std::max(best[0], best[1]);
}
