#include "designs/optimal/OnionDesign.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "designs/optimal/D_OptimalOptions.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/OnionCases.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/support/ValidatingScope.h"

namespace {

using OnionCases::AtLeast;
using OnionCases::Builder;
using OnionCases::FamilyOf;
using OnionCases::Linear;
using OnionCases::Request;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Table = NCDataMatrix<float>;

/// Of an inner layer of 2 factors: 3 to 6 runs. Its 4 runs less 2 do not estimate 3 terms.
constexpr std::size_t cResults = 4;

std::unique_ptr<OnionDesign> Built(const Factors& factors, const DesignOptions& options) {
    auto design = Builder().Build(factors, options);
    EXPECT_NE(design, nullptr);
    return std::unique_ptr<OnionDesign>(dynamic_cast<OnionDesign*>(design.release()));
}

/// A grid of 11 x 11 points on -1 to 1, sorted by the larger coordinate, in `layers` equal shares,
/// and the centre as the last row.
CandidateSet Grid(int layers) {
    std::vector<std::pair<float, float>> points;
    for (int i = -5; i <= 5; ++i) {
        for (int j = -5; j <= 5; ++j) {
            points.emplace_back(static_cast<float>(i) / 5.0F, static_cast<float>(j) / 5.0F);
        }
    }
    std::ranges::stable_sort(points, {}, [](const auto& point) {
        return std::max(std::fabs(point.first), std::fabs(point.second));
    });
    Table rows(0, 2);
    std::vector<int> starts;
    std::vector<int> numbers;
    const int count = static_cast<int>(points.size());
    for (int layer = 0; layer < layers; ++layer) {
        starts.push_back(count * layer / layers + 1);
        numbers.push_back(count * (layer + 1) / layers - count * layer / layers);
    }
    rows.SetSize(count + 1, 2);
    for (int row = 1; row <= count; ++row) {
        rows(row, 1, points[static_cast<std::size_t>(row) - 1].first);
        rows(row, 2, points[static_cast<std::size_t>(row) - 1].second);
    }
    rows(count + 1, 1, 0.0F);
    rows(count + 1, 2, 0.0F);
    CandidateSet set;
    set.SetCandidateSet(rows, DOpt::NumData(), &starts, &numbers);
    return set;
}

DesignOptions Layered(const Factors& factors, int layers = 3) {
    DesignOptions options = Linear(factors);
    FamilyOf(options).SetLayers(layers, Builder(), factors, options);
    FamilyOf(options).SetCandidateSet(Grid(layers));
    return options;
}

Table RowsOf(const Table& table, int first, int count) {
    Table rows(0, table.SizeColumns());
    for (int row = first; row < first + count; ++row) {
        Table one(1, table.SizeColumns());
        one.SetRow(1, table.GetRow(row));
        rows.ConcatRows(one);
    }
    return rows;
}

bool Holds(const Table& table, const NCDataVector<float>& run) {
    for (int row = 1; row <= table.SizeRows(); ++row) {
        if (table.GetRow(row) == run) {
            return true;
        }
    }
    return false;
}

Table Stacked(const OnionDesign& design) {
    Table stack;
    for (const auto& layer : design.GetResults()) {
        stack.ConcatRows(*layer->GetDesignMatrix());
    }
    return stack;
}

std::string ExceptionText(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

// Validating: a search is the same every time.
class OnionDesignTest : public ::testing::Test {
  protected:
    const TestFactors factors_ = TestFactors().Quantitative().Quantitative();

  private:
    const ValidatingScope validating_;
};

// --- The layers -------------------------------------------------------------------------------

TEST_F(OnionDesignTest, EveryRunOfALayerIsOneOfItsCandidates) {
    for (const int layers : {1, 2, 3, 5}) {
        const DesignOptions options = Layered(factors_, layers);
        const auto design = Built(factors_, options);
        ASSERT_EQ(design->GetLayerCount(), layers);
        for (int layer = 1; layer <= layers; ++layer) {
            const Table own =
                options.GetDesignSpecificOptions()->GetCandidateSet().GetMatrix(layer);
            const Table& runs =
                *design->GetResults()[static_cast<std::size_t>(layer) - 1]->GetDesignMatrix();
            for (int row = 1; row <= runs.SizeRows(); ++row) {
                EXPECT_TRUE(Holds(own, runs.GetRow(row))) << "layer " << layer << ", row " << row;
            }
        }
    }
}

TEST_F(OnionDesignTest, TheStackHoldsTheLayersInOrder) {
    const auto design = Built(factors_, Layered(factors_));
    ASSERT_EQ(design->GetResults().size(), 3U);
    EXPECT_EQ(*design->GetDesignMatrix(), Stacked(*design));
    EXPECT_EQ(design->GetDesignMatrix()->SizeColumns(), 2);
}

TEST_F(OnionDesignTest, EachLayerIsSearchedAtItsRunsAndTwoMoreAndFewer) {
    DesignOptions options = Layered(factors_);
    FamilyOf(options).GetLayer(1).Runs = 6;
    FamilyOf(options).GetLayer(2).Runs = 8;
    FamilyOf(options).GetLayer(3).Runs = 11;
    const auto design = Built(factors_, options);
    const std::vector<int> asked{6, 8, 11};
    for (std::size_t layer = 0; layer < 3; ++layer) {
        std::set<int> counts;
        for (const auto& result : design->GetResults()[layer]->GetResults()) {
            counts.insert(static_cast<int>(result.rows.size()));
        }
        const int runs = asked[layer];
        EXPECT_EQ(counts, (std::set<int>{runs - 2, runs - 1, runs, runs + 1, runs + 2}));
    }
}

TEST_F(OnionDesignTest, RepetitionsAreThoseOfTheLayer) {
    DesignOptions options = Layered(factors_);
    FamilyOf(options).GetLayer(2).Repetitions = 3;
    const auto design = Built(factors_, options);
    EXPECT_EQ(design->GetResults()[0]->GetResults().size(), cResults);
    EXPECT_EQ(design->GetResults()[1]->GetResults().size(), 3 * cResults);
}

TEST_F(OnionDesignTest, TheBestGEfficiencyIsShown) {
    const auto design = Built(factors_, Layered(factors_));
    for (const auto& layer : design->GetResults()) {
        EXPECT_EQ(layer->GetDesignMatrix()->SizeRows(),
                  static_cast<int>(
                      layer->GetResults()[static_cast<std::size_t>(layer->GetSelectedIndex())]
                          .rows.size()));
    }
}

// All layers of one set: the determinant of the union can only gain from wider candidates, and a
// layer of outer ones beats an inner one.
TEST_F(OnionDesignTest, OuterLayersHaveTheLargerDeterminant) {
    const auto design = Built(factors_, Layered(factors_));
    std::vector<double> figures;
    for (const auto& layer : design->GetResults()) {
        for (const auto& result : layer->GetResults()) {
            if (result.rows.size() == 5) {
                figures.push_back(result.LogDet);
            }
        }
    }
    ASSERT_GE(figures.size(), 3U);
    EXPECT_TRUE(std::is_sorted(figures.begin(), figures.end()));
}

// No result has fewer runs than terms: 3 of the linear models, 6 of the quadratic one.
TEST_F(OnionDesignTest, ModelsAreThoseOfTheLayers) {
    DesignOptions options = Request(factors_, EObjective::Optimization, EModel::Quadratic);
    FamilyOf(options).SetCandidateSet(Grid(3));
    FamilyOf(options).GetLayer(3).Runs = 7;
    const auto design = Built(factors_, options);
    std::vector<std::size_t> fewest;
    for (const auto& layer : design->GetResults()) {
        fewest.push_back(layer->GetResults().front().rows.size());
    }
    EXPECT_THAT(fewest, ElementsAre(3U, 3U, 6U));
}

TEST_F(OnionDesignTest, ExplicitTermsReplaceTheModel) {
    DesignOptions options = Layered(factors_);
    // With the squares the corners alone are not enough.
    FamilyOf(options).GetLayer(3).OptModels = {{}, {0}, {1}, {0, 0}, {1, 1}};
    const auto design = Built(factors_, options);
    const Table& runs = *design->GetResults()[2]->GetDesignMatrix();
    std::set<float> first;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        first.insert(runs(row, 1));
    }
    EXPECT_GE(first.size(), 3U);
}

TEST_F(OnionDesignTest, WithoutACandidateSetEachLayerGeneratesItsOwn) {
    const auto design = Built(factors_, Linear(factors_));
    for (const auto& layer : design->GetResults()) {
        EXPECT_EQ(layer->GetNumData().ExtVert, 4);
    }
    EXPECT_EQ(*design->GetDesignMatrix(), Stacked(*design));
}

TEST_F(OnionDesignTest, CountsByKindAreUnknownForStoredCandidates) {
    const auto design = Built(factors_, Layered(factors_));
    for (const auto& layer : design->GetResults()) {
        EXPECT_EQ(layer->GetNumData(), DOpt::NumData());
    }
}

TEST_F(OnionDesignTest, GeneratedRunsKeepTheConstraints) {
    DesignOptions options = Linear(factors_);
    FamilyOf(options).SetConstraints(AtLeast(0.5), factors_);
    options.SetCenterPoints(3);
    const auto design = Built(factors_, options);
    const Table& runs = *design->GetDesignMatrix();
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        EXPECT_GE(runs(row, 1), 0.5F) << "row " << row;
    }
}

