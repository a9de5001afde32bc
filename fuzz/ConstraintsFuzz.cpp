// Factors and linear constraints from any bytes: candidates are either refused with an Exception
// and nothing is left behind, or every one of them lies inside the ranges and the constraints, and
// the counts by kind are those of the rows.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "fuzz/Require.h"
#include "tests/support/TestFactors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// Larger sets take too long for a fuzzer.
constexpr unsigned cMaxCells = 20000;
// Ten times the tolerances of the engine, which add up along a chain of cuts.
constexpr double cTolerance = 1e-4;

/// Numbers from the bytes; zeros behind their end.
class Bytes {
  public:
    explicit Bytes(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    unsigned Next() {
        if (bytes_.empty()) {
            return 0;
        }
        const unsigned byte = bytes_.front();
        bytes_ = bytes_.subspan(1);
        return byte;
    }
    unsigned Below(unsigned count) { return Next() % count; }
    bool Flag() { return Below(2) == 1; }
    /// From -32 to 31.75, sometimes far larger or smaller.
    double Signed() {
        const double small = (static_cast<double>(Next()) - 128) / 4;
        return small * std::pow(10.0, static_cast<double>(Below(7)) - 3);
    }

  private:
    std::span<const std::uint8_t> bytes_;
};

struct Variable {
    float low = 0;
    float high = 0;
};

/// A study as the bytes tell it. Formulation factors come first, then Quantitative ones, then those
/// with levels; none of them is expanded to more than one column but the last.
struct Region {
    TestFactors factors;
    std::vector<Variable> variables;
    int mixtures = 0;
    NCDOE::Constraints constraints;
    DesignOptions options;
};

void AddMixture(Bytes& bytes, Region& region) {
    const unsigned count = bytes.Below(5);
    for (unsigned i = 0; i < count; ++i) {
        const float low = static_cast<float>(bytes.Below(60)) / 100;
        const float high = low + static_cast<float>(bytes.Below(101)) / 100;
        region.factors.Formulation(low, high);
        region.variables.push_back({low, high});
    }
    region.mixtures = static_cast<int>(count);
}

void AddProcess(Bytes& bytes, Region& region) {
    const unsigned count = bytes.Below(5);
    for (unsigned i = 0; i < count; ++i) {
        const auto low = static_cast<float>(bytes.Signed());
        const float high = low + static_cast<float>(std::fabs(bytes.Signed()));
        region.factors.Quantitative(low, high);
        region.variables.push_back({low, high});
        if (bytes.Below(8) == 1) {
            region.factors.Transformed(TransformStruct(TransformStruct::Exp));
        }
    }
}

// The sum that a constraint bounds, from its least to its greatest value within the ranges.
double BoundBetween(const NCDOE::Constraint& constraint, const Region& region, double share) {
    double least = 0;
    double greatest = 0;
    for (const NCDOE::Constraint::Term& term : constraint.terms) {
        if (static_cast<std::size_t>(term.factor) >= region.variables.size()) {
            return share;
        }
        const Variable& variable = region.variables[static_cast<std::size_t>(term.factor)];
        const double a = term.coefficient * static_cast<double>(variable.low);
        const double b = term.coefficient * static_cast<double>(variable.high);
        least += std::min(a, b);
        greatest += std::max(a, b);
    }
    return least + share * (greatest - least);
}

NCDOE::Constraint ReadConstraint(Bytes& bytes, const Region& region) {
    NCDOE::Constraint constraint;
    const unsigned terms = 1 + bytes.Below(4);
    for (unsigned i = 0; i < terms; ++i) {
        // One factor too many is an illegal one.
        const unsigned factor =
            bytes.Below(static_cast<unsigned>(region.factors.GetDesignFactorCount()) + 1);
        constraint.terms.push_back({static_cast<int>(factor), bytes.Signed()});
    }
    constraint.greaterOrEqual = bytes.Flag();
    constraint.value =
        bytes.Flag() ? bytes.Signed() : BoundBetween(constraint, region, bytes.Next() / 255.0);
    return constraint;
}

// @throws Exception for constraints that no study may have
Region ReadRegion(Bytes bytes) {
    Region region;
    auto family = std::make_shared<D_OptimalOptions>();
    region.options.SetModel(static_cast<EModel::Type>(bytes.Below(7)));
    family->SetDOptMixtureModel(static_cast<EModel::Type>(bytes.Below(7)));
    family->SetUsePotentialTerms(bytes.Flag());
    AddMixture(bytes, region);
    AddProcess(bytes, region);
    if (bytes.Below(4) == 1) {
        region.factors.MultilevelOf(1 + bytes.Below(4));
    }
    if (bytes.Below(4) == 1) {
        region.factors.Qualitative(2 + bytes.Below(3));
    }
    std::vector<NCDOE::Constraint> constraints;
    const unsigned count = bytes.Below(12);
    for (unsigned i = 0; i < count; ++i) {
        constraints.push_back(ReadConstraint(bytes, region));
    }
    region.constraints = NCDOE::Constraints(constraints);
    family->SetConstraints(region.constraints, region.factors);
    region.options.SetDesignSpecificOptions(family);
    return region;
}

void RequireInRanges(std::span<const float> row, const Region& region) {
    double shares = 0;
    for (std::size_t i = 0; i < region.variables.size(); ++i) {
        const Variable& variable = region.variables[i];
        Require(std::isfinite(row[i]), "a candidate is a number");
        Require(row[i] >= variable.low && row[i] <= variable.high, "a candidate is in its range");
        if (i < static_cast<std::size_t>(region.mixtures)) {
            shares += static_cast<double>(row[i]);
        }
    }
    Require(region.mixtures == 0 || std::fabs(shares - 1) <= cTolerance, "shares add up");
}

void RequireKept(std::span<const float> row, const Region& region) {
    for (const NCDOE::Constraint& constraint : region.constraints.GetConstraints()) {
        double sum = 0;
        double size = std::fabs(constraint.value);
        for (const NCDOE::Constraint::Term& term : constraint.terms) {
            const auto factor = static_cast<std::size_t>(term.factor);
            const Variable& variable = region.variables[factor];
            sum += term.coefficient * static_cast<double>(row[factor]);
            size +=
                std::fabs(term.coefficient) *
                static_cast<double>(std::max(std::fabs(variable.low), std::fabs(variable.high)));
        }
        const double excess =
            constraint.greaterOrEqual ? constraint.value - sum : sum - constraint.value;
        Require(excess <= cTolerance * size, "a candidate keeps the constraints");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    DOpt::NumData counts;
    NCDataMatrix<float> rows;
    Region region;
    try {
        region = ReadRegion(Bytes({data, size}));
        rows = DOpt::GenerateCandidateset(
            nullptr, region.factors, region.options, false, &counts, nullptr, cMaxCells);
    } catch (const Exception&) {
        Require(counts == DOpt::NumData(), "a refusal leaves the counts alone");
        return 0;
    }
    Require(rows.SizeRows() > 0, "a set has rows");
    Require(rows.Cells().size() <= cMaxCells, "the limit is kept");
    Require(counts.ExtVert + counts.NumEdges + counts.NumHiDimCent == rows.SizeRows(),
            "every row is counted once");
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        RequireInRanges(rows.RowSpan(row), region);
        RequireKept(rows.RowSpan(row), region);
    }
    return 0;
}
