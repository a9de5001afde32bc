#include "designs/optimal/D_Optimal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "designs/optimal/DOptErrors.h"
#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptGen.h"
#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/PickTable.h"
#include "evaluation/StatisticsModel.h"
#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/FamilyRules.h"
#include "frame/Validating.h"

namespace {

using Matrix = NCDataMatrix<float>;

constexpr double cNone = -99.0;
constexpr const char* cProgressText = "Generating D-Optimal...";
constexpr float cFullProgress = 100;

const D_OptimalOptions* FamilyOptions(const DesignOptions& options) {
    return dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
}

void ThrowIfCancelled(const bool* cancel) {
    if (cancel != nullptr && *cancel) {
        throw CancelException();
    }
}

[[noreturn]] void ThrowNoDesign() {
    throw Exception(ExceptionMessage::translate("No design was found."));
}

void RequireDesigns(bool succeeded, const DOptGen& generator, const DesignOptions& options) {
    if (DOpt::IsBreak(generator.GetStatus())) {
        throw CancelException();
    }
    if (generator.GetStatus() != DOpt::Success) {
        throw Exception(ExceptionMessage::translate("{1}")
                        << DOpt::GetErrorString(generator.GetStatus(), FamilyOptions(options)));
    }
    if (!succeeded || generator.GetResults().empty()) {
        ThrowNoDesign();
    }
}

int ReplicateRowOf(const Matrix& candidates, const Factors& factors, const DesignOptions& options) {
    const NCDOE::Constraints* constraints =
        FamilyRules::HasConstraints(options) ? &options.GetDesignSpecificOptions()->GetConstraints()
                                             : nullptr;
    return CandidateSet::FindReplicateRow(candidates, constraints, factors);
}

// The figure as something to be large; NaN where there is none to compare.
double KeyOf(const DesignStatistics::Results& figures, EDesign::DOptimalSelectBy by) {
    const auto negated = [](double figure) {
        return figure == cNone ? std::numeric_limits<double>::quiet_NaN() : -figure;
    };
    switch (by) {
        case EDesign::GEfficiency:
            return figures.GEff;
        case EDesign::ConditionNumber:
            return negated(figures.CondNo);
        case EDesign::LogDeterminant:
            return figures.LogDet;
        case EDesign::IOptimality:
            return negated(figures.IOptimality);
        default:
            return 0;  // a tie of all: the first result stays
    }
}

DesignStatistics::Terms TermsOf(const Factors& factors, const DesignOptions& options) {
    const D_OptimalOptions* family = FamilyOptions(options);
    return family != nullptr ? family->GetModel(EDesign::DOpt, factors, options)
                             : DesignStatistics::Terms();
}

// Of the run counts that are searched.
int MostRuns(const DesignOptions& options) {
    const D_OptimalOptions* family = FamilyOptions(options);
    const long long range = family != nullptr ? std::max(family->GetRunRange(), 0) : 0;
    return static_cast<int>(
        std::min<long long>(options.GetRuns() + range, std::numeric_limits<int>::max()));
}

}  // namespace

D_Optimal::D_Optimal(const Factors& factors, const DesignOptions& options, bool* cancel)
    : NCDesign(factors) {
    ThrowIfCancelled(cancel);
    RequireFinishedSize(MostRuns(options), options);
    NCProgress progress(cProgressText, 0.0F, cFullProgress, false, false, true, "");
    DOptGen generator(&progress);
    const DOptFactorAdapter adapter(factors, options.GetBlocks());
    DOpt::PickTable table = DOpt::MakePickTable(generator, adapter, options, 0, 0, cancel);
    numData_ = table.counts;
    inclusionRows_ = table.inclusions;
    ThrowIfCancelled(cancel);

    generator.SetCandidates(table.rows);
    if (inclusionRows_ > 0) {
        generator.inclusions = MakeOneBasedVec<int>("Inclusions", inclusionRows_, 0);
        for (int row = 1; row <= inclusionRows_; ++row) {
            (*generator.inclusions)(row) = row;
        }
    }
    generator.SetTransformsFrom(adapter);
    const bool succeeded = generator.GenerateDesigns(adapter, options, cancel);
    ThrowIfCancelled(cancel);
    RequireDesigns(succeeded, generator, options);

    results_ = generator.GetResults();
    adapter.ReorderToOriginal(table.rows);
    const D_OptimalOptions* family = FamilyOptions(options);
    selected_ =
        GetBestDesignBy(family != nullptr ? family->GetSelectDesignBy() : EDesign::GEfficiency);
    const auto centre = table.rows.RowSpan(ReplicateRowOf(table.rows, factors, options));
    replicateRow_.assign(centre.begin(), centre.end());
    FinishResults(options, table.rows, cancel);
}

D_Optimal::D_Optimal(const Factors& factors, const ConfigurationSection& section)
    : NCDesign(factors) {
    Load(&section);
}

D_Optimal::D_Optimal(const Factors& factors, const IniFileSection& section) : NCDesign(factors) {
    LoadOld(&section);
}

int D_Optimal::GetBestDesignBy(EDesign::DOptimalSelectBy by) const {
    if (results_.empty()) {
        ThrowNoDesign();
    }
    std::size_t best = 0;
    for (std::size_t i = 1; i < results_.size(); ++i) {
        const double key = KeyOf(results_[i], by);
        const double bestKey = KeyOf(results_[best], by);
        if (key > bestKey || (std::isnan(bestKey) && !std::isnan(key))) {
            best = i;
        }
    }
    return static_cast<int>(best);
}