TEST_F(OnionDesignTest, MatrixIsInRealUnits) {
    const TestFactors factors = TestFactors().Quantitative(150, 180).Quantitative(1, 2);
    const auto design = Built(factors, Linear(factors));
    EXPECT_FALSE(design->IsDesignMatrixCoded());
    const auto [low, high] = std::ranges::minmax_element(design->GetDesignMatrix()->Cells());
    EXPECT_EQ(*low, 1.0F);
    EXPECT_EQ(*high, 180.0F);
}

// --- Finishing --------------------------------------------------------------------------------

TEST_F(OnionDesignTest, CentrePointsAndReplicatedRunsStandInTheLastLayer) {
    DesignOptions options = Layered(factors_);
    const auto plain = Built(factors_, options);
    options.SetCenterPoints(2);
    options.SetReplicatedRuns(3);
    const auto design = Built(factors_, options);
    for (std::size_t layer = 0; layer < 2; ++layer) {
        EXPECT_EQ(*design->GetResults()[layer]->GetDesignMatrix(),
                  *plain->GetResults()[layer]->GetDesignMatrix());
    }
    const Table& last = *design->GetResults()[2]->GetDesignMatrix();
    const auto picked = static_cast<int>(design->GetPickedRows(3).size());
    EXPECT_EQ(last.SizeRows(), picked + 2 + 3);
    for (int row = picked + 1; row <= picked + 2; ++row) {
        EXPECT_EQ(last(row, 1), 0.0F);
        EXPECT_EQ(last(row, 2), 0.0F);
    }
    for (int row = picked + 3; row <= last.SizeRows(); ++row) {
        EXPECT_TRUE(Holds(RowsOf(last, 1, picked + 2), last.GetRow(row))) << row;
    }
}

