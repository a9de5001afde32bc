#include "designs/optimal/CandidateBlocks.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "designs/optimal/CentroidPlan.h"
#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptFactorRef.h"
#include "designs/optimal/DOptGen.h"
#include "designs/optimal/DOptProgress.h"
#include "designs/optimal/QuadraticSupport.h"
#include "designs/optimal/UnitScale.h"
#include "foundation/util/NCProgress.h"
#include "frame/generators/Generators.h"

namespace DOpt {

namespace {

constexpr float cStepProgress = 80;
// Cells of a vertex store at most; more cannot be counted.
constexpr int cMaxCells = 0x7fffffff;
// What a block may always hold on its way to a result of few cells: cuts can take most of it away.
constexpr long long cFewCells = 1LL << 20;
constexpr int cMaxStartRows = 12000;
constexpr int cMaxFullFactors = 10;
// Linear models under constraints need the corners more than any other.
constexpr int cMaxFullFactorsUnderConstraints = 12;
constexpr int cMaxFractionOf29 = 28;
constexpr unsigned cWideFraction = 29;

[[nodiscard]] bool IsMixtureVariable(const DOptFactorAdapter& factors, int factor) {
    return factors.GetFactorType(factor) == CEType::Formulation &&
           factors.GetMixtureFactorCount() > 0;
}

// One block of variables and where they stand.
struct Block {
    std::vector<int> factors;  // adapter's factors, counted from 0
    std::vector<int> constraintColumns;
    bool isMixture = false;
    DOptGen generator;
    NCDataMatrix<float> initCon;
    NCDataMatrix<float> initVert;

