#include "designs/optimal/engine/ExchangeSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace DOpt {

namespace {

/// A design is better when its log10 determinant is higher by more than this.
constexpr double cLeastLift = 1e-6;
/// Gain of no exchange at all.
constexpr float cNoGain = -0.99F;
/// Better designs in a row, for each run, before a search that finds ever new ones is given up; a
/// sound search needs less than three.
constexpr std::size_t cMaxLiftsOfRun = 100;
constexpr std::size_t cLeastMaxLifts = 1000;

// What fits a normal float: less is 0, more the largest.
float ToFloat(double value) {
    constexpr double cLargest = std::numeric_limits<float>::max();
    const double size = std::fabs(value);
    if (size < static_cast<double>(std::numeric_limits<float>::min())) {
        return 0;
    }
    return size > cLargest ? static_cast<float>(std::copysign(cLargest, value))
                           : static_cast<float>(value);
}

// Selection sort of the first `count` values by variance. Deliberate: the later of equal variances
// goes first, and which are equal in what order depends on the swaps.
void SelectLowest(std::vector<int>& values,
                  std::size_t count,
                  const std::vector<double>& variances) {
    const auto varianceAt = [&](std::size_t i) {
        return variances[static_cast<std::size_t>(values[i])];
    };
    count = std::min(count, values.size());
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t lowest = i;
        for (std::size_t j = i + 1; j < values.size(); ++j) {
            if (varianceAt(lowest) >= varianceAt(j)) {
                lowest = j;
            }
        }
        std::swap(values[i], values[lowest]);
    }
    values.resize(count);
}

}  // namespace

ExchangeSearch::ExchangeSearch(const ExchangeModel& model, int width, ProgressEvent progress)
    : model_(model),
      kernels_(BestTileKernels()),
      width_(static_cast<std::size_t>(std::max(width, 0))),
      progress_(std::move(progress)),
      update_(model) {
    for (std::size_t v = 0; v < images_.size(); ++v) {
        images_[v].resize(SquareMatrix::PaddedSize(static_cast<std::size_t>(model.Columns())));
        products_[v].resize(model.PaddedCandidates());
    }
}

Status ExchangeSearch::ExchangeRounds(DOptDesignState& current) {
    std::ranges::sort(current.rows);
    best_ = current;
    current_ = current;
    ClearUsed();
    visited_.clear();
    static_cast<void>(IsNewDesign());
    hasTurnedBack_ = false;
    const int limit = RoundLimit();
    Status status = Success;
    for (int count = 1; status == Success; ++count) {
        if (count > limit) {
            status = NotConverged;
            break;
        }
        status = progress_(Round, static_cast<float>(count - 1));
        if (status == Success) {
            move_ = {};
            status = ExchangePass(count);
        }
        if (status == Success) {
            std::ranges::for_each(move_.tried, [this](int row) { SetUsed(row); });
            if (hasTurnedBack_ || IsTriedOut()) {
                break;
            }
        }
    }
    current = best_;
    return status;
}

int ExchangeSearch::RoundLimit() const {
    const std::size_t width = std::max<std::size_t>(width_, 1);
    return std::max(cMaxRounds, static_cast<int>((best_.rows.size() + width - 1) / width) + 1);
}

bool ExchangeSearch::IsTriedOut() const {
    return std::ranges::all_of(best_.rows, [this](int row) { return IsUsed(row); });
}

// `count` is the number of rounds without a better design.
Status ExchangeSearch::ExchangePass(int& count) {
    current_ = best_;
    int failures = 0;
    for (int pass = 1;; ++pass) {
        const Status status = progress_(Round, static_cast<float>(count - 1));
        if (status != Success) {
            return status;
        }
        leaving_ = LeavingPoints();
        ListEntering();
        BestExchange();
        const double ratio = static_cast<double>(move_.gain) + 1;
        if (ratio <= 0) {
            return IllegalArgument;
        }
        const double lift = std::log10(ratio);
        const double needed = static_cast<double>(best_.logDeterminant) + cLeastLift -
                              static_cast<double>(current_.logDeterminant);
        if (needed >= lift || move_.from < 0) {
            ++failures;
            if (failures == 1) {
                move_.tried = pass == 1 ? leaving_ : std::vector<int>();
            }
            // Where the best exchange gains nothing, a further pass that bars it could gain no
            // more.
            if (failures == 2 || pass > 1 || move_.gain <= 0) {
                return Success;
            }
        } else {
            failures = 0;
        }
        if (!ReplaceRow()) {
            return Success;
        }
        update_.Exchange(move_, current_);
        SetThreshold();
        if (failures == 0) {
            ClearUsed();
            if (pass == 1) {
                SetUsed(move_.to);
            }
        }
        move_.tabu = {{move_.to, move_.from}};  // the step back
        if (failures == 0) {
            const Status kept = KeepBetter();
            if (kept != Success || hasTurnedBack_) {
                return kept;
            }
            count = 0;
        }
    }
}