TEST_F(OnionDesignTest, ReplicatesCopyTheWholeStack) {
    DesignOptions options = Layered(factors_);
    const Table once = *Built(factors_, options)->GetDesignMatrix();
    options.SetReplicates(2);
    const auto design = Built(factors_, options);
    Table expected = once;
    expected.ConcatRows(once);
    expected.ConcatRows(once);
    EXPECT_EQ(*design->GetDesignMatrix(), expected);
    EXPECT_EQ(Stacked(*design), once);
}

TEST_F(OnionDesignTest, BlocksApplyWithoutACandidateSet) {
    DesignOptions options = Linear(factors_);
    options.SetBlocks(2);
    const auto design = Built(factors_, options);
    const Table& runs = *design->GetDesignMatrix();
    ASSERT_EQ(runs.SizeColumns(), 3);
    std::set<float> codes;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        codes.insert(runs(row, 3));
    }
    EXPECT_THAT(codes, ElementsAre(-1.0F, 1.0F));
}

TEST_F(OnionDesignTest, BlocksDoNotApplyToACandidateSet) {
    DesignOptions options = Layered(factors_);
    const Table once = *Built(factors_, options)->GetDesignMatrix();
    options.SetBlocks(2);
    EXPECT_EQ(*Built(factors_, options)->GetDesignMatrix(), once);
}

// --- Choosing results -------------------------------------------------------------------------

