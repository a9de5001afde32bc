// Which runs of a design are repeated when replicated runs are asked for: those that a trial
// D-optimal design, which has all the runs already and picks more of them, picks.

#include <algorithm>
#include <numeric>
#include <span>
#include <vector>

#include "designs/optimal/D_Optimal.h"
#include "designs/optimal/D_OptimalOptions.h"
#include "evaluation/DesignStatistics.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/QvRandom.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "frame/Validating.h"

namespace {

constexpr int cTrialRepetitions = 5;

// The runs in random order, repeated from the front when more are asked for than there are; in
// order of the design where results must repeat.
std::vector<int> ShuffledRuns(int rows, int count) {
    std::vector<int> order(static_cast<std::size_t>(rows));
    std::iota(order.begin(), order.end(), 1);
    if (!Validating::Get()) {
        std::mt19937 engine = QvRandom::MakeSeededEngine();
        QvRandom::Shuffle(std::span<int>(order), engine);
    }
    std::vector<int> chosen;
    chosen.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        chosen.push_back(order[static_cast<std::size_t>(i % rows)]);
    }
    return chosen;
}

DesignOptions TrialOptions(const DesignBuilder& builder,
                           const Factors& factors,
                           const DesignOptions& options,
                           const NCDataMatrix<float>& work) {
    DesignOptions trial(builder, factors);
    trial.SetBlocks(options.GetBlocks());
    trial.SetRuns(static_cast<unsigned int>(work.SizeRows()) + options.GetReplicatedRuns());
    trial.SetCenterPoints(0);
    trial.SetObjective(EObjective::Screening);
    trial.SetModel(EModel::Linear);
    auto* family = dynamic_cast<D_OptimalOptions*>(trial.GetDesignSpecificOptions());
    if (family != nullptr) {
        CandidateSet candidates;
        candidates.SetCandidateSet(work, DOpt::NumData());
        family->SetRepetitions(cTrialRepetitions);
        // Exactly as many runs as were asked for: no other run count may win.
        family->SetRunRange(0);
        family->SetCandidateSet(candidates);
        family->SetNewCandidateSet(false);
        family->SetUsePotentialTerms(false);
        family->SetInclusions(work, factors);
        family->SetUseInclusion(true);
    }
    return trial;
}

// The runs that occur more than once, as often as they are repetitions. The trial's rows are the
// runs, then the runs as candidates, doubled where too few.
std::vector<int> RepeatedRuns(std::vector<int> picks, int rows) {
    for (int& pick : picks) {
        pick = (pick - 1) % rows + 1;
    }
    std::ranges::sort(picks);
    std::vector<int> repeated;
    for (std::size_t i = 1; i < picks.size(); ++i) {
        if (picks[i] == picks[i - 1]) {
            repeated.push_back(picks[i]);
        }
    }
    return repeated;
}

// Empty where there is no trial design.
std::vector<int> RunsOfTrial(const DesignBuilder& builder,
                             const Factors& factors,
                             const DesignOptions& trial,
                             int rows) {
    try {
        const auto design = builder.Build(factors, trial, nullptr);
        const auto* optimal = dynamic_cast<const D_Optimal*>(design.get());
        return optimal != nullptr ? RepeatedRuns(optimal->GetPickedRows(1), rows)
                                  : std::vector<int>();
    } catch (const Exception&) {
        // The design is finished all the same.
        return {};
    }
}

}  // namespace

void NCDesign::AddReplicatedRuns(NCDataMatrix<float>& matrix,
                                 const Factors& factors,
                                 const DesignOptions& options) const {
    const int rows = matrix.SizeRows();
    const int count = static_cast<int>(options.GetReplicatedRuns());
    if (count <= 0 || rows == 0) {
        return;
    }
    std::vector<int> chosen;
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    if (builder != nullptr) {
        const int blocks = static_cast<int>(options.GetBlocks());
        // Deliberate: a level code that no level has is a fault of the design, and no reason to
        // choose runs at random.
        const NCDataMatrix<float> work =
            IsDesignMatrixCoded()
                ? DesignStatistics::FromCodedMatrix(matrix, factors, blocks, IsMixtureOnlyDesign())
                : matrix;
        chosen =
            RunsOfTrial(*builder, factors, TrialOptions(*builder, factors, options, work), rows);
    }
    // More or fewer than asked for would change the size of the experiment.
    chosen.resize(std::min(chosen.size(), static_cast<std::size_t>(count)));
    const std::vector<int> others = ShuffledRuns(rows, count);
    chosen.insert(
        chosen.end(), others.begin(), others.end() - static_cast<std::ptrdiff_t>(chosen.size()));
    matrix.InsertRows(rows + 1, count);
    for (int i = 0; i < count; ++i) {
        matrix.SetRow(rows + 1 + i, matrix.GetRow(chosen[static_cast<std::size_t>(i)]));
    }
}
