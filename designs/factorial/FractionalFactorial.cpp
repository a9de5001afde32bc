#include "designs/factorial/FractionalFactorial.h"

#include <algorithm>
#include <string>

#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/FloorLog2.h"
#include "frame/generators/Generators.h"

namespace {

// Valid generators may still belong to another run count, as those of a half fraction do after the
// user went to a quarter. Their base factors must have columns of the table, and the table must
// hold whole copies of the base factorial; otherwise the fraction would be unbalanced.
bool FitTable(const Generators& generators, unsigned int factors, int runs) {
    const int letters = generators.GetMaxChar() - Generators::cMinChar + 1;
    return letters >= 1 && letters <= static_cast<int>(factors) && runs % (1 << letters) == 0 &&
           runs <= NCDesign::cMaxFinishedRuns;
}

// The fraction [runs x factors, block column behind them if blocked] with block letters.
NCDataMatrix<float> MakeFraction(const Generators& generators,
                                 const Factors& factors,
                                 const DesignOptions& options,
                                 int runs) {
    NCDataMatrix<float> table =
        NCDesign::MakeFFDesignTable(factors, runs, options.GetBlocks() >= 2, false);
    generators.AdjustDesignMatrix(static_cast<int>(factors.GetDesignFactorCount()), table);
    return table;
}

// A base factor that the runs do not reach would put the mark of no value into every product.
bool HasOnlyTwoLevels(const NCDataMatrix<float>& fraction, unsigned int factors) {
    for (int row = 1; row <= fraction.SizeRows(); ++row) {
        const auto cells = fraction.RowSpan(row).first(factors);
        if (std::any_of(
                cells.begin(), cells.end(), [](float cell) { return cell != -1 && cell != 1; })) {
            return false;
        }
    }
    return true;
}

}  // namespace

void FractionalFactorial::GenerateDesign(const Factors& factors,
                                         const DesignOptions& options,
                                         int starRuns,
                                         float starDistance) {
    const unsigned int count = factors.GetDesignFactorCount();
    const int runs = std::max(static_cast<int>(options.GetRuns()) - starRuns, 0);
    const bool hasStars = starRuns > 0;
    // The star runs form a block of their own, which no generator makes.
    const bool hasStarBlock = hasStars && options.GetBlocks() >= 2;
    const unsigned int cubeBlocks = options.GetBlocks() - (hasStarBlock ? 1 : 0);

    std::string message;
    const Generators* generators = options.GetGenerators();
    std::unique_ptr<Generators> defaults;
    // Deliberate: the user's generators give way to the default ones without a word when they do
    // not fit, for instance because they have no block words.
    if (generators == nullptr || !generators->IsValid(factors, options, hasStars, message) ||
        !FitTable(*generators, count, runs)) {
        defaults = MakeGenerators(
            static_cast<int>(count), static_cast<unsigned>(runs), FloorLog2(cubeBlocks));
        if (!defaults->IsValid(factors, options, hasStars, message)) {
            throw Exception(ExceptionMessage::translate("Generator error: {1}") << message);
        }
        generators = defaults.get();
    }

    SetDesignMatrix(MakeFraction(*generators, factors, options, runs));
    if (hasStars) {
        AddCCRuns(starDistance, static_cast<int>(options.GetBlocks()));
    }
    SetDesignMatrixAddAndAdjust(*GetDesignMatrix(), factors, options);
}

void FractionalFactorial::UpdateDesign(DesignOptions& options, const Factors& factors) {
    const Generators* generators = options.GetGenerators();
    if (generators == nullptr) {
        throw InvalidOperationException("FractionalFactorial::UpdateDesign without generators");
    }
    const NCDataMatrix<float> fraction =
        MakeFraction(*generators, factors, options, static_cast<int>(options.GetRuns()));
    if (!HasOnlyTwoLevels(fraction, factors.GetDesignFactorCount())) {
        throw Exception(ExceptionMessage::translate("Generator error: {1}")
                        << "The generators have more base factors than the runs can hold.");
    }
    DesignOptions plain = options;
    plain.SetReplicatedRuns(0);
    SetDesignMatrixAddAndAdjust(fraction, factors, plain);
    AdjustCenterPoints(factors, options);
}

std::unique_ptr<Generators> FractionalFactorial::SelectGenerators(Selector select,
                                                                  int factors,
                                                                  unsigned int runs,
                                                                  int blockGens) {
    const auto columns = static_cast<unsigned>(factors);
    const int fractionRuns = static_cast<int>(runs);
    auto generators = std::make_unique<Generators>(fractionRuns);
    for (int i = 1; i <= factors; ++i) {
        generators->SetGenerator(i, select(i, columns, fractionRuns, blockGens));
    }
    for (int i = 1; i <= blockGens; ++i) {
        generators->SetGenerator(factors + i, select(-i, columns, fractionRuns, blockGens));
    }
    return generators;
}

unsigned int FractionalFactorialBuilder::GetDefaultRuns(const Factors& factors,
                                                        EObjective::Type /*objective*/) const {
    return RunsForFactors(static_cast<int>(factors.GetDesignFactorCountExpanded()));
}

bool FractionalFactorialBuilder::IsFractionalValid(const Factors& factors,
                                                   const DesignOptions& options) const {
    if (!FamilyRules::IsFillerFree(factors) || FamilyRules::HasConstraints(options) ||
        !factors.IsProcessOnly()) {
        return false;
    }
    const unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
    return runs > 0 && options.GetMaxRuns() >= runs;
}

unsigned int FractionalFactorialBuilder::LookUpRuns(std::span<const RunsOfFactors> table,
                                                    int factors) {
    const auto row = std::find_if(table.begin(), table.end(), [factors](const RunsOfFactors& one) {
        return factors >= one.firstFactor && factors <= one.lastFactor;
    });
    return row != table.end() ? row->runs : 0;
}
