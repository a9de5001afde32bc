#include "designs/optimal/GenerateCandidateset.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "designs/optimal/CandidateBlocks.h"
#include "designs/optimal/DOptErrors.h"
#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptFactorRef.h"
#include "designs/optimal/DOptGen.h"
#include "designs/optimal/DOptProgress.h"
#include "designs/optimal/D_OptimalOptions.h"
#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"

namespace DOpt {

namespace {

constexpr unsigned long long cMaxCombinations = 0x7fffffff;
constexpr float cFullProgress = 100;

const D_OptimalOptions* FamilyOptions(const DesignOptions& options) {
    return dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
}

void ThrowIfCancelled(const bool* cancel) {
    if (cancel != nullptr && *cancel) {
        throw CancelException();
    }
}

[[noreturn]] void ThrowNoCandidates() {
    throw Exception(ExceptionMessage::translate("The candidate set could not be generated."));
}

[[noreturn]] void ThrowStatus(Status status, const DesignOptions& options, DOptGen& generator) {
    if (generator.GetProgress() != nullptr) {
        generator.GetProgress()->Hide();
    }
    if (IsBreak(status)) {
        throw CancelException();
    }
    throw Exception(ExceptionMessage::translate("The candidate set could not be generated: {1}")
                    << GetErrorString(status, FamilyOptions(options)));
}

bool HasLevels(CEType::EType type) {
    return type == CEType::Multilevel || type == CEType::Qualitative || type == CEType::Time;
}

// One more than cMaxCombinations for anything above it.
unsigned long long LevelCombinationCount(const Factors& factors) {
    unsigned long long count = 1;
    const int factorCount = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < factorCount; ++factor) {
        if (HasLevels(factors.GetFactorType(factor))) {
            count *= factors.GetLevelCount(factor);
            if (count >= cMaxCombinations) {
                return cMaxCombinations + 1;
            }
        }
    }
    return count;
}

// 1, 2, ... L, with the middle level moved to the end.
std::vector<int> LevelOrder(int levels) {
    const int last = levels / 2 + 1;
    std::vector<int> order;
    for (int level = 1; level <= levels; ++level) {
        if (level != last) {
            order.push_back(level);
        }
    }
    if (last <= levels) {
        order.push_back(last);
    }
    return order;
}

PointTable LevelSettings(const DOptFactorAdapter& factors, int factor) {
    const DOptFactorRef ref(factors, factor);
    if (factors.GetFactorType(factor) == CEType::Qualitative) {
        return PointTable(*ref.MakeCodingMatrix());
    }
    PointTable settings(1);
    for (const int level : LevelOrder(static_cast<int>(factors.GetLevelCount(factor)))) {
        const float value = ref.GetMultilevelSettingOB(level);
        settings.Append(std::span(&value, 1));
    }
    return settings;
}

std::vector<LevelColumns> MakeLevelColumns(const DOptFactorAdapter& factors) {
    std::vector<LevelColumns> levels;
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        if (type == CEType::Multilevel || type == CEType::Qualitative) {
            levels.push_back(
                {factors.FactorToExpanded(factor + 1) - 1, LevelSettings(factors, factor)});
        }
    }
    return levels;
}

BlockRequest MakeBlockRequest(const DOptFactorAdapter& factors, const DesignOptions& options) {
    BlockRequest request;
    request.factors = &factors;
    request.processModel = options.GetModel();
    const D_OptimalOptions* family = FamilyOptions(options);
    if (family != nullptr) {
        request.mixtureModel = family->GetMixtureModel();
        request.usePotentialTerms = family->GetUsePotentialTerms();
        request.constraints = *family->GetDOptConstraints(factors);
    }
    return request;
}

// A constraint without a coefficient, whose row belongs to no block, holds everywhere or nowhere.
bool HoldsNowhere(std::span<const float> constraint) {
    const auto coefficients = constraint.first(constraint.size() - 1);
    return std::ranges::all_of(coefficients, [](float value) { return value == 0; }) &&
           constraint.back() < 0;
}

// @throws Status for a constraint that no run can keep
void RequireSatisfiable(const NCDataMatrix<float>& constraints) {
    for (int row = 1; row <= constraints.SizeRows(); ++row) {
        if (HoldsNowhere(constraints.RowSpan(row))) {
            throw Status(Inconsistent);
        }
    }
}

