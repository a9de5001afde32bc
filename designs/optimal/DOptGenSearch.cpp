// The search for designs; the candidates are the subject of the other file.
#include <algorithm>
#include <ctime>
#include <iterator>
#include <new>
#include <span>
#include <utility>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptGen.h"
#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/engine/DOptExchange.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Validating.h"

using DOpt::BalanceMap;
using DOpt::DOptExchange;
using DOpt::ExchangeResult;
using DOpt::ExchangeSettings;
using DOpt::Status;

namespace {

constexpr unsigned int cValidatingSeed = 1974;

bool IsSet(const bool* cancel) {
    return cancel != nullptr && *cancel;
}

unsigned int SearchSeed() {
    return Validating::Get() ? cValidatingSeed : static_cast<unsigned int>(std::time(nullptr));
}

DOptResults ToRecord(ExchangeResult found) {
    DOptResults record;
    record.CondNo = static_cast<double>(found.figures.conditionNumber);
    record.GEff = static_cast<double>(found.figures.gEfficiency);
    record.LogDet = static_cast<double>(found.figures.logDeterminant);
    record.NormLogDet = static_cast<double>(found.figures.normLogDeterminant);
    record.IOptimality = static_cast<double>(found.figures.iValue);
    record.balanced = found.balanced;
    record.rows = std::move(found.rows);
    return record;
}

// Only a factor in coding columns has levels to count; the constant is column 1.
BalanceMap MakeBalanceMap(const DOptFactorAdapter& factors, int balanceFactor) {
    const int factor = factors.FactorPosition(balanceFactor);
    const bool isCoded = factor <= static_cast<int>(factors.GetDesignFactorCount()) &&
                         factors.GetFactorType(factor - 1) == CEType::Qualitative &&
                         factors.GetLevelCount(factor - 1) > 1;
    BalanceMap balance;
    if (isCoded) {
        balance[factors.FactorToExpanded(factor) + 1] =
            static_cast<int>(factors.GetLevelCount(factor - 1));
    }
    return balance;
}

}  // namespace

bool DOptGen::GenerateDesigns(const DOptFactorAdapter& factors,
                              const DesignOptions& options,
                              bool* cancel) {
    const auto* family = dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
    results_.clear();
    model_.reset();
    if (IsSet(cancel)) {
        return SetStatus(DOpt::Cancelled) == DOpt::Success;
    }
    if (family == nullptr || candidates_ == nullptr) {
        return SetStatus(DOpt::MissingSource) == DOpt::Success;
    }
    if (isMix_ == nullptr) {
        SetIsMixFrom(factors);
    }
    if (varMin_ == nullptr) {
        SetVarRangesFrom(factors);
    }
    expansion_ = std::make_unique<DOpt::ModelExpansion>(*this, factors);
    expansion_->AddModelTerms(family->GetModel(EDesign::DOpt, factors.GetUnderlying(), options));
    if (family->GetUsePotentialTerms()) {
        expansion_->AddPotentialTerms(options.GetModel(), family->GetMixtureModel());
    }
    modelTerms_ = expansion_->GetModelTerms();
    search.repetitions = family->GetRepetitions();
    search.runRange = family->GetRunRange();
    search.runs = static_cast<int>(
        std::min(options.GetRuns(), static_cast<unsigned int>(DOptSearchSettings::cMaxRuns)));
    BalanceMap balance;
    if (family->GetBalanceOnFactor() >= 0) {
        balance = MakeBalanceMap(factors, family->GetBalanceOnFactor());
    }
    MakeDOpt(&balance, family->GetOnlyAllowBalanced(), cancel);
    // It borrows the factors, which may be gone by the next call.
    expansion_.reset();
    return status_ == DOpt::Success;
}

Status DOptGen::BuildModel() {
    if (model_ != nullptr) {
        return DOpt::Success;
    }
    if (expansion_ == nullptr || candidates_ == nullptr) {
        return DOpt::MissingSource;
    }
    model_ = std::make_unique<DOpt::ExchangeModel>(expansion_->MakeMatrix(candidates_->rows),
                                                   expansion_->GetPotentialTerms());
    return DOpt::Success;
}

Status DOptGen::MakeDOpt(const BalanceMap* balance, bool onlyBalanced, bool* cancel) {
    try {
        status_ = BuildModel();
        if (status_ == DOpt::Success) {
            status_ =
                SearchRunRange(balance != nullptr ? *balance : BalanceMap(), onlyBalanced, cancel);
        }
    } catch (const std::bad_alloc&) {
        status_ = DOpt::OutOfMemory;
    }
    return status_;
}

Status DOptGen::SearchRunRange(const BalanceMap& balance, bool onlyBalanced, bool* cancel) {
    if (search.runs < 1 || search.repetitions < 1) {
        return DOpt::IllegalArgument;
    }
    results_.clear();
    const int inclusionRows = inclusions != nullptr ? inclusions->Size() : 0;
    // In long long: a range of any size that options may hold.
    for (long long delta = -static_cast<long long>(search.runRange); delta <= search.runRange;
         ++delta) {
        if (IsSet(cancel)) {
            throw CancelException();
        }
        const long long runs = search.runs + delta;
        const bool isUneven =
            onlyBalanced && !balance.empty() && runs % balance.begin()->second != 0;
        if (runs < modelTerms_ || runs <= inclusionRows || isUneven) {
            continue;
        }
        const Status status =
            SearchRunCount(static_cast<int>(std::min<long long>(runs - inclusionRows,
                                                                DOptSearchSettings::cMaxRuns)),
                           balance,
                           onlyBalanced,
                           cancel);
        if (status != DOpt::Success) {
            return status;
        }
    }
    return results_.empty() ? DOpt::NoResult : DOpt::Success;
}

// @param runs rows to find, inclusions not counted
Status DOptGen::SearchRunCount(int runs,
                               const BalanceMap& balance,
                               bool onlyBalanced,
                               bool* cancel) {
    ExchangeSettings settings;
    settings.runs = runs;
    settings.width = search.exchangeWidth;
    settings.randomPoints = std::clamp(search.randomStartPoints, 0, runs);
    settings.seed = SearchSeed();
    if (inclusions != nullptr) {
        const std::span<const int> rows = std::as_const(*inclusions).Values();
        settings.inclusions.assign(rows.begin(), rows.end());
    }
    settings.progress = DOpt::MakeProgressEvent(progress_, cancel);
    settings.cancel = cancel;
    DOptExchange exchange(*model_, std::move(settings));
    if (exchange.GetStatus() != DOpt::Success) {
        return exchange.GetStatus();
    }
    std::vector<ExchangeResult> found;
    const Status status = exchange.RepetitionLoop(found, search.repetitions, balance, onlyBalanced);
    if (status == DOpt::Success) {
        std::ranges::transform(found, std::back_inserter(results_), ToRecord);
    }
    return status;
}