TEST_F(OnionDesignTest, AnotherResultOfALayerIsShown) {
    const DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    const Table inner = *design->GetResults()[0]->GetDesignMatrix();
    for (int index = 0; index < static_cast<int>(cResults); ++index) {
        design->SelectDesign(2, index, options);
        const D_Optimal& layer = *design->GetResults()[1];
        EXPECT_EQ(layer.GetSelectedIndex(), index);
        EXPECT_EQ(
            layer.GetDesignMatrix()->SizeRows(),
            static_cast<int>(layer.GetResults()[static_cast<std::size_t>(index)].rows.size()));
        EXPECT_EQ(*design->GetDesignMatrix(), Stacked(*design));
        EXPECT_EQ(*design->GetResults()[0]->GetDesignMatrix(), inner);
    }
}

TEST_F(OnionDesignTest, AChoiceThatDoesNotExistChangesNothing) {
    const DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    const Table before = *design->GetDesignMatrix();
    for (const auto& [layer, index] : {std::pair{0, 0},
                                       std::pair{4, 0},
                                       std::pair{1, -1},
                                       std::pair{1, static_cast<int>(cResults)}}) {
        EXPECT_THROW(design->SelectDesign(layer, index, options), InvalidOperationException);
    }
    EXPECT_EQ(*design->GetDesignMatrix(), before);
}

TEST_F(OnionDesignTest, UpdateStacksWhatTheLayersShow) {
    DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    Table other(1, 2, 0.25F);
    design->GetResults()[0]->SetDesignMatrix(other);
    options.SetReplicates(1);
    design->UpdateDesignMatrix(options);
    Table expected = Stacked(*design);
    EXPECT_EQ(expected.GetRow(1), other.GetRow(1));
    expected.ConcatRows(Stacked(*design));
    EXPECT_EQ(*design->GetDesignMatrix(), expected);
}

TEST_F(OnionDesignTest, RemovingLeavesTheSelectedResultOfEachLayer) {
    const DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    design->SelectDesign(1, 3, options);
    const std::vector<int> rows = design->GetPickedRows(1);
    design->RemoveGeneratedDesigns();
    for (const auto& layer : design->GetResults()) {
        EXPECT_EQ(layer->GetResults().size(), 1U);
        EXPECT_EQ(layer->GetSelectedIndex(), 0);
    }
    EXPECT_EQ(design->GetPickedRows(1), rows);
}

TEST_F(OnionDesignTest, ACopyHasLayersOfItsOwn) {
    const DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    const auto copy = design->Clone();
    auto& clone = dynamic_cast<OnionDesign&>(*copy);
    clone.RemoveGeneratedDesigns();
    EXPECT_EQ(design->GetResults()[0]->GetResults().size(), cResults);
    EXPECT_EQ(clone.GetResults()[0]->GetResults().size(), 1U);
    EXPECT_EQ(*clone.GetDesignMatrix(), *design->GetDesignMatrix());
}

// --- Picks ------------------------------------------------------------------------------------

TEST_F(OnionDesignTest, CandidatesTellTheRunsThatUseThem) {
    const DesignOptions options = Layered(factors_);
    const std::shared_ptr<const OnionDesign> design = Built(factors_, options);
    const CandidateSet& set = options.GetDesignSpecificOptions()->GetCandidateSet();
    const Table& runs = *design->GetDesignMatrix();
    int used = 0;
    // The centroid behind the layers belongs to none.
    for (int row = 1; row < set.SizeRows(); ++row) {
        for (const int run : set.GetAllDesignRuns(row, design, options)) {
            EXPECT_EQ(runs.GetRow(run), set.GetRow(row)) << "candidate " << row;
            ++used;
        }
    }
    EXPECT_EQ(used, runs.SizeRows());
}

TEST_F(OnionDesignTest, NamesOfTheUsedCandidatesFollowTheRuns) {
    DesignOptions options = Layered(factors_);
    CandidateSet set = Grid(3);
    std::vector<std::string> names;
    for (int row = 1; row <= set.SizeRows(); ++row) {
        names.push_back(std::to_string(set(row, 1)) + "/" + std::to_string(set(row, 2)));
    }
    set.SetRowNames(names);
    FamilyOf(options).SetCandidateSet(set);
    const auto design = Built(factors_, options);
    const Table& runs = *design->GetDesignMatrix();
    std::vector<std::string> expected;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        expected.push_back(std::to_string(runs(row, 1)) + "/" + std::to_string(runs(row, 2)));
    }
    EXPECT_EQ(set.GetUsedScoreNames(*design), expected);
}

