#include "designs/plate/PreCreatedDesign.h"

#include <utility>

#include "designs/plate/PlateRowRules.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

PreCreatedDesignClass::PreCreatedDesignClass(const Factors& factors,
                                             const DesignOptions& options,
                                             const TableColumns& columns,
                                             const NCDataMatrix<float>& table)
    : NCDesign(factors) {
    RequireFinishedSize(table.SizeRows(), options);
    NCDataMatrix<float> matrix = table;
    matrix.RearrangeColumns(columns.MatchWidestFirst(factors));
    SetDesignMatrix(matrix);
    // One table serves factors of several types: what stands in it as -1, 0 and 1 is a level there.
    AdjustQualitativeFactors(factors);
    AdjustMultilevelFactors(factors);
    // Deliberate: replicated runs come before the centre points here, unlike in the other rows.
    AddReplicatedRuns(factors, options);
    AddCenterPoints(static_cast<int>(options.GetCenterPoints()), factors, options);
    AddReplicates(options.GetReplicates());
}

std::shared_ptr<NCDesign> PreCreatedDesignClass::Clone() const {
    return std::make_shared<PreCreatedDesignClass>(*this);
}

PreCreatedDesign::PreCreatedDesign(TableColumns columns,
                                   EModel::Type model,
                                   NCDataMatrix<float> matrix,
                                   const char* displayName,
                                   const char* shortString,
                                   unsigned int strength)
    : CustomREDMUPDesign(shortString, displayName, displayName, shortString, strength),
      columns_(std::move(columns)),
      objectiveClass_(PlateRowRules::ObjectiveClassOf(model)),
      model_(model),
      runs_(static_cast<unsigned int>(matrix.SizeRows())),
      matrix_(std::move(matrix)) {}

std::unique_ptr<NCDesign> PreCreatedDesign::Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* /*cancel*/) const {
    return IsValid(factors, options)
               ? std::make_unique<PreCreatedDesignClass>(factors, options, columns_, matrix_)
               : nullptr;
}

unsigned int PreCreatedDesign::GetDefaultRuns(const Factors& /*factors*/,
                                              EObjective::Type /*objective*/) const {
    return runs_;
}

std::vector<unsigned int> PreCreatedDesign::GetLegalRuns(const Factors& /*factors*/,
                                                         const DesignOptions& /*options*/) const {
    return {runs_};
}

bool PreCreatedDesign::IsValid(const Factors& factors, const DesignOptions& options) const {
    return PlateRowRules::FitsSide(options, runs_) &&
           PlateRowRules::IsRequestFor(options, objectiveClass_, model_) &&
           !columns_.Match(factors).empty();
}

EModel::Type PreCreatedDesign::GetDefaultModel(const Factors& /*factors*/,
                                               EObjective::Type objective) const {
    return PlateRowRules::DefaultModelOf(model_, objective);
}