    explicit Block(NCProgress* progress) : generator(progress) {}
    [[nodiscard]] int Variables() const { return static_cast<int>(factors.size()); }
};

void Require(Status status) {
    if (status != Success) {
        throw Status(status);
    }
}

// Variables of one kind, with their columns in the constraints, which know Quantitative and
// Formulation factors only.
void FindVariables(const DOptFactorAdapter& factors, bool mixture, Block& block) {
    int column = 0;
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        if (type != CEType::Quantitative && type != CEType::Formulation) {
            continue;
        }
        if (IsMixtureVariable(factors, factor) == mixture) {
            block.factors.push_back(factor);
            block.constraintColumns.push_back(column);
        }
        ++column;
    }
    block.isMixture = mixture;
}

// Limits and transforms of the block's factors.
std::vector<UnitScale::Variable> RangesOf(const DOptFactorAdapter& factors, const Block& block) {
    std::vector<UnitScale::Variable> ranges;
    for (const int factor : block.factors) {
        const DOptFactorRef ref(factors, factor);
        const bool transformed = factors.GetFactorType(factor) == CEType::Quantitative;
        ranges.push_back({ref.GetLow(),
                          ref.GetHigh(),
                          transformed ? factors.GetFactorTransform(factor) : nullptr});
        if (!std::isfinite(ranges.back().low) || !std::isfinite(ranges.back().high)) {
            throw Status(MissingObject);
        }
    }
    return ranges;
}

// Cells that the points of a block may take. A block far above the limit of the result would use up
// the memory before the result is measured.
int CellsOfBlock(const BlockRequest& request) {
    return request.maxCells == 0
               ? cMaxCells
               : static_cast<int>(std::clamp<long long>(request.maxCells, cFewCells, cMaxCells));
}

void SetUpGenerator(const BlockRequest& request,
                    const std::vector<UnitScale::Variable>& ranges,
                    Block& block) {
    const int n = block.Variables();
    Require(block.generator.SetVariables(n));
    block.generator.SetPIsMix(*MakeOneBasedVec<int>("IsMix", n, block.isMixture ? 1 : 0));
    const auto low = MakeOneBasedVec<float>("VarMin", n, 0.0F);
    const auto high = MakeOneBasedVec<float>("VarMax", n, 0.0F);
    for (int variable = 1; variable <= n; ++variable) {
        (*low)(variable) = ranges[static_cast<std::size_t>(variable - 1)].low;
        (*high)(variable) = ranges[static_cast<std::size_t>(variable - 1)].high;
    }
    block.generator.SetVarRanges(*low, *high);
    block.generator.SetMaxPoints(CellsOfBlock(request) / n);
}

// The constraints of the limits, in units: x >= 0 and 1 - x >= 0 for each variable in turn.
NCDataMatrix<float> LimitRows(int n) {
    NCDataMatrix<float> rows(2 * n, n + 1, 0.0F);
    for (int variable = 1; variable <= n; ++variable) {
        rows(2 * variable - 1, variable, 1.0F);
        rows(2 * variable, variable, -1.0F);
        rows(2 * variable, n + 1, 1.0F);
    }
    return rows;
}

// The constraints that touch the block's variables, over these and in units.
PointTable SplitConstraints(const NCDataMatrix<float>& constraints,
                            const Block& block,
                            const UnitScale& scale) {
    PointTable rows(block.Variables() + 1);
    for (int row = 1; row <= constraints.SizeRows(); ++row) {
        const auto whole = constraints.RowSpan(row);
        std::vector<float> part;
        for (const int column : block.constraintColumns) {
            part.push_back(whole[static_cast<std::size_t>(column)]);
        }
        if (std::ranges::any_of(part, [](float value) { return value != 0; })) {
            part.push_back(whole.back());
            rows.Append(scale.ToUnits(part));
        }
    }
    return rows;
}

// Exponent of the largest two-level table that is safe beside the other parts of the candidates.
int TableExponent(const BlockRequest& request) {
    const long long mixtures = std::max(request.factors->GetMixtureFactorCount(), 1U);
    const long long room = cMaxCells / mixtures / std::max(request.combinations, 1LL);
    const long long runs = std::min<long long>(room, cMaxStartRows);
    int exponent = 0;
    while ((runs >> exponent) > 1) {
        ++exponent;
    }
    return exponent;
}

NCDataMatrix<float> FullTable(int n) {
    NCDataMatrix<float> table(1 << n, n, -1.0F);
    for (int row = 1; row <= table.SizeRows(); ++row) {
        for (int column = 1; column <= n; ++column) {
            table(row, column, ((row - 1) >> (column - 1) & 1) != 0 ? 1.0F : -1.0F);
        }
    }
    return table;
}

// A fraction of resolution V on at most 2^exponent corners; no rows where there is none.
NCDataMatrix<float> FractionalTable(int n, int exponent) {
    const bool takesWide = n >= cMaxFullFactors && n <= cMaxFractionOf29;
    const unsigned factors = takesWide ? cWideFraction : static_cast<unsigned>(n);
    Generators generators(1 << exponent);
    int baseFactors = 0;
    for (int column = 1; column <= n; ++column) {
        const GeneratorWord word = Generators::GetGen5(column, factors, 0, 0);
        if (word == Generators::NONE) {
            return {};
        }
        generators.SetGenerator(column, word);
        baseFactors += Generators::GetRows(word).size() == 1 ? 1 : 0;
    }
    const int rowExponent = std::min(exponent, baseFactors);
    NCDataMatrix<float> table(1 << rowExponent, n, -1.0F);
    for (int row = 1; row <= table.SizeRows(); ++row) {
        for (int column = 1; column <= rowExponent; ++column) {
            table(row, column, ((row - 1) >> (column - 1) & 1) != 0 ? 1.0F : -1.0F);
        }
    }
    generators.AdjustDesignMatrix(n, table);
    return table;
}

NCDataMatrix<float> StartTable(const BlockRequest& request, int n) {
    const bool cornersCount = !request.factors->IsMixtureOnly() &&
                              request.processModel == EModel::Linear &&
                              request.constraints.SizeRows() > 0;
    const int limit = cornersCount ? cMaxFullFactorsUnderConstraints : cMaxFullFactors;
    const int exponent = TableExponent(request);
    if (n <= limit && (limit == cMaxFullFactorsUnderConstraints || n <= exponent)) {
        return FullTable(n);
    }
    return n < 1 << exponent ? FractionalTable(n, exponent) : NCDataMatrix<float>();
}

// Corners of the unit cube.
NCDataMatrix<float> StartCorners(const BlockRequest& request, int n) {
    if (request.factors->IsMixtureOnly() || request.processModel == EModel::None) {
        throw Status(MissingObject);
    }
    NCDataMatrix<float> corners = StartTable(request, n);
    for (float& cell : corners.Cells()) {
        cell = cell > 0 ? 1.0F : 0.0F;
    }
    return corners;
}

NCDataMatrix<float> StartSimplex(float constantShare, int n) {
    const float total = 1 - constantShare;
    NCDataMatrix<float> corners(n, n, 0.0F);
    for (int i = 1; i <= n; ++i) {
        corners(i, i, total < 1 ? total : 1.0F);
    }
    return corners;
}

// x >= 0 for every mixture variable.
NCDataMatrix<float> NonNegativeRows(int n) {
    NCDataMatrix<float> rows(n, n + 1, 0.0F);
    for (int i = 1; i <= n; ++i) {
        rows(i, i, 1.0F);
    }
    return rows;
}

// The limits of the mixture variables cut the simplex as constraints do, before these.
PointTable MixtureCuts(const std::vector<UnitScale::Variable>& ranges, const PointTable& user) {
    const std::size_t n = ranges.size();
    PointTable rows(static_cast<int>(n) + 1);
    for (std::size_t i = 0; i < n; ++i) {
        std::vector<float> row(n + 1, 0.0F);
        row[i] = 1;
        row[n] = -ranges[i].low;
        rows.Append(row);
        row[i] = -1;
        row[n] = ranges[i].high;
        rows.Append(row);
    }
    for (int row = 0; row < user.Size(); ++row) {
        rows.Append(user.Row(row));
    }
    return rows;
}

void Show(NCProgress* progress, float value) {
    if (progress != nullptr && !progress->SetValue(value)) {
        throw Status(Stopped);
    }
}

// The vertices, then the centroids, in units.
PointTable UnitPoints(const DOptGen& generator) {
    PointTable points = generator.GetRegion()->vertices;
    const CtdList* centroids = generator.GetCentroids();
    for (int row = 0; centroids != nullptr && row < centroids->points.Size(); ++row) {
        points.Append(centroids->points.Row(row));
    }
    return points;
}

// Whether edges were turned away for want of room, and those that stayed leave a quadratic model
// undetermined: of equally long edges the first stay, and these may all run in some directions
// only.
bool LacksQuadraticModel(const DOptGen& generator) {
    return generator.GetCentroids()->CountOfDimension(1) >= cMaxEdgePoints &&
           !DeterminesQuadraticModel(UnitPoints(generator), generator.HasMixture());
}

// One point an edge instead of two: twice as many edges find room. The thirds come back where that
// does not help either.
void TakeEdgeCentres(const CentroidPlan& plan,
                     const WorkingScale& working,
                     const StopTest& stop,
                     DOptGen& generator) {
    for (const bool centres : {true, false}) {
        generator.SetEdgeCentres(centres);
        generator.SetEdgeThirds(!centres);
        Require(generator.ComputeCentroids(plan, working, stop));
        if (!LacksQuadraticModel(generator)) {
            return;
        }
    }
}

// Runs both steps of a block.
void ComputePoints(const BlockRequest& request,
                   const CentroidPlan& plan,
                   const UnitScale& scale,
                   Block& block) {
    const StopTest stop = MakeStopTest(request.progress, request.cancel, cStepProgress);
    Require(block.generator.ComputeVertices(stop));
    Show(request.progress, cStepProgress);
    if (plan.IsEmpty()) {
        return;
    }
    if (request.progress != nullptr) {
        request.progress->SetText("Computing Centroids...");
    }
    Show(request.progress, 0);
    block.generator.SetEdgeCentres(plan.edgeCentres);
    block.generator.SetEdgeThirds(plan.edgeThirds);
    const WorkingScale working = scale.MakeWorkingScale(block.generator.GetRegion()->vertices);
    Require(block.generator.ComputeCentroids(plan, working, stop));
    if (plan.edgeThirds && !plan.edgeCentres && LacksQuadraticModel(block.generator)) {
        TakeEdgeCentres(plan, working, stop, block.generator);
    }
    Show(request.progress, cStepProgress);
}

BlockCounts CountBlock(const DOptGen& generator, const CentroidPlan& plan) {
    BlockCounts counts{};
    counts[0] = generator.GetRegion()->vertices.Size();
    if (generator.GetCentroids() == nullptr) {
        return counts;
    }
    counts[1] = generator.GetCentroids()->CountOfDimension(1);
    std::size_t slot = 2;
    for (const int dimension : plan.dimensions) {
        if (dimension > 1) {
            counts[slot++] = generator.GetCentroids()->CountOfDimension(dimension);
        }
    }
    return counts;
}

CandidateBlock MakeBlock(const DOptFactorAdapter& factors,
                         const CentroidPlan& plan,
                         const Block& block,
                         PointTable points) {
    CandidateBlock made{{std::move(points), !plan.IsEmpty(), {}},
                        CountBlock(block.generator, plan)};
    for (const int factor : block.factors) {
        made.rows.columns.push_back(factors.FactorToExpanded(factor + 1) - 1);
    }
    return made;
}

}  // namespace

