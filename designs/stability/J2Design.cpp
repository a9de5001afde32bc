#include "designs/stability/J2Design.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "designs/stability/BalancedColumns.h"
#include "designs/stability/J2Options.h"
#include "designs/stability/J2Terms.h"
#include "evaluation/StatisticsModel.h"
#include "foundation/util/NCInternalError.h"
#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/QvRandom.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/Validating.h"

namespace {

using Matrix = NCDataMatrix<float>;

constexpr double cNone = -99.0;
constexpr float cNoValue = -99.0F;
constexpr float cFirstCode = Factors::cFirstLevelCode;
constexpr const char* cTitle = "Generating reduced combinatorial...";
/// Without J2Options: coarse for this family, fine for designs that may come to share the search.
constexpr int cManyDefaultLevels = 7;
/// Numbers of a candidate set.
constexpr unsigned int cCandidateLimit = 1'000'000'000;

const D_OptimalOptions& FamilyOptions(const DesignOptions& options) {
    const auto* family = dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
    if (family == nullptr) {
        throw NCInternalError("J2Design");
    }
    return *family;
}

[[noreturn]] void ThrowNoDesign() {
    throw Exception(ExceptionMessage::translate("No design was found."));
}

void ThrowIfStopped(const bool* stop) {
    if (stop != nullptr && *stop) {
        throw CancelException();
    }
}

bool HasLevels(const Factors& factors, int factor) {
    const CEType::EType type = factors.GetFactorType(factor);
    return type == CEType::Multilevel || type == CEType::Qualitative;
}

void RequireLevels(int levels, int least) {
    if (levels < least) {
        throw Exception(
            ExceptionMessage::translate(
                "A factor of a reduced combinatorial design needs {1} levels or more, not {2}.")
            << least << levels);
    }
}

// Levels of a column. Those of the options are looked at where a factor takes them.
int LevelsOf(const Factors& factors, int factor, int defaultLevels) {
    if (HasLevels(factors, factor)) {
        const auto levels = static_cast<int>(factors.GetLevelCount(factor));
        RequireLevels(levels, 1);
        return levels;
    }
    RequireLevels(defaultLevels, 2);
    if (defaultLevels > J2Options::cMaxLevels) {
        throw Exception(
            ExceptionMessage::translate("A continuous factor of a reduced combinatorial "
                                        "design has at most {1} levels, not {2}.")
            << J2Options::cMaxLevels << defaultLevels);
    }
    return defaultLevels;
}

// Asked of the largest run count before the first search, so that no result is lost.
void RequireSearchable(long long runs) {
    if (runs > J2Design::cMaxRuns) {
        throw Exception(
            ExceptionMessage::translate("The search for a reduced combinatorial design would reach "
                                        "{1} runs. It may have at most {2} runs.")
            << runs << J2Design::cMaxRuns);
    }
}

// The model without a term of the block, which these designs do not have.
D_OptimalOptions::Model TermsOf(EDesign::Type type,
                                const Factors& factors,
                                const DesignOptions& options) {
    D_OptimalOptions::Model terms = FamilyOptions(options).GetModel(type, factors, options);
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    J2Terms::RequireFactors(terms, count);
    std::erase_if(terms, [count](const std::vector<int>& term) {
        return std::ranges::any_of(term, [count](int factor) { return factor >= count; });
    });
    return terms;
}

// A figure as it stands, and as something to be large.
struct Key {
    double raw = 0;
    double value = 0;
};

std::optional<Key> KeyOf(const DesignStatistics::Results& figures, EDesign::DOptimalSelectBy by) {
    // Deliberate: no value stays -99 and so stands above every negated figure beyond 99.
    const auto negated = [](double raw) { return Key{raw, raw == cNone ? cNone : -raw}; };
    switch (by) {
        case EDesign::GEfficiency:
            return Key{figures.GEff, figures.GEff};
        case EDesign::ConditionNumber:
            return negated(figures.CondNo);
        case EDesign::LogDeterminant:
            return Key{figures.LogDet, figures.LogDet};
        case EDesign::IOptimality:
            return negated(figures.IOptimality);
        default:
            return std::nullopt;
    }
}

bool IsBetter(const Key& key, const Key& best) {
    return (best.raw == cNone && key.raw != cNone) || key.value > best.value;
}

/// The search as the progress shows it and the user may end it.
class WatchedSearch : public ColumnSearch {
  public:
    WatchedSearch(NCProgress& progress, const bool* stop)
        : progress_(progress), stop_(stop), isShuffled_(!Validating::Get()) {
        if (isShuffled_) {
            engine_ = QvRandom::MakeSeededEngine();
        }
    }

