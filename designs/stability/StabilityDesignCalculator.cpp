#include "designs/stability/StabilityDesignCalculator.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "designs/stability/BreakCheck.h"
#include "designs/stability/SearchLimit.h"
#include "designs/stability/SplitBalance.h"
#include "designs/stability/SubsetDistances.h"
#include "designs/stability/SubsetModel.h"
#include "designs/stability/SubsetQuality.h"
#include "designs/stability/SubsetSplit.h"
#include "foundation/util/NCProgress.h"
#include "foundation/util/UserMessage.h"
#include "foundation/utl/QvRandom.h"
#include "frame/Factors.h"
#include "frame/Validating.h"

namespace {

constexpr int cPreferBalance = 1;
constexpr int cPreferCondition = 2;
// More subsets than this are taken for exhausted memory at once.
constexpr int cMostSubsets = 1'000'000;
// Iterations faster than this, in seconds, are not shown one by one: it would take longer than the
// work.
constexpr double cShownIteration = 0.001;

// A part of the progress for the life of the object; nothing without a progress.
class SubRange {
  public:
    SubRange(NCProgress* progress, int from, int to) : progress_(progress) {
        if (progress_ != nullptr) {
            progress_->PushSubRange(static_cast<float>(from), static_cast<float>(to), "");
        }
    }
    SubRange(const SubRange&) = delete;
    SubRange& operator=(const SubRange&) = delete;
    ~SubRange() {
        if (progress_ != nullptr) {
            try {
                progress_->PopSubRange();
            } catch (...) {
                // Often run while an exception passes; a display that fails is no reason to end the
                // program.
            }
        }
    }

  private:
    NCProgress* progress_;
};

std::vector<int> CountLevels(const Factors& factors) {
    std::vector<int> levels;
    for (int factor = 0; factor < static_cast<int>(factors.GetDesignFactorCount()); ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        const bool hasLevels = type == CEType::Qualitative || type == CEType::Multilevel;
        levels.push_back(hasLevels ? static_cast<int>(factors.GetLevelCount(factor)) : 2);
    }
    return levels;
}

// A subset in the terms of the callers, and back.
LevelMatrix ToLevelMatrix(LevelRows rows) {
    LevelMatrix matrix(static_cast<long>(rows.Count()), static_cast<long>(rows.columns));
    std::copy(rows.cells.begin(), rows.cells.end(), matrix.begin());
    return matrix;
}

NCDataMatrix<float> ToDataMatrix(const LevelMatrix& subset) {
    NCDataMatrix<float> matrix(static_cast<int>(subset.nr()), static_cast<int>(subset.nc()));
    std::transform(subset.begin(), subset.end(), matrix.Cells().begin(), [](int level) {
        return static_cast<float>(level);
    });
    return matrix;
}

LevelRows RowsOf(const LevelMatrix& subset) {
    return {{subset.begin(), subset.end()}, static_cast<std::size_t>(subset.nc())};
}

[[noreturn]] void StopForMemory(int reduction, NCProgress* progress) {
    if (progress != nullptr) {
        progress->Hide();
    }
    UserMessage::ShowError("Subset designs with reduction " + std::to_string(reduction) +
                           " cannot be created with the current factor setup. Out of memory, "
                           "computations stopped.");
    throw CancelException();
}

}  // namespace

// One calculation.
struct StabilityDesignCalculator::Implementation {
    const Factors* factors;
    std::vector<int> levels;
    int reduction;
    int maxIterations;  // follows the measured speed
    int secondsToWait;
    int measure;
    const bool* cancel;

    // What the search works with. Made for the calculation, and not again for an iteration.
    NCProgress* progress = nullptr;
    BreakCheck checkBreak;
    std::optional<LevelGroups> groups;
    std::optional<SplitBalance> balance;  // for cPreferBalance only
    std::optional<SubsetModel> model;     // for cPreferCondition only
    std::vector<std::vector<int>> rows;   // by subset, for cPreferCondition only
    std::mt19937 engine;

    // What the search keeps.
    std::optional<SubsetSplit> kept;
    double best = std::numeric_limits<double>::max();
    std::vector<int> codes;
    int iterations = 0;

    Implementation(int reduction_,
                   const Factors& factors_,
                   int secondsToWait_,
                   bool preferBalance,
                   const bool* cancel_)
        : factors(&factors_),
          levels(CountLevels(factors_)),
          reduction(reduction_),
          maxIterations(SearchLimit::GetInitial(reduction_, secondsToWait_, Validating::Get())),
          secondsToWait(secondsToWait_),
          measure(preferBalance ? cPreferBalance : cPreferCondition),
          cancel(cancel_) {}