std::optional<CandidateBlock> MakeProcessBlock(const BlockRequest& request) {
    const DOptFactorAdapter& factors = *request.factors;
    const int n = static_cast<int>(factors.GetDesignFactorCount()) -
                  static_cast<int>(factors.GetMixtureFactorCount()) -
                  static_cast<int>(factors.GetMultilevelCount()) -
                  static_cast<int>(factors.GetQualitativeCount());
    if (n < 1) {
        return std::nullopt;
    }
    Block block(request.progress);
    FindVariables(factors, false, block);
    if (block.Variables() < n) {
        throw Status(MissingObject);  // a factor of a type that has no range
    }
    const std::vector<UnitScale::Variable> ranges = RangesOf(factors, block);
    const UnitScale scale(ranges);
    SetUpGenerator(request, ranges, block);
    block.generator.SetPInitCon(LimitRows(n));
    const NCDataMatrix<float> corners = StartCorners(request, n);
    if (corners.SizeRows() == 0) {
        throw Status(MissingObject);
    }
    block.generator.SetPInitVert(corners);
    const PointTable cuts = SplitConstraints(request.constraints, block, scale);
    if (cuts.Size() > 0) {
        block.generator.SetPNewCon(cuts.ToMatrix());
    }
    const CentroidPlan plan = MakeProcessPlan(n, request.processModel, request.usePotentialTerms);
    ComputePoints(request, plan, scale, block);
    return MakeBlock(factors, plan, block, scale.ToReal(UnitPoints(block.generator)));
}