void D_Optimal::SelectDesign(int index,
                             const Factors& factors,
                             const DesignOptions& options,
                             int layer) {
    if (index < 0 || index >= static_cast<int>(results_.size())) {
        throw InvalidOperationException("D_Optimal::SelectDesign");
    }
    Results& result = results_[static_cast<std::size_t>(index)];
    const int lastRow = result.rows.empty() ? 0 : *std::ranges::max_element(result.rows);
    NCProgress progress(cProgressText, 0.0F, cFullProgress, false, false, true, "");
    DOptGen generator(&progress);
    const DOptFactorAdapter adapter(factors, options.GetBlocks());
    DOpt::PickTable table =
        DOpt::MakePickTable(generator, adapter, options, layer, lastRow, nullptr);
    adapter.ReorderToOriginal(table.rows);
    const Matrix design = MakeDesign(result, table.rows, options);
    if (options.GetReplicatedRuns() > 0) {
        // Which runs are repeated was drawn anew.
        bool neverStopped = false;
        StatisticsModel statistics(
            factors, TermsOf(factors, options), static_cast<int>(options.GetBlocks()), &table.rows);
        static_cast<DesignStatistics::Results&>(result) =
            statistics.Calculate(design, neverStopped);
    }
    StoreDesign(design, options);
    inclusionRows_ = table.inclusions;
    selected_ = index;
}

void D_Optimal::InsertCenterPoints(NCDataMatrix<float>& matrix,
                                   const NCDataMatrix<float>& candidates,
                                   const DesignOptions& options) const {
    const int count = static_cast<int>(options.GetCenterPoints());
    const int row = ReplicateRowOf(candidates, GetFactors(), options);
    if (count == 0 || row == 0) {
        return;
    }
    const int first = matrix.SizeRows() + 1;
    matrix.InsertRows(first, count);
    const int blocks = static_cast<int>(options.GetBlocks());
    const auto coding = Factors::MakeCodingMatrix(CEType::Qualitative, std::max(blocks, 1));
    for (int i = 0; i < count; ++i) {
        matrix.SetRow(first + i, candidates.GetRow(row));
        for (int j = 1; j < blocks; ++j) {
            const int column = matrix.SizeColumns() - blocks + 1 + j;
            matrix(first + i, column, (*coding)(i % blocks + 1, j));
        }
    }
}

void D_Optimal::RemoveGeneratedDesigns() {
    if (selected_ < 0 || selected_ >= static_cast<int>(results_.size())) {
        return;
    }
    results_ = {results_[static_cast<std::size_t>(selected_)]};
    selected_ = 0;
}

std::string D_Optimal::GetErrorString(int code, const D_OptimalOptions* options) {
    return DOpt::GetErrorString(code, options);
}

void D_Optimal::SetValidating() {
    Validating::Set();
}

bool D_Optimal::GetValidating() {
    return Validating::Get();
}

std::shared_ptr<NCDesign> D_Optimal::Clone() const {
    return std::make_shared<D_Optimal>(*this);
}

const std::vector<int>& D_Optimal::GetPickedRows(int layer) const {
    static const std::vector<int> none;
    const bool exists =
        layer == 1 && selected_ >= 0 && selected_ < static_cast<int>(results_.size());
    return exists ? results_[static_cast<std::size_t>(selected_)].rows : none;
}

int D_Optimal::GetInclusionRows(int /*layer*/) const {
    return inclusionRows_;
}

NCDataMatrix<float> D_Optimal::MakeDesign(const Results& result,
                                          const NCDataMatrix<float>& candidates,
                                          const DesignOptions& options) const {
    RequireFinishedSize(static_cast<int>(result.rows.size()), options);
    Matrix design(static_cast<int>(result.rows.size()), candidates.SizeColumns());
    int next = 1;
    for (const int row : result.rows) {
        if (row < 1 || row > candidates.SizeRows()) {
            ThrowNoDesign();
        }
        std::ranges::copy(candidates.RowSpan(row), design.RowSpan(next++).begin());
    }
    InsertCenterPoints(design, candidates, options);
    AddReplicatedRuns(design, GetFactors(), options);
    return design;
}

// The design that is shown is the very one that its figures were computed from: which runs are
// repeated is partly chance.
void D_Optimal::FinishResults(const DesignOptions& options,
                              const NCDataMatrix<float>& candidates,
                              bool* cancel) {
    bool neverStopped = false;
    bool& stop = cancel != nullptr ? *cancel : neverStopped;
    StatisticsModel statistics(GetFactors(),
                               TermsOf(GetFactors(), options),
                               static_cast<int>(options.GetBlocks()),
                               &candidates);
    for (std::size_t i = 0; i < results_.size(); ++i) {
        const Matrix design = MakeDesign(results_[i], candidates, options);
        static_cast<DesignStatistics::Results&>(results_[i]) = statistics.Calculate(design, stop);
        ThrowIfCancelled(cancel);
        if (static_cast<int>(i) == selected_) {
            StoreDesign(design, options);
        }
    }
}

void D_Optimal::StoreDesign(const NCDataMatrix<float>& matrix, const DesignOptions& options) {
    SetDesignMatrix(matrix);
    AddReplicates(options.GetReplicates());
}