    void Shuffle(std::span<int> column) override {
        if (isShuffled_) {
            QvRandom::Shuffle(column, engine_);
        }
    }
    void Begin(int column) override {
        Poll();
        const auto from = static_cast<float>(column - 2);
        progress_.PushSubRange(from, from + 1, "");
        progress_.SetRange(0, static_cast<float>(J2Design::miMaxIter));
    }
    void End(int column) override {
        progress_.PopSubRange();
        progress_.SetValue(static_cast<float>(column - 1));
    }
    void AfterSwaps(int swaps) override {
        ThrowIfStopped(stop_);
        if (!progress_.SetValue(static_cast<float>(swaps))) {
            throw CancelException();
        }
    }
    void Poll() override {
        ThrowIfStopped(stop_);
        if (progress_.IsBreakPressed()) {
            throw CancelException();
        }
    }

  private:
    NCProgress& progress_;
    const bool* stop_;
    bool isShuffled_;
    std::mt19937 engine_;
};

// Runs of the design, with those that a lower run count leaves to be repeated.
DesignOptions OptionsFor(const DesignOptions& options, long long runs) {
    DesignOptions copy = options;
    // There is no block column.
    copy.SetBlocks(1);
    copy.SetRuns(static_cast<unsigned int>(runs));
    const long long total = static_cast<long long>(options.GetRuns()) + options.GetReplicatedRuns();
    if (total > runs) {
        copy.SetReplicatedRuns(static_cast<unsigned int>(total - runs));
    }
    return copy;
}

}  // namespace

struct J2Design::Judge {
    Matrix candidates;
    std::unique_ptr<StatisticsModel> statistics;  // null before the first design
};

J2Design::J2Design(EDesign::Type type,
                   const Factors& factors,
                   const DesignOptions& options,
                   bool* stop)
    : NCDesign(factors), designType_(type) {
    ThrowIfStopped(stop);
    const D_OptimalOptions& family = FamilyOptions(options);
    const long long runs = options.GetRuns();
    const long long range = family.GetRunRange();
    if (range < 0) {
        ThrowNoDesign();  // there is no run count to search
    }
    RequireSearchable(runs + range);
    RequireFinishedSize(static_cast<int>(runs + range), OptionsFor(options, runs + range));
    NCProgress progress("",
                        0.0F,
                        static_cast<float>(2 * range + 1) *
                            static_cast<float>(std::max(family.GetRepetitions(), 1)),
                        false,
                        false,
                        true,
                        cTitle);
    Judge judge;
    bool isBroken = false;
    try {
        for (long long r = std::max(runs - range, 1LL); r <= runs + range && !isBroken; ++r) {
            isBroken = !GenerateRunCount(factors, OptionsFor(options, r), judge, progress, stop);
        }
    } catch (const CancelException&) {
        // What has been generated stays usable.
        isBroken = true;
    }
    if (results_.empty()) {
        ThrowNoDesign();
    }
    selected_ = static_cast<int>(GetBestDesignIndex(family.GetSelectDesignBy()));
    const Matrix& best = results_[static_cast<std::size_t>(selected_)].design;
    if (best.SizeRows() > 0) {
        SetDesignMatrix(best);
    } else if (isBroken || progress.IsBreakPressed()) {
        throw CancelException();
    } else {
        ThrowNoDesign();
    }
}

J2Design::J2Design(const Factors& factors, const ConfigurationSection& section)
    : NCDesign(factors), designType_(EDesign::J2) {
    Load(&section);
}

unsigned long long J2Design::GetBestDesignIndex(EDesign::DOptimalSelectBy by) const {
    if (results_.empty()) {
        ThrowNoDesign();
    }
    std::size_t best = 0;
    for (std::size_t i = 1; i < results_.size(); ++i) {
        const std::optional<Key> key = KeyOf(results_[i], by);
        if (key && IsBetter(*key, *KeyOf(results_[best], by))) {
            best = i;
        }
    }
    return best;
}

void J2Design::SelectDesign(int index) {
    if (index < 0 || index >= static_cast<int>(results_.size()) || index == selected_) {
        return;
    }
    SetDesignMatrix(results_[static_cast<std::size_t>(index)].design);
    selected_ = index;
}

std::shared_ptr<NCDesign> J2Design::Clone() const {
    return std::make_shared<J2Design>(*this);
}