TEST_F(OnionDesignTest, LayersThatDoNotExistHaveNoPicks) {
    const auto design = Built(factors_, Layered(factors_));
    EXPECT_THAT(design->GetPickedRows(0), IsEmpty());
    EXPECT_THAT(design->GetPickedRows(4), IsEmpty());
    EXPECT_EQ(design->GetInclusionRows(4), 0);
    EXPECT_TRUE(design->IsLayered());
}

// --- Persistence ------------------------------------------------------------------------------

TEST_F(OnionDesignTest, LayersAreReadBack) {
    const DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    ConfigurationStore store;
    design->Save(store.OpenRoot().get());
    const OnionDesign loaded(factors_, *store.OpenRoot());
    ASSERT_EQ(loaded.GetLayerCount(), 3);
    for (int layer = 1; layer <= 3; ++layer) {
        EXPECT_EQ(loaded.GetPickedRows(layer), design->GetPickedRows(layer));
        const auto index = static_cast<std::size_t>(layer) - 1;
        EXPECT_EQ(loaded.GetResults()[index]->GetResults().size(),
                  design->GetResults()[index]->GetResults().size());
    }
    EXPECT_EQ(loaded.GetDesignMatrix(), nullptr);
}

TEST_F(OnionDesignTest, AReadDesignGetsItsMatrixFromTheOptions) {
    DesignOptions options = Layered(factors_);
    options.SetCenterPoints(2);
    options.SetReplicates(1);
    const auto design = Built(factors_, options);
    ConfigurationStore store;
    design->Save(store.OpenRoot().get());
    options.Save(store.OpenRoot().get());
    DesignOptions read(Builder(), factors_);
    ASSERT_TRUE(read.Load(store.OpenRoot().get()));
    OnionDesign loaded(factors_, *store.OpenRoot());
    loaded.UpdateDesignMatrix(read);
    ASSERT_NE(loaded.GetDesignMatrix(), nullptr);
    EXPECT_EQ(*loaded.GetDesignMatrix(), *design->GetDesignMatrix());
}

TEST_F(OnionDesignTest, LoadingLeavesNothingOfAnEarlierDesign) {
    ConfigurationStore store;
    Built(factors_, Layered(factors_, 2))->Save(store.OpenRoot().get());
    const auto design = Built(factors_, Layered(factors_, 3));
    ASSERT_NE(design->GetDesignMatrix(), nullptr);
    ASSERT_TRUE(design->Load(store.OpenRoot().get()));
    EXPECT_EQ(design->GetLayerCount(), 2);
    EXPECT_EQ(design->GetDesignMatrix(), nullptr);
}

TEST_F(OnionDesignTest, SectionsAreThoseOfTheFormat) {
    const auto design = Built(factors_, Layered(factors_));
    ConfigurationStore store;
    design->Save(store.OpenRoot().get());
    const auto own = store.OpenRoot()->OpenSection("Design")->OpenSection("OnionDesign");
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own->SectionCount("LayerDOptimal"), 3);
    EXPECT_NE(own->OpenSection("LayerDOptimal", 3)->OpenSection("Design")->OpenSection("DOptimal"),
              nullptr);
}

TEST_F(OnionDesignTest, ALongerListSavedBeforeDoesNotComeBack) {
    ConfigurationStore store;
    Built(factors_, Layered(factors_, 5))->Save(store.OpenRoot().get());
    Built(factors_, Layered(factors_, 2))->Save(store.OpenRoot().get());
    EXPECT_EQ(OnionDesign(factors_, *store.OpenRoot()).GetLayerCount(), 2);
}

TEST_F(OnionDesignTest, MissingSectionsChangeNothing) {
    const auto design = Built(factors_, Layered(factors_));
    ConfigurationStore store;
    EXPECT_FALSE(design->Load(store.OpenRoot().get()));
    store.OpenRoot()->OpenOrCreateSection("Design");
    EXPECT_FALSE(design->Load(store.OpenRoot().get()));
    EXPECT_EQ(design->GetLayerCount(), 3);
}

// --- Failures ---------------------------------------------------------------------------------