// One call of GenerateCandidateset.
struct Generation {
    DOptGen& generator;
    const DOptFactorAdapter& factors;
    const DesignOptions& options;
    const bool* cancel;
    unsigned int limit;
};

// @throws Status for a step that failed
Status Generate(const Generation& call, NumData& counts) {
    const unsigned long long combinations = LevelCombinationCount(call.factors);
    if (combinations > cMaxCombinations) {
        return TooManyVertices;
    }
    if (combinations == 0) {
        // A factor without levels has no runs; those of an earlier call must not stand for them.
        return call.generator.SetCandidates({0, call.generator.GetVariables()});
    }
    BlockRequest request = MakeBlockRequest(call.factors, call.options);
    RequireSatisfiable(request.constraints);
    request.combinations = static_cast<long long>(combinations);
    request.maxCells = call.limit;
    request.progress = call.generator.GetProgress();
    request.cancel = call.cancel;
    const std::optional<CandidateBlock> process = MakeProcessBlock(request);
    ThrowIfCancelled(call.cancel);
    const std::optional<CandidateBlock> mixture = MakeMixtureBlock(request);
    ThrowIfCancelled(call.cancel);

    CandidateRequest rows;
    rows.process = process ? &process->rows : nullptr;
    rows.mixture = mixture ? &mixture->rows : nullptr;
    rows.levels = MakeLevelColumns(call.factors);
    rows.columns = call.generator.GetVariables();
    rows.combinations = request.combinations;
    rows.maxCells = call.limit;
    NCDataMatrix<float> result;
    const StopTest stop = MakeStopTest(request.progress, call.cancel, cFullProgress);
    const Status status = CombineCandidates(rows, stop, result);
    if (status != Success) {
        return status;
    }
    counts = CountCandidates(
        process ? &*process : nullptr, mixture ? &*mixture : nullptr, request.combinations);
    return call.generator.SetCandidates(result);
}

// Doubles the rows until there are enough.
void Grow(DOptCandidateMatrix& candidates, unsigned int runs) {
    while (candidates.rows.SizeRows() > 0 &&
           static_cast<unsigned int>(candidates.rows.SizeRows()) < runs &&
           candidates.rows.SizeRows() <= std::numeric_limits<int>::max() / 2) {
        candidates.rows.ConcatRows(candidates.rows);
        if (candidates.rowNames != nullptr) {
            std::vector<std::string>& names = *candidates.rowNames;
            const std::vector<std::string> copies = names;
            names.insert(names.end(), copies.begin(), copies.end());
        }
    }
}

}  // namespace

NCDataMatrix<float> GenerateCandidateset(DOptGen* gen,
                                         const Factors& factors,
                                         const DesignOptions& options,
                                         bool grow,
                                         NumData* counts,
                                         const bool* cancel,
                                         unsigned int limit) {
    std::unique_ptr<NCProgress> ownProgress;
    std::unique_ptr<DOptGen> ownGenerator;
    if (gen == nullptr) {
        ownProgress = std::make_unique<NCProgress>(
            "Computing Extreme Vertices...", 0.0F, cFullProgress, false, false, true, "");
        ownGenerator = std::make_unique<DOptGen>(ownProgress.get());
        gen = ownGenerator.get();
    }
    NumData ownCounts;
    const DOptFactorAdapter adapter(factors, options.GetBlocks());
    if (gen->SetVariables(static_cast<int>(adapter.GetDesignFactorCountExpanded())) != Success) {
        ThrowNoCandidates();
    }
    gen->SetIsMixFrom(adapter);
    gen->SetVarRangesFrom(adapter);
    gen->SetTransformsFrom(adapter);
    ThrowIfCancelled(cancel);
    Status status = Success;
    try {
        status = Generate({*gen, adapter, options, cancel, limit},
                          counts != nullptr ? *counts : ownCounts);
    } catch (const Status failed) {
        status = failed;
    }
    gen->SetStatus(status);
    if (status != Success) {
        ThrowStatus(status, options, *gen);
    }
    DOptCandidateMatrix* candidates = gen->GetCandidates();
    if (candidates == nullptr || candidates->rows.SizeRows() == 0) {
        ThrowNoCandidates();
    }
    if (grow) {
        Grow(*candidates, options.GetRuns());
    }
    NCDataMatrix<float> result = candidates->rows;
    adapter.ReorderToOriginal(result);
    return result;
}

}  // namespace DOpt