    /// In the part from 0 to `units` of the progress.
    void SearchWithin(int units);
    std::vector<LevelMatrix> MakeSubsets();
    std::vector<std::vector<int>> CountDistances(const std::vector<LevelMatrix>& subsets) const;

  private:
    void Prepare();
    void Search();
    void TryOne(int iteration, SubsetSplit& split, bool shown);
    [[nodiscard]] double Score(const SubsetSplit& split);
    [[nodiscard]] double BalanceScore(const SubsetSplit& split);
    [[nodiscard]] double ConditionScore() const;
    void SetLimit(int limit);
    [[nodiscard]] bool IsPerfect() const;
    // Nothing can be better than any other division.
    [[nodiscard]] bool IsAlwaysBest() const {
        return reduction == 1 || groups->Total() <= reduction;
    }
};

void StabilityDesignCalculator::Implementation::SearchWithin(int units) {
    const SubRange part(progress, 0, units);
    Prepare();
    Search();
}

void StabilityDesignCalculator::Implementation::Prepare() {
    if (reduction > cMostSubsets) {
        throw std::bad_alloc();
    }
    groups.emplace(levels, reduction);
    if (groups->Total() < 0) {
        throw std::bad_alloc();
    }
    if (!Validating::Get()) {
        engine = QvRandom::MakeSeededEngine();
    }
    if (!IsAlwaysBest()) {
        if (measure == cPreferBalance) {
            balance.emplace(*groups);
        } else {
            model.emplace(*factors);
            rows.resize(static_cast<std::size_t>(reduction));
        }
    }
}

void StabilityDesignCalculator::Implementation::Search() {
    SetLimit(maxIterations);
    SubsetSplit split(*groups);
    const auto begin = std::chrono::high_resolution_clock::now();
    // Deliberate: without a time limit the count ends the search only once the speed is known, so
    // that a fast search lasts its two seconds, too.
    bool measured = Validating::Get() || secondsToWait > 0;
    bool isSlow = true;
    for (int i = 0; i < maxIterations || !measured; ++i) {
        if (SearchLimit::IsMeasuredBefore(i)) {
            const double seconds =
                SearchLimit::ToSeconds(std::chrono::high_resolution_clock::now() - begin);
            isSlow = seconds / i > cShownIteration;
            if (seconds > 0) {
                measured = true;
                SetLimit(SearchLimit::GetAdjusted(maxIterations, i, seconds, secondsToWait));
            }
        }
        checkBreak();
        TryOne(i, split, isSlow || SearchLimit::IsMeasuredBefore(i));
        iterations = i + 1;
        if (IsPerfect() || (kept && IsAlwaysBest())) {
            return;
        }
    }
}

void StabilityDesignCalculator::Implementation::TryOne(int iteration,
                                                       SubsetSplit& split,
                                                       bool shown) {
    NCProgress* const display = shown ? progress : nullptr;
    const long long first = 3LL * iteration;
    const auto step = [first](int number) {
        return static_cast<int>(
            std::min<long long>(first + number, std::numeric_limits<int>::max()));
    };
    {
        const SubRange part(display, step(0), step(1));
        split.Draw(engine, Validating::Get(), checkBreak);
    }
    {
        const SubRange part(display, step(1), step(2));
        for (std::size_t subset = 0; subset < rows.size(); ++subset) {
            split.WriteSubset(static_cast<int>(subset), rows[subset], checkBreak);
        }
    }
    const SubRange part(display, step(2), step(3));
    const double score = IsAlwaysBest() ? 1.0 : Score(split);
    if (score < best) {
        best = score;
        kept = split;
        if (balance) {
            codes = balance->GetCodes(split, checkBreak);
        }
    }
}

double StabilityDesignCalculator::Implementation::Score(const SubsetSplit& split) {
    return measure == cPreferBalance ? BalanceScore(split) : ConditionScore();
}

// 1 for a division of perfect subsets, more for any other.
double StabilityDesignCalculator::Implementation::BalanceScore(const SubsetSplit& split) {
    int sum = 0;
    for (const int code : balance->GetCodes(split, checkBreak)) {
        sum += code * code;
    }
    constexpr double cPerfect = SplitBalance::cPerfect;
    return static_cast<double>(reduction) * cPerfect * cPerfect / sum;
}