TEST_F(OnionDesignTest, InvalidRequestsGiveNoDesign) {
    EXPECT_EQ(Builder().Build(TestFactors().Quantitative(), Linear(TestFactors().Quantitatives(2))),
              nullptr);
}

TEST_F(OnionDesignTest, WithoutFamilyOptionsTheDefaultOnesAreSearched) {
    DesignOptions options = Linear(factors_);
    options.SetDesignSpecificOptions(nullptr);
    EXPECT_EQ(Built(factors_, options)->GetLayerCount(), 3);
    EXPECT_EQ(options.GetDesignSpecificOptions(), nullptr);
    EXPECT_THROW(OnionDesign(factors_, options), InvalidOperationException);
}

// What was reckoned with before the search holds in the search.
TEST_F(OnionDesignTest, ConstraintsInOptionsOfAnotherFamilyAreKept) {
    DesignOptions options = Linear(factors_);
    const auto other = std::make_shared<DesignSpecificOptions>();
    other->SetConstraints(AtLeast(0.5), factors_);
    options.SetDesignSpecificOptions(other);
    const auto design = Built(factors_, options);
    const Table& runs = *design->GetDesignMatrix();
    ASSERT_GT(runs.SizeRows(), 0);
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        EXPECT_GE(runs(row, 1), 0.5F) << "row " << row;
    }
    EXPECT_EQ(options.GetDesignSpecificOptions(), other.get());
}

TEST_F(OnionDesignTest, CandidatesInOptionsOfAnotherFamilyAreKept) {
    DesignOptions options = Linear(factors_);
    const auto other = std::make_shared<D_OptimalOptions>();
    other->SetCandidateSet(Grid(3));
    options.SetDesignSpecificOptions(other);
    const auto design = Built(factors_, options);
    ASSERT_EQ(design->GetLayerCount(), 3);
    const Table& inner = *design->GetResults()[0]->GetDesignMatrix();
    for (int row = 1; row <= inner.SizeRows(); ++row) {
        EXPECT_TRUE(Holds(Grid(3).GetMatrix(1), inner.GetRow(row))) << "row " << row;
    }
}

TEST_F(OnionDesignTest, OptionsOfAnotherFamilyDoNotMakeTheMatrix) {
    const auto design = Built(factors_, Layered(factors_));
    ConfigurationStore store;
    design->Save(store.OpenRoot().get());
    OnionDesign loaded(factors_, *store.OpenRoot());
    DesignOptions options = Layered(factors_);
    for (const auto& other :
         {std::shared_ptr<D_OptimalOptions>(), std::make_shared<D_OptimalOptions>()}) {
        options.SetDesignSpecificOptions(other);
        EXPECT_THROW(loaded.UpdateDesignMatrix(options), InvalidOperationException);
        EXPECT_EQ(loaded.GetDesignMatrix(), nullptr);
    }
}

TEST_F(OnionDesignTest, MoreCopiesThanADesignMayHaveAreRefusedInEveryUpdate) {
    DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    const Table before = *design->GetDesignMatrix();
    // The second number of copies does not fit an int.
    for (const unsigned replicates : {1'000'000U, 4'000'000'000U}) {
        options.SetReplicates(replicates);
        EXPECT_THAT(ExceptionText([&] { design->UpdateDesignMatrix(options); }),
                    ::testing::HasSubstr("at most 1000000 runs"));
        EXPECT_THAT(ExceptionText([&] { design->SelectDesign(1, 0, options); }),
                    ::testing::HasSubstr("at most 1000000 runs"));
        EXPECT_EQ(*design->GetDesignMatrix(), before);
    }
}

// Centre points and replicated runs are in the layers: they are not counted again.
TEST_F(OnionDesignTest, OnlyTheStackAndItsCopiesCount) {
    DesignOptions options = Layered(factors_);
    const auto design = Built(factors_, options);
    const Table before = *design->GetDesignMatrix();
    options.SetCenterPoints(1'000'000);
    options.SetReplicatedRuns(1'000'000);
    design->UpdateDesignMatrix(options);
    EXPECT_EQ(*design->GetDesignMatrix(), before);
}

TEST_F(OnionDesignTest, WithoutLayersThereIsNoDesign) {
    DesignOptions options = Linear(factors_);
    FamilyOf(options) = OnionOptions();
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors_, options); }),
              "Illegal number of layers");
}