std::optional<CandidateBlock> MakeMixtureBlock(const BlockRequest& request) {
    const DOptFactorAdapter& factors = *request.factors;
    Block block(request.progress);
    FindVariables(factors, true, block);
    const int n = block.Variables();
    if (n < 1) {
        return std::nullopt;
    }
    const std::vector<UnitScale::Variable> ranges = RangesOf(factors, block);
    // Shares of the whole need no other unit.
    const UnitScale shares(std::vector<UnitScale::Variable>(static_cast<std::size_t>(n)));
    SetUpGenerator(request, ranges, block);
    block.generator.SetPInitCon(NonNegativeRows(n));
    block.generator.SetPInitVert(StartSimplex(factors.GetConstantMixtureShare(), n));
    const PointTable user = SplitConstraints(request.constraints, block, shares);
    block.generator.SetPNewCon(MixtureCuts(ranges, user).ToMatrix());
    const CentroidPlan plan = MakeMixturePlan(n, request.mixtureModel, request.usePotentialTerms);
    ComputePoints(request, plan, shares, block);
    PointTable points = UnitPoints(block.generator);
    for (int row = 0; row < points.Size(); ++row) {
        for (std::size_t i = 0; i < ranges.size(); ++i) {
            float& value = points.Row(row)[i];
            value = SnapToLimits(value, ranges[i].low, ranges[i].high);
        }
    }
    return MakeBlock(factors, plan, block, std::move(points));
}

NumData CountCandidates(const CandidateBlock* process,
                        const CandidateBlock* mixture,
                        long long combinations) {
    // Kinds of all rows: vertices, edge centres, higher. A missing block counts as one vertex.
    std::array<long long, 3> kinds{};
    const auto rowsOf = [](const CandidateBlock* block, bool crossed) {
        BlockCounts counts = block != nullptr ? block->counts : BlockCounts{1};
        if (crossed && block->rows.endsInCentroid) {
            *std::find_if(counts.rbegin(), counts.rend(), [](long long c) { return c != 0; }) -= 1;
        }
        return counts;
    };
    const bool crossed = process != nullptr && mixture != nullptr;
    const BlockCounts p = rowsOf(process, crossed);
    const BlockCounts m = rowsOf(mixture, crossed);
    for (std::size_t i = 0; i < p.size(); ++i) {
        for (std::size_t j = 0; j < m.size(); ++j) {
            kinds[std::min<std::size_t>(i + j, 2)] += p[i] * m[j];
        }
    }
    if (crossed && process->rows.endsInCentroid && mixture->rows.endsInCentroid) {
        ++kinds[2];
    }
    for (long long& kind : kinds) {
        kind *= combinations;
    }
    return {static_cast<int>(kinds[0]), static_cast<int>(kinds[1]), static_cast<int>(kinds[2])};
}

}  // namespace DOpt