Status ExchangeSearch::KeepBetter() {
    hasTurnedBack_ = !IsNewDesign();
    if (hasTurnedBack_) {
        return Success;
    }
    if (visited_.size() > std::max(cLeastMaxLifts, cMaxLiftsOfRun * best_.rows.size())) {
        return NotConverged;
    }
    best_ = current_;
    return Success;
}

// A determinant that only rises never comes back to a design. Where it seems to, the rounding of
// the updates, of a badly conditioned design as a rule, is all that still changes.
bool ExchangeSearch::IsNewDesign() {
    std::uint64_t key = 0xcbf29ce484222325;  // FNV-1a over whole numbers
    for (const int row : current_.rows) {
        key = (key ^ static_cast<std::uint64_t>(row)) * 0x100000001b3;
    }
    return visited_.insert(key).second;
}

std::vector<int> ExchangeSearch::LeavingPoints() const {
    std::vector<int> points;
    for (const int row : current_.rows) {
        if ((points.empty() || points.back() != row) && !IsUsed(row)) {
            points.push_back(row);
        }
    }
    SelectLowest(points, width_, current_.variances);
    return points;
}

void ExchangeSearch::ListEntering() {
    const auto threshold = static_cast<double>(move_.threshold);
    entering_.clear();
    for (int k = 0; k < model_.Candidates(); ++k) {
        if (current_.variances[static_cast<std::size_t>(k)] >= threshold) {
            entering_.push_back(k);
        }
    }
}

void ExchangeSearch::BestExchange() {
    move_.gain = cNoGain;
    move_.from = move_.to = leaving_.empty() ? -1 : leaving_.front();
    for (std::size_t i = 0; i < leaving_.size(); ++i) {
        const auto vector = i % TileKernels::cVectors;
        if (vector == 0) {
            ComputeProducts(i);
        }
        if (!JudgeExchanges(leaving_[i], products_[vector].data())) {
            return;
        }
    }
}

// Inner products of up to three leaving points, from number `group` on, with the candidates that
// may replace the first of them, and so any of them.
void ExchangeSearch::ComputeProducts(std::size_t group) {
    const double least = current_.variances[static_cast<std::size_t>(leaving_[group])];
    tiles_.clear();
    for (const int k : entering_) {
        const std::size_t tile = static_cast<std::size_t>(k) / TileView::cWidth;
        if (current_.variances[static_cast<std::size_t>(k)] > least &&
            (tiles_.empty() || tiles_.back() != tile)) {
            tiles_.push_back(tile);
        }
    }
    std::array<const double*, TileKernels::cVectors> images{};
    std::array<double*, TileKernels::cVectors> products{};
    for (std::size_t v = 0; v < images.size(); ++v) {
        if (group + v < leaving_.size()) {
            model_.WidenRow(leaving_[group + v], x_);
            kernels_.multiply(current_.inverse.Row(0),
                              current_.inverse.Size(),
                              current_.inverse.Stride(),
                              x_.data(),
                              images_[v].data());
        }
        images[v] = images_[v].data();
        products[v] = products_[v].data();
    }
    kernels_.products(model_.Tiles(), tiles_.data(), tiles_.size(), images.data(), products.data());
}

// Keeps the best exchange of one leaving point if it beats the best so far. False when no candidate
// has a larger variance: then none has for the leaving points behind it.
bool ExchangeSearch::JudgeExchanges(int from, const double* products) {
    const double leavingVariance = current_.variances[static_cast<std::size_t>(from)];
    double bestDelta = -static_cast<double>(std::numeric_limits<float>::max());
    int bestTo = -1;
    bool hasLarger = false;
    for (const int to : entering_) {
        const double variance = current_.variances[static_cast<std::size_t>(to)];
        if (!(variance > leavingVariance)) {
            continue;
        }
        hasLarger = true;
        const double product = products[to];
        const double delta =
            variance - leavingVariance - (variance * leavingVariance - product * product);
        if (delta > bestDelta && !IsBarred(from, to)) {
            bestDelta = delta;
            bestTo = to;
        }
    }
    if (bestTo >= 0 && bestDelta > static_cast<double>(move_.gain)) {
        move_.gain = ToFloat(bestDelta);
        move_.from = from;
        move_.to = bestTo;
    }
    return hasLarger;
}

bool ExchangeSearch::IsBarred(int from, int to) const {
    return move_.tabu.contains({from, to});
}

// False when the walk has come back to the best design.
bool ExchangeSearch::ReplaceRow() {
    *std::ranges::find(current_.rows, move_.from) = move_.to;
    std::ranges::sort(current_.rows);
    return current_.rows != best_.rows;
}

void ExchangeSearch::SetThreshold() {
    double sum = 0;
    for (const int k : entering_) {
        sum += current_.variances[static_cast<std::size_t>(k)];
    }
    move_.threshold = entering_.empty() ? 0 : ToFloat(sum / static_cast<double>(entering_.size()));
}

}  // namespace DOpt