bool J2Design::GenerateRunCount(const Factors& factors,
                                const DesignOptions& options,
                                Judge& judge,
                                NCProgress& progress,
                                bool* stop) {
    const int repetitions = FamilyOptions(options).GetRepetitions();
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        ThrowIfStopped(stop);
        const auto done = static_cast<float>(results_.size());
        progress.PushSubRange(done, done + 1, "");
        const Matrix design = GenerateDesign(factors, options, progress, stop);
        // Asked of both: a display may note the wish only when something is shown.
        if (!progress.PopSubRange() || progress.IsBreakPressed()) {
            return false;
        }
        results_.push_back(CalculateStatistics(factors, options, design, judge, stop));
        results_.back().ReplicatedRuns = static_cast<int>(options.GetReplicatedRuns());
    }
    return true;
}

NCDataMatrix<float> J2Design::GenerateDesign(const Factors& factors,
                                             const DesignOptions& options,
                                             NCProgress& progress,
                                             const bool* stop) const {
    int defaultLevels = designType_ == EDesign::J2 ? J2Options::cDefaultLevels : cManyDefaultLevels;
    if (const auto* own = dynamic_cast<const J2Options*>(options.GetDesignSpecificOptions())) {
        defaultLevels = own->GetLevels();
    }
    std::vector<int> levels;
    std::vector<int> factorOrder;
    CalculateLevels(factors, options, levels, factorOrder, defaultLevels);
    progress.SetRange(0, static_cast<float>(std::max<std::size_t>(levels.size(), 2) - 1));
    const int runs = static_cast<int>(options.GetRuns());
    WatchedSearch search(progress, stop);
    const auto columns = MakeBalancedColumns(runs, levels, miMaxIter, search);

    Matrix design(runs, static_cast<int>(factors.GetDesignFactorCount()), cNoValue);
    for (std::size_t position = 0; position < columns.size(); ++position) {
        const int factor = factorOrder[position];
        const bool isCoded = HasLevels(factors, factor);
        for (int run = 0; run < runs; ++run) {
            const auto level = static_cast<float>(columns[position][static_cast<std::size_t>(run)]);
            design(run + 1,
                   factor + 1,
                   isCoded ? cFirstCode + level
                           : 2.0F * level / static_cast<float>(defaultLevels - 1) - 1.0F);
        }
    }
    AddReplicatedRuns(design, factors, options);
    return design;
}

void J2Design::CalculateLevels(const Factors& factors,
                               const DesignOptions& options,
                               std::vector<int>& levels,
                               std::vector<int>& factorOrder,
                               int defaultLevels) const {
    // The most levels first, and among equals the last factor.
    std::set<std::pair<int, int>, std::greater<>> sorted;
    for (const std::vector<int>& term : TermsOf(designType_, factors, options)) {
        if (term.size() == 1) {
            const int factor = term.front();
            sorted.emplace(LevelsOf(factors, factor, defaultLevels), factor);
        }
    }
    levels.reserve(sorted.size());
    factorOrder.reserve(sorted.size());
    for (const auto& [count, factor] : sorted) {
        levels.push_back(count);
        factorOrder.push_back(factor);
    }
}

J2Design::Results J2Design::CalculateStatistics(const Factors& factors,
                                                const DesignOptions& options,
                                                const Matrix& design,
                                                Judge& judge,
                                                bool* stop) {
    // Candidates and model are those of every design of the search.
    if (judge.statistics == nullptr) {
        try {
            judge.candidates = DOpt::GenerateCandidateset(
                nullptr, factors, options, false, &numData_, stop, cCandidateLimit);
        } catch (const Exception&) {
            // The figures over the candidates stay without a value.
            judge.candidates = Matrix();
        }
        judge.statistics = std::make_unique<StatisticsModel>(
            factors,
            TermsOf(designType_, factors, options),
            1,
            judge.candidates.SizeRows() > 0 ? &judge.candidates : nullptr);
    }
    bool neverStopped = false;
    bool& isStopped = stop != nullptr ? *stop : neverStopped;
    const bool pseudo = factors.IsMixture() && !factors.HasFiller();
    Results results;
    static_cast<DesignStatistics::Results&>(results) = judge.statistics->Calculate(
        IsDesignMatrixCoded() ? DesignStatistics::FromCodedMatrix(design, factors, 1, pseudo)
                              : design,
        isStopped);
    results.design = design;
    return results;
}