// A set that is not divided must not be passed over silently.
TEST_F(OnionDesignTest, CandidatesWithoutRowsForALayerAreRefused) {
    DesignOptions options = Linear(factors_);
    FamilyOf(options).SetCandidateSet(Grid(2));
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors_, options); }),
              "The candidate set has no rows for layer 3 of 3.");
    CandidateSet undivided;
    undivided.SetCandidateSet(Grid(2).GetMatrix(), DOpt::NumData());
    FamilyOf(options).SetCandidateSet(undivided);
    EXPECT_EQ(ExceptionText([&] { (void)Builder().Build(factors_, options); }),
              "The candidate set has no rows for layer 1 of 3.");
}

TEST_F(OnionDesignTest, ALayerThatCannotBeEstimatedFailsTheDesign) {
    DesignOptions options = Layered(factors_);
    CandidateSet set = Grid(3);
    // The first factor does not vary in the first layer.
    for (int row = 1; row <= set.GetNumbers().front(); ++row) {
        set.UpdateCandidateSet(static_cast<unsigned>(row), 1, 0);
    }
    FamilyOf(options).SetCandidateSet(set);
    EXPECT_THAT(ExceptionText([&] { (void)Builder().Build(factors_, options); }),
                ::testing::HasSubstr("singular"));
}

TEST_F(OnionDesignTest, MoreRunsThanADesignMayHaveAreRefused) {
    DesignOptions options = Layered(factors_);
    options.SetReplicates(1000000);
    EXPECT_THAT(ExceptionText([&] { (void)Builder().Build(factors_, options); }),
                ::testing::HasSubstr("at most 1000000 runs"));
}

TEST_F(OnionDesignTest, ASetCancelFlagStopsTheSearch) {
    bool cancel = true;
    EXPECT_THROW((void)Builder().Build(factors_, Layered(factors_), &cancel), CancelException);
}

// --- The search itself ------------------------------------------------------------------------

/// The largest log10 det(X'X) of a linear model in two factors over all sets of 4 rows.
double BestOfFour(const Table& rows) {
    const int count = rows.SizeRows();
    double best = 0;
    const auto at = [&](int row, int column) { return static_cast<double>(rows(row, column)); };
    for (int a = 1; a <= count; ++a) {
        for (int b = a + 1; b <= count; ++b) {
            for (int c = b + 1; c <= count; ++c) {
                for (int d = c + 1; d <= count; ++d) {
                    double sum[5] = {0, 0, 0, 0, 0};  // of x, y, x^2, y^2 and x y
                    for (const int row : {a, b, c, d}) {
                        const double x = at(row, 1);
                        const double y = at(row, 2);
                        sum[0] += x;
                        sum[1] += y;
                        sum[2] += x * x;
                        sum[3] += y * y;
                        sum[4] += x * y;
                    }
                    best = std::max(best,
                                    4 * (sum[2] * sum[3] - sum[4] * sum[4]) -
                                        sum[0] * (sum[0] * sum[3] - sum[4] * sum[1]) +
                                        sum[1] * (sum[0] * sum[4] - sum[2] * sum[1]));
                }
            }
        }
    }
    return std::log10(best);
}

TEST_F(OnionDesignTest, FourRunsOfALayerAreNearTheBestSetOfFour) {
    DesignOptions options = Layered(factors_, 3);
    for (int layer = 1; layer <= 3; ++layer) {
        FamilyOf(options).GetLayer(layer).Runs = 4;
        FamilyOf(options).GetLayer(layer).Repetitions = 5;
    }
    const auto design = Built(factors_, options);
    const CandidateSet& set = options.GetDesignSpecificOptions()->GetCandidateSet();
    for (int layer = 1; layer <= 3; ++layer) {
        const D_Optimal& search = *design->GetResults()[static_cast<std::size_t>(layer) - 1];
        double found = -99;
        for (const auto& result : search.GetResults()) {
            found = result.rows.size() == 4 ? std::max(found, result.LogDet) : found;
        }
        const double best = BestOfFour(set.GetMatrix(layer));
        EXPECT_LE(found, best + 1e-5) << "layer " << layer;
        EXPECT_GE(found, best - 0.05) << "layer " << layer;
    }
}

}  // namespace
