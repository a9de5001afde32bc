#include "designs/plate/ReducedDesign.h"

#include <algorithm>
#include <utility>

#include "designs/plate/PlateRowRules.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

// What the classical design is asked for: its own runs, with nothing added to them.
DesignOptions BaseOptions(const DesignOptions& options,
                          const ReducedDesign& row,
                          unsigned int centerPoints) {
    DesignOptions base = options;
    base.SetMaxRuns(row.ToBase(options.GetMaxRuns()));
    base.SetRuns(row.ToBase(options.GetRuns()));
    base.SetCenterPoints(centerPoints);
    base.SetReplicatedRuns(0);
    base.SetReplicates(0);
    return base;
}

// From the last to the first, so that the numbers in front stay right.
void RemoveRows(NCDataMatrix<float>& matrix, const std::vector<int>& rows) {
    std::for_each(rows.rbegin(), rows.rend(), [&](const int row) { matrix.RemoveRows(row, 1); });
}

void RepeatRows(NCDataMatrix<float>& matrix, const std::vector<int>& rows) {
    matrix.ReserveRows(matrix.SizeRows() + static_cast<int>(rows.size()));
    for (const int row : rows) {
        matrix.InsertRow(matrix.SizeRows() + 1, matrix.GetRow(row));
    }
}

}  // namespace

ReducedDesignClass::ReducedDesignClass(const Factors& factors,
                                       const DesignOptions& options,
                                       const ReducedDesign& row)
    : NCDesign(factors) {
    const auto builder = row.GetBaseBuilder();
    const unsigned int baseCenters = row.GetMinimumCenterPoints();
    const auto base =
        builder ? builder->Build(factors, BaseOptions(options, row, baseCenters)) : nullptr;
    const std::vector<int>& list = row.GetRowList();
    if (!base || !base->GetDesignMatrix() ||
        (!list.empty() && base->GetDesignMatrix()->SizeRows() < list.back())) {
        return;
    }
    NCDataMatrix<float> matrix = *base->GetDesignMatrix();
    if (row.IsReduced()) {
        RemoveRows(matrix, list);
    } else {
        RepeatRows(matrix, list);
    }
    // Of another table than the row's, the list names other runs.
    if (matrix.SizeRows() != static_cast<int>(row.GetRuns())) {
        return;
    }
    RequireFinishedSize(matrix.SizeRows(), options);
    SetDesignMatrix(matrix);
    if (options.GetCenterPoints() > baseCenters) {
        AddCenterPoints(
            static_cast<int>(options.GetCenterPoints() - baseCenters), factors, options);
    }
    AddReplicatedRuns(factors, options);
    AddReplicates(options.GetReplicates());
}

std::shared_ptr<NCDesign> ReducedDesignClass::Clone() const {
    return std::make_shared<ReducedDesignClass>(*this);
}

ReducedDesign::ReducedDesign(TableColumns columns,
                             EModel::Type model,
                             EDesign::Type baseType,
                             unsigned int runs,
                             bool reduced,
                             std::vector<int> rowList,
                             const char* displayName,
                             const char* shortString,
                             unsigned int strength,
                             const char* description)
    : CustomREDMUPDesign(shortString,
                         displayName,
                         *description != '\0' ? description : displayName,
                         shortString,
                         strength),
      columns_(std::move(columns)),
      objectiveClass_(PlateRowRules::ObjectiveClassOf(model)),
      model_(model),
      baseType_(baseType),
      runs_(runs),
      reduced_(reduced),
      rowList_(std::move(rowList)) {}

std::unique_ptr<NCDesign> ReducedDesign::Build(const Factors& factors,
                                               const DesignOptions& options,
                                               bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<ReducedDesignClass>(factors, options, *this);
    return design->GetDesignMatrix() ? std::move(design) : nullptr;
}

unsigned int ReducedDesign::GetDefaultRuns(const Factors& factors,
                                           EObjective::Type objective) const {
    const auto builder = GetBaseBuilder();
    if (!builder) {
        return 0;
    }
    DesignOptions options(*builder, factors);
    options.SetObjective(objective);
    options.SetModel(builder->GetDefaultModel(factors, objective));
    return FromBase(builder->GetDefaultRuns(factors, options));
}

unsigned int ReducedDesign::GetDefaultRuns(const Factors& factors,
                                           const DesignOptions& options) const {
    const auto builder = GetBaseBuilder();
    return builder ? FromBase(builder->GetDefaultRuns(factors, options)) : 0;
}

unsigned int ReducedDesign::GetMinimumCenterPoints() const {
    const auto builder = GetBaseBuilder();
    return builder ? builder->GetMinimumCenterPoints() : 0;
}

std::string ReducedDesign::GetDescription() const {
    return CustomREDMUPDesign::GetDescription() +
           (reduced_ ? " Reduced to fit the plate." : " Expanded to fit the plate.");
}

std::vector<unsigned int> ReducedDesign::GetLegalRuns(const Factors& factors,
                                                      const DesignOptions& options) const {
    std::vector<unsigned int> legal;
    if (const auto builder = GetBaseBuilder()) {
        for (const unsigned int base : builder->GetLegalRuns(factors, options)) {
            const unsigned int runs = FromBase(base);
            if (runs > 0 && runs <= options.GetMaxRuns()) {
                legal.push_back(runs);
            }
        }
    }
    return legal;
}

bool ReducedDesign::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!PlateRowRules::FitsSide(options, runs_) ||
        (!reduced_ && options.GetMaxRuns() < ListSize()) ||
        !PlateRowRules::IsRequestFor(options, objectiveClass_, model_) ||
        columns_.Match(factors).empty()) {
        return false;
    }
    const auto builder = GetBaseBuilder();
    return builder && builder->IsValid(factors,
                                       DesignOptions(*builder,
                                                     factors,
                                                     options.GetObjective(),
                                                     model_,
                                                     model_,
                                                     ToBase(options.GetMaxRuns())));
}

EModel::Type ReducedDesign::GetDefaultModel(const Factors& /*factors*/,
                                            EObjective::Type objective) const {
    return PlateRowRules::DefaultModelOf(model_, objective);
}

std::shared_ptr<const DesignBuilder> ReducedDesign::GetBaseBuilder() const {
    // Deliberate: not kept from construction on, when the list of all designs is still being made.
    return AllDesigns::GetDesignBuilder(baseType_, "");
}

unsigned int ReducedDesign::ToBase(unsigned int runs) const {
    if (reduced_) {
        return runs + ListSize();
    }
    return runs > ListSize() ? runs - ListSize() : 0;
}

unsigned int ReducedDesign::FromBase(unsigned int runs) const {
    // A base without a design for the factors leaves none for the row.
    if (runs == 0 || (reduced_ && runs <= ListSize())) {
        return 0;
    }
    return reduced_ ? runs - ListSize() : runs + ListSize();
}
