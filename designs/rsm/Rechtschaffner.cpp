#include "designs/rsm/Rechtschaffner.h"

#include <stdexcept>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr unsigned int cMinFactors = 3;
// Deliberate: the rule of run counts goes on to 32 factors, validity ends at 10.
constexpr unsigned int cMaxRuleFactors = 32;
constexpr unsigned int cMaxFactors = 10;

// Also the number of terms of the interaction model, or of the quadratic one; 0 outside the rule.
unsigned int CountRuns(unsigned int factors, bool responseSurface) {
    if (factors < cMinFactors || factors > cMaxRuleFactors) {
        return 0;
    }
    const unsigned int interactions = factors * (factors - 1) / 2;
    return 1 + factors + interactions + (responseSurface ? factors : 0);
}

// Each row of these groups differs from a background in one or two cells.
void WriteSingleLows(NCDataMatrix<float>& table, int& row) {
    for (int factor = 1; factor <= table.SizeColumns(); ++factor) {
        table.SetRow(++row, 1.0F);
        table(row, factor, -1.0F);
    }
}

void WriteDoubleHighs(NCDataMatrix<float>& table, int& row) {
    for (int i = 1; i < table.SizeColumns(); ++i) {
        for (int j = i + 1; j <= table.SizeColumns(); ++j) {
            table.SetRow(++row, -1.0F);
            table(row, i, 1.0F);
            table(row, j, 1.0F);
        }
    }
}

// Of three factors, two high is the same run as one low: single highs take the place.
void WriteSingleHighs(NCDataMatrix<float>& table, int& row) {
    for (int factor = table.SizeColumns(); factor >= 1; --factor) {
        table.SetRow(++row, -1.0F);
        table(row, factor, 1.0F);
    }
}

void WriteAxialRuns(NCDataMatrix<float>& table, int& row) {
    for (int factor = 1; factor <= table.SizeColumns(); ++factor) {
        table.SetRow(++row, 0.0F);
        table(row, factor, 1.0F);
    }
}

NCDataMatrix<float> MakeTable(unsigned int factors, bool responseSurface) {
    NCDataMatrix<float> table(static_cast<int>(CountRuns(factors, responseSurface)),
                              static_cast<int>(factors));
    if (table.IsEmpty()) {
        return table;
    }
    int row = 1;
    table.SetRow(row, -1.0F);
    WriteSingleLows(table, row);
    if (factors == 3) {
        WriteSingleHighs(table, row);
    } else {
        WriteDoubleHighs(table, row);
    }
    if (responseSurface) {
        WriteAxialRuns(table, row);
    }
    return table;
}

}  // namespace

Rechtschaffner::Rechtschaffner(const Factors& factors, const DesignOptions& options)
    : NCDesign(factors) {
    SetDesignMatrixAddAndAdjust(MakeTable(factors.GetDesignFactorCount(),
                                          FamilyRules::IsResponseSurface(options.GetObjective())),
                                factors,
                                options);
}

std::shared_ptr<NCDesign> Rechtschaffner::Clone() const {
    return std::make_shared<Rechtschaffner>(*this);
}

std::unique_ptr<NCDesign> RechtschaffnerBuilder::Build(const Factors& factors,
                                                       const DesignOptions& options,
                                                       bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<Rechtschaffner>(factors, options) : nullptr;
}

unsigned int RechtschaffnerBuilder::GetDefaultRuns(const Factors& factors,
                                                   EObjective::Type objective) const {
    return CountRuns(factors.GetDesignFactorCountExpanded(),
                     FamilyRules::IsResponseSurface(objective));
}

std::string RechtschaffnerBuilder::GetDesignData() const {
    if (objectiveType_ != EObjective::Optimization && objectiveType_ != EObjective::Screening) {
        throw std::runtime_error("GetDesignData: can only be 'RSM' or 'Screening'.");
    }
    return EObjective::GetString(objectiveType_);
}

std::vector<unsigned int> RechtschaffnerBuilder::GetLegalRuns(const Factors& factors,
                                                              const DesignOptions& options) const {
    return {GetDefaultRuns(factors, options.GetObjective())};
}

unsigned char RechtschaffnerBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::Rechtschaffner, factors.GetDesignFactorCountExpanded());
}

bool RechtschaffnerBuilder::IsRightPurpose(const DesignOptions& options) const {
    const bool responseSurface = FamilyRules::IsResponseSurface(options.GetObjective());
    switch (objectiveType_) {
        case EObjective::Optimization:
            return responseSurface && options.GetModel() == EModel::Quadratic;
        case EObjective::Screening:
            // Deliberate: an objective that is neither screening nor response surface work passes
            // with any model.
            return !responseSurface && (!FamilyRules::IsScreening(options.GetObjective()) ||
                                        FamilyRules::IsLinearOrInteraction(options.GetModel()));
        default:
            return true;
    }
}

bool RechtschaffnerBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (factors.GetDesignFactorCount() > cMaxFactors || !FamilyRules::IsFillerFree(factors) ||
        FamilyRules::HasConstraints(options) || !IsRightPurpose(options)) {
        return false;
    }
    // The middle that axial runs need.
    if (FamilyRules::IsResponseSurface(options.GetObjective()) && !factors.IsAllQuantitative()) {
        return false;
    }
    if (!factors.IsProcessOnly() || !factors.IsAll2Levels()) {
        return false;
    }
    const unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
    return runs > 0 && options.GetMaxRuns() >= runs;
}

EModel::Type RechtschaffnerBuilder::GetDefaultModel(const Factors& /*factors*/,
                                                    EObjective::Type objective) const {
    if (objective != objectiveType_) {
        return EModel::None;
    }
    switch (objectiveType_) {
        case EObjective::Optimization:
            return EModel::Quadratic;
        case EObjective::Screening:
            return EModel::Interaction;
        default:
            return EModel::None;
    }
}
