#include "designs/optimal/PickTable.h"

#include <algorithm>
#include <climits>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptGen.h"
#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"

namespace DOpt {

namespace {

using Matrix = NCDataMatrix<float>;

const D_OptimalOptions* FamilyOptions(const DesignOptions& options) {
    return dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
}

[[noreturn]] void ThrowNoCandidates() {
    throw Exception(ExceptionMessage::translate("The candidate set could not be generated."));
}

void ThrowIfCancelled(const bool* cancel) {
    if (cancel != nullptr && *cancel) {
        throw CancelException();
    }
}

// The largest run count of the search.
long long MostRuns(const DesignOptions& options, const D_OptimalOptions* family) {
    const int range = family != nullptr ? std::max(family->GetRunRange(), 0) : 0;
    return static_cast<long long>(options.GetRuns()) + range;
}

Matrix InclusionsOf(const D_OptimalOptions* family) {
    return family != nullptr && family->GetUseInclusion() ? family->GetInclusions() : Matrix();
}

// Deliberate: whole copies, so that a row number tells its candidate.
void Double(Matrix& rows, long long atLeast, const bool* cancel) {
    while (rows.SizeRows() < atLeast && rows.SizeRows() <= INT_MAX / 2) {
        ThrowIfCancelled(cancel);
        rows.ConcatRows(rows);
    }
}

Matrix NewCandidates(DOptGen& generator,
                     const DOptFactorAdapter& adapter,
                     const DesignOptions& options,
                     NumData& counts,
                     const bool* cancel) {
    DesignOptions largest = options;
    largest.SetRuns(static_cast<unsigned int>(
        std::min<long long>(MostRuns(options, FamilyOptions(options)), INT_MAX)));
    return GenerateCandidateset(
        &generator, adapter.GetUnderlying(), largest, true, &counts, cancel, 0);
}

Matrix StoredCandidates(DOptGen& generator,
                        const DOptFactorAdapter& adapter,
                        const CandidateSet& stored,
                        int layer,
                        long long atLeast,
                        const bool* cancel) {
    Matrix rows = layer > 0 ? stored.GetMatrix(layer) : stored.GetMatrix();
    const int variables = static_cast<int>(adapter.GetDesignFactorCountExpanded());
    if (rows.SizeRows() == 0 || rows.SizeColumns() != variables ||
        generator.SetVariables(variables) != Success) {
        ThrowNoCandidates();
    }
    generator.SetIsMixFrom(adapter);
    generator.SetVarRangesFrom(adapter);
    Double(rows, atLeast, cancel);
    return rows;
}

void PutOnTop(const Matrix& inclusions, const DOptFactorAdapter& adapter, Matrix& rows) {
    if (inclusions.SizeColumns() != rows.SizeColumns()) {
        throw Exception(ExceptionMessage::translate(
            "The inclusions file and the candidate set are not consistent. They don't have the "
            "same variables."));
    }
    Matrix combined = inclusions;
    adapter.ReorderFromOriginal(combined);
    combined.ConcatRows(rows);
    rows = std::move(combined);
}

}  // namespace

PickTable MakePickTable(DOptGen& generator,
                        const DOptFactorAdapter& adapter,
                        const DesignOptions& options,
                        int layer,
                        int leastRows,
                        const bool* cancel) {
    PickTable table;
    const D_OptimalOptions* family = FamilyOptions(options);
    const Matrix inclusions = InclusionsOf(family);
    table.inclusions = inclusions.SizeRows();
    if (family == nullptr || family->GetNewCandidateSet() ||
        family->GetCandidateSet().SizeRows() == 0) {
        table.rows = NewCandidates(generator, adapter, options, table.counts, cancel);
    } else {
        table.counts = family->GetCandidateSet().GetNumData();
        table.rows = StoredCandidates(generator,
                                      adapter,
                                      family->GetCandidateSet(),
                                      layer,
                                      MostRuns(options, family) - table.inclusions,
                                      cancel);
    }
    adapter.ReorderFromOriginal(table.rows);
    Double(table.rows, leastRows - table.inclusions, cancel);
    if (table.inclusions > 0) {
        PutOnTop(inclusions, adapter, table.rows);
    }
    return table;
}

}  // namespace DOpt