double StabilityDesignCalculator::Implementation::ConditionScore() const {
    // What a subset without a condition number counts.
    constexpr float cNoNumber = 999999995904.0F;
    double sum = 0;
    for (const std::vector<int>& cells : rows) {
        checkBreak();
        if (cells.empty()) {
            return std::numeric_limits<float>::max();
        }
        const float number = model->GetConditionNumber({cells, levels.size()});
        // Infinite counts as none, so that some division is kept where all are singular.
        if (number == Factors::cNoValue || !std::isfinite(number)) {
            sum += static_cast<double>(cNoNumber * cNoNumber);
        } else {
            sum += static_cast<double>(number) * static_cast<double>(number);
        }
    }
    return sum;
}

void StabilityDesignCalculator::Implementation::SetLimit(int limit) {
    maxIterations = limit;
    if (progress != nullptr) {
        progress->SetRange(0, 3 * static_cast<float>(limit) - 1);
    }
}

bool StabilityDesignCalculator::Implementation::IsPerfect() const {
    return measure == cPreferBalance && !codes.empty() &&
           std::all_of(
               codes.begin(), codes.end(), [](int code) { return code >= SplitBalance::cPerfect; });
}

std::vector<LevelMatrix> StabilityDesignCalculator::Implementation::MakeSubsets() {
    std::vector<LevelMatrix> subsets;
    std::vector<int> cells;
    for (int subset = 0; kept && subset < reduction; ++subset) {
        kept->WriteSubset(subset, cells, checkBreak);
        subsets.push_back(ToLevelMatrix({cells, levels.size()}));
    }
    return subsets;
}

std::vector<std::vector<int>> StabilityDesignCalculator::Implementation::CountDistances(
    const std::vector<LevelMatrix>& subsets) const {
    if (!kept) {
        return {};
    }
    if (SubsetDistances::IsSplitFaster(*groups)) {
        return SubsetDistances::CountInSplit(*kept, checkBreak);
    }
    std::vector<std::vector<int>> distances;
    distances.reserve(subsets.size());
    for (const LevelMatrix& subset : subsets) {
        distances.push_back(SubsetDistances::CountInRows(RowsOf(subset), checkBreak));
    }
    return distances;
}

StabilityDesignCalculator::StabilityDesignCalculator(int reduction,
                                                     const Factors& factors,
                                                     int secondsToWait,
                                                     bool preferBalance,
                                                     const bool* cancel)
    : implementation_(std::make_shared<Implementation>(
          reduction, factors, secondsToWait, preferBalance, cancel)) {}

std::vector<NCDataMatrix<float>> StabilityDesignCalculator::Calculate(
    NCProgress* progress,
    std::vector<bool>& unique,
    std::vector<bool>& balance,
    std::vector<int>& iterations,
    std::vector<std::vector<int>>& distances,
    std::vector<bool>& oa,
    std::vector<bool>& noa) {
    for (std::vector<bool>* flags : {&unique, &balance, &oa, &noa}) {
        flags->clear();
    }
    iterations.clear();
    distances.clear();
    // A copy, so that the object can be asked again.
    Implementation work = *implementation_;
    if (work.reduction < 1 || work.levels.empty()) {
        return {};
    }
    work.progress = progress;
    work.checkBreak = BreakCheck(progress, work.cancel);
    const int units = work.maxIterations;
    if (progress != nullptr) {
        progress->SetRange(0, static_cast<float>(units) + 1);
    }
    std::vector<NCDataMatrix<float>> matrices;
    try {
        work.SearchWithin(units);
        const SubRange part(progress, units, units + 1);
        const std::vector<LevelMatrix> subsets = work.MakeSubsets();
        distances = work.CountDistances(subsets);
        matrices.reserve(subsets.size());
        iterations.assign(subsets.size(), work.iterations);
        for (const LevelMatrix& subset : subsets) {
            const LevelRows rows = RowsOf(subset);
            const auto pairs = SubsetQuality::CheckPairBalance(rows, work.checkBreak);
            unique.push_back(SubsetQuality::IsUnique(rows));
            balance.push_back(SubsetQuality::IsBalanced(rows));
            oa.push_back(pairs.strict);
            noa.push_back(pairs.near);
            matrices.push_back(ToDataMatrix(subset));
        }
    } catch (const std::bad_alloc&) {
        StopForMemory(work.reduction, progress);
    } catch (const std::length_error&) {
        // A vector longer than any memory.
        StopForMemory(work.reduction, progress);
    }
    return matrices;
}
