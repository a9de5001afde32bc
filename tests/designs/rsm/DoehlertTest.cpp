#include "designs/rsm/Doehlert.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/oracles/SimplexLattice.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/TestFactors.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// Coordinates are single-precision differences of numbers up to 1.
constexpr double cTolerance = 1e-6;

const DesignBuilder& Builder() {
    return *AllDesigns::GetDesignBuilder(EDesign::Doehlert, "");
}

Doehlert Design(const Factors& factors, unsigned centerPoints) {
    DesignOptions options(Builder(), factors);
    options.SetCenterPoints(centerPoints);
    return Doehlert(factors, options);
}

NCDataMatrix<float> Shell(int count) {
    const TestFactors factors = TestFactors().Quantitatives(count);
    return *Design(factors, 0).GetDesignMatrix();
}

double InnerProduct(const NCDataMatrix<float>& runs, int a, int b) {
    double sum = 0;
    for (int column = 1; column <= runs.SizeColumns(); ++column) {
        sum += static_cast<double>(runs(a, column)) * static_cast<double>(runs(b, column));
    }
    return sum;
}

double Distance(const NCDataMatrix<float>& runs, int a, int b) {
    double sum = 0;
    for (int column = 1; column <= runs.SizeColumns(); ++column) {
        const double difference =
            static_cast<double>(runs(a, column)) - static_cast<double>(runs(b, column));
        sum += difference * difference;
    }
    return std::sqrt(sum);
}

// What is wrong with a uniform shell: every run must lie at distance 1 from the centre and have
// 2 (n - 1) neighbours at distance 1, one run opposite at distance 2, and all others at the
// lattice's distances between: the roots of 2 and 3.
std::vector<std::string> ShellFaults(const NCDataMatrix<float>& runs) {
    std::vector<std::string> faults;
    const int neighboursOfEach = 2 * (runs.SizeColumns() - 1);
    for (int a = 1; a <= runs.SizeRows(); ++a) {
        int neighbours = 0;
        int opposite = 0;
        int between = 0;
        for (int b = 1; b <= runs.SizeRows(); ++b) {
            const double distance = Distance(runs, a, b);
            neighbours += std::abs(distance - 1) < cTolerance ? 1 : 0;
            opposite += std::abs(distance - 2) < cTolerance ? 1 : 0;
            between += std::abs(distance - std::sqrt(2.0)) < cTolerance ||
                               std::abs(distance - std::sqrt(3.0)) < cTolerance
                           ? 1
                           : 0;
        }
        if (std::abs(InnerProduct(runs, a, a) - 1) > cTolerance || neighbours != neighboursOfEach ||
            opposite != 1 || 1 + neighbours + opposite + between != runs.SizeRows()) {
            faults.push_back("run " + std::to_string(a));
        }
    }
    return faults;
}

void ExpectNear(const NCDataMatrix<float>& runs,
                const std::vector<std::vector<double>>& expected,
                double tolerance) {
    ASSERT_EQ(static_cast<std::size_t>(runs.SizeRows()), expected.size());
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        for (int column = 1; column <= runs.SizeColumns(); ++column) {
            EXPECT_NEAR(
                static_cast<double>(runs(row, column)),
                expected[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(column - 1)],
                tolerance)
                << row << ' ' << column;
        }
    }
}

std::vector<std::vector<double>> ToCoordinates(const std::vector<oracles::LatticePoint>& points) {
    std::vector<std::vector<double>> coordinates;
    for (const auto& point : points) {
        coordinates.push_back(oracles::ToCoordinates(point));
    }
    return coordinates;
}

std::set<long> LevelsOf(const NCDataMatrix<float>& runs, int column) {
    std::set<long> levels;
    for (int row = 1; row <= runs.SizeRows(); ++row) {
        levels.insert(std::lround(static_cast<double>(runs(row, column)) * 1e5));
    }
    return levels;
}

}  // namespace

TEST(Doehlert, RunsAreTheDifferencesOfVertices) {
    EXPECT_EQ(Doehlert::GeneratedRuns(0), 0U);
    EXPECT_EQ(Doehlert::GeneratedRuns(1), 0U);
    EXPECT_EQ(Doehlert::GeneratedRuns(2), 6U);
    EXPECT_EQ(Doehlert::GeneratedRuns(3), 12U);
    EXPECT_EQ(Doehlert::GeneratedRuns(20), 420U);
}

TEST(Doehlert, SimplexOfTwoIsATriangle) {
    const std::vector<std::vector<float>> expected{{0.0F, 0.0F}, {1.0F, 0.0F}, {0.5F, 0.8660254F}};
    EXPECT_EQ(RowsOf(Doehlert::GenerateSimplex(2)), expected);
}

TEST(Doehlert, SimplexIsRegular) {
    for (int count = 1; count <= 20; ++count) {
        const NCDataMatrix<float> simplex = Doehlert::GenerateSimplex(count);
        for (int a = 1; a <= count; ++a) {
            for (int b = a + 1; b <= count + 1; ++b) {
                EXPECT_NEAR(Distance(simplex, a, b), 1, cTolerance)
                    << count << ": " << a << ' ' << b;
            }
        }
    }
}

TEST(Doehlert, ExpansionStartsWithTheOrigin) {
    const NCDataMatrix<float> table = Doehlert::ExpandToDesign(Doehlert::GenerateSimplex(2), 2);
    const std::vector<std::vector<float>> expected{{0.0F, 0.0F},
                                                   {1.0F, 0.0F},
                                                   {0.5F, 0.8660254F},
                                                   {-1.0F, 0.0F},
                                                   {-0.5F, -0.8660254F},
                                                   {0.5F, -0.8660254F},
                                                   {-0.5F, 0.8660254F}};
    EXPECT_EQ(RowsOf(table), expected);
}

TEST(Doehlert, TwoFactorsFormAHexagonAndItsCentre) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const auto design = Builder().Build(factors, DesignOptions(Builder(), factors));
    ExpectNear(*design->GetDesignMatrix(),
               {{1, 0},
                {0.5, 0.8660254},
                {-1, 0},
                {-0.5, -0.8660254},
                {0.5, -0.8660254},
                {-0.5, 0.8660254},
                {0, 0},
                {0, 0},
                {0, 0}},
               1e-7);
}

TEST(Doehlert, ThreeFactorsHaveThePublishedCoordinates) {
    // Doehlert (1970), table 1, to its three decimals.
    ExpectNear(Shell(3),
               {{1, 0, 0},
                {0.5, 0.866, 0},
                {0.5, 0.289, 0.816},
                {-1, 0, 0},
                {-0.5, -0.866, 0},
                {-0.5, -0.289, -0.816},
                {0.5, -0.866, 0},
                {0.5, -0.289, -0.816},
                {0, 0.577, -0.816},
                {-0.5, 0.866, 0},
                {-0.5, 0.289, 0.816},
                {0, -0.577, 0.816}},
               0.0006);
}

TEST(Doehlert, FourFactorsHaveThePublishedCoordinates) {
    // Doehlert (1970), table 1, to its three decimals.
    const std::vector<std::vector<double>> half{
        {1, 0, 0, 0}, {0.5, 0.866, 0, 0}, {0.5, 0.289, 0.816, 0}, {0.5, 0.289, 0.204, 0.791}};
    const std::vector<std::vector<double>> differences{{0.5, -0.866, 0, 0},
                                                       {0.5, -0.289, -0.816, 0},
                                                       {0.5, -0.289, -0.204, -0.791},
                                                       {0, 0.577, -0.816, 0},
                                                       {0, 0.577, -0.204, -0.791},
                                                       {0, 0, 0.612, -0.791}};
    std::vector<std::vector<double>> expected;
    for (const auto* part : {&half, &differences}) {
        for (const double sign : {1.0, -1.0}) {
            for (std::vector<double> run : *part) {
                for (double& value : run) {
                    value *= sign;
                }
                expected.push_back(run);
            }
        }
    }
    ExpectNear(Shell(4), expected, 0.0006);
}

TEST(Doehlert, RunsAreThoseOfTheExactLattice) {
    for (int count = 2; count <= 20; ++count) {
        ExpectNear(Shell(count), ToCoordinates(oracles::ShellInLattice(count, 0)), 3e-7);
    }
}

TEST(Doehlert, ShellIsUniform) {
    for (int count = 2; count <= 20; ++count) {
        EXPECT_THAT(ShellFaults(Shell(count)), IsEmpty()) << count;
    }
}

TEST(Doehlert, ShellCheckObjectsToOneFlippedCell) {
    for (int count = 2; count <= 20; ++count) {
        EXPECT_THAT(ShellFaults(WithFlippedCell(Shell(count), 2, 1)), Not(IsEmpty())) << count;
    }
}

TEST(Doehlert, EveryRunHasItsOpposite) {
    for (int count = 2; count <= 20; ++count) {
        const auto rows = RowsOf(Shell(count));
        const std::set<std::vector<float>> all(rows.begin(), rows.end());
        for (std::vector<float> run : rows) {
            std::transform(run.begin(), run.end(), run.begin(), [](float x) { return 0.0F - x; });
            EXPECT_EQ(all.count(run), 1U) << count;
        }
    }
}

TEST(Doehlert, FirstFactorHasFiveLevelsTheLastThreeOthersSeven) {
    for (int count = 2; count <= 10; ++count) {
        const NCDataMatrix<float> runs = Shell(count);
        for (int column = 1; column <= count; ++column) {
            const std::size_t expected = column == count ? 3U : column == 1 ? 5U : 7U;
            NCDataMatrix<float> withCenter = runs;
            withCenter.ConcatRows(NCDataMatrix<float>(1, count, 0.0F));
            EXPECT_EQ(LevelsOf(withCenter, column).size(), expected) << count << ' ' << column;
        }
    }
}

TEST(Doehlert, AFactorCanBeAddedToAFinishedDesign) {
    for (int count = 3; count <= 20; ++count) {
        std::set<std::vector<float>> withoutLast;
        for (std::vector<float> run : RowsOf(Shell(count))) {
            if (run.back() == 0.0F) {
                run.pop_back();
                withoutLast.insert(run);
            }
        }
        const auto smaller = RowsOf(Shell(count - 1));
        EXPECT_EQ(withoutLast, std::set<std::vector<float>>(smaller.begin(), smaller.end()))
            << count;
    }
}

TEST(Doehlert, QuadraticModelIsEstimableWithACenterPoint) {
    for (int count = 2; count <= 12; ++count) {
        NCDataMatrix<float> runs = Shell(count);
        runs.ConcatRows(NCDataMatrix<float>(1, count, 0.0F));
        const auto model = oracles::ModelMatrix(runs, count, oracles::QuadraticTerms);
        EXPECT_EQ(oracles::Rank(model), model[0].size()) << count;
    }
}

TEST(Doehlert, SquaresAreNotEstimableWithoutACenterPoint) {
    for (int count = 2; count <= 12; ++count) {
        const auto model = oracles::ModelMatrix(Shell(count), count, oracles::QuadraticTerms);
        EXPECT_EQ(oracles::Rank(model), model[0].size() - 1) << count;
    }
}

TEST(Doehlert, GrowthAgreesWithTheExactLattice) {
    for (int count = 2; count <= 7; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        for (const int centerPoints : {0, 1, 3}) {
            const Doehlert design = Design(factors, static_cast<unsigned>(centerPoints));
            const auto lattice = oracles::ShellInLattice(count, centerPoints);
            for (int row = 1; row <= design.GetDesignMatrix()->SizeRows(); ++row) {
                std::set<int> existing;
                const NCDataMatrix<float> added = design.GetNewPointsAround(row, existing);
                const oracles::Growth growth = oracles::GrowAround(lattice, row);
                EXPECT_EQ(existing, growth.existing) << count << ", row " << row;
                ExpectNear(added, ToCoordinates(growth.added), cTolerance);
            }
        }
    }
}

TEST(Doehlert, GrowthGoesOnFromAGrownDesign) {
    for (int count = 2; count <= 5; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        Doehlert design = Design(factors, 1);
        auto lattice = oracles::ShellInLattice(count, 1);
        const int shell = design.GetDesignMatrix()->SizeRows() - 1;
        for (const int row : {1, shell + 2, shell + 3}) {
            std::set<int> existing;
            const NCDataMatrix<float> added = design.GetNewPointsAround(row, existing);
            const oracles::Growth growth = oracles::GrowAround(lattice, row);
            EXPECT_EQ(existing, growth.existing) << count << ", row " << row;
            ExpectNear(added, ToCoordinates(growth.added), cTolerance);
            NCDataMatrix<float> grown = *design.GetDesignMatrix();
            grown.ConcatRows(added);
            design.SetDesignMatrix(grown);
            lattice.insert(lattice.end(), growth.added.begin(), growth.added.end());
        }
    }
}

TEST(Doehlert, GrowthAroundAPointOfTheHexagonFindsThreeNewPoints) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Doehlert design = Design(factors, 1);
    std::set<int> existing;
    const NCDataMatrix<float> added = design.GetNewPointsAround(1, existing);
    ExpectNear(added, {{2, 0}, {1.5, 0.8660254}, {1.5, -0.8660254}}, cTolerance);
    // Both neighbours on the hexagon, the centre, and the point itself.
    EXPECT_THAT(existing, ElementsAre(1, 2, 5, 7));
}

TEST(Doehlert, GrowthWithoutACenterPointFindsTheCenterNew) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    std::set<int> existing;
    const NCDataMatrix<float> added = Design(factors, 0).GetNewPointsAround(1, existing);
    ExpectNear(added, {{2, 0}, {1.5, 0.8660254}, {0, 0}, {1.5, -0.8660254}}, cTolerance);
    EXPECT_THAT(existing, ElementsAre(2, 5));
}

TEST(Doehlert, GrowthKeepsWhatTheSetHolds) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    std::set<int> existing{99};
    (void)Design(factors, 0).GetNewPointsAround(1, existing);
    EXPECT_THAT(existing, ElementsAre(2, 5, 99));
}

TEST(Doehlert, GrowthTakesReplicatesOnce) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options(Builder(), factors);
    options.SetReplicates(2);
    std::set<int> existing;
    EXPECT_EQ(Doehlert(factors, options).GetNewPointsAround(1, existing).SizeRows(), 3);
}

TEST(Doehlert, GrowthAroundNoRowIsRefused) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    std::set<int> existing;
    EXPECT_THROW((void)design.GetNewPointsAround(0, existing), InvalidOperationException);
    EXPECT_THROW((void)design.GetNewPointsAround(7, existing), InvalidOperationException);
    design.ClearDesignMatrix();
    EXPECT_THROW((void)design.GetNewPointsAround(1, existing), InvalidOperationException);
}

TEST(Doehlert, ExperimentsAreComparedWithOneRowOrASumOfTwo) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Doehlert design = Design(factors, 2);
    EXPECT_TRUE(design.IsExperimentEqual(7, 8, -1));
    EXPECT_FALSE(design.IsExperimentEqual(1, 2, 0));
    // (1, 0) = (0.5, 0.866) + (0.5, -0.866)
    EXPECT_TRUE(design.IsExperimentEqual(1, 2, 5));
    EXPECT_FALSE(design.IsExperimentEqual(1, 2, 6));
}

TEST(Doehlert, ComparisonToleranceFollowsTheLargerMagnitude) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    // Steps of 2^-23: 1.5 has the exponent 1, so up to 2^-22 is equal; 0.75 has 0, up to 2^-23.
    const float step = 1.1920928955078125e-7F;
    design.SetDesignMatrix({{1.5F},
                            {1.5F + 2 * step},
                            {1.5F + 3 * step},
                            {0.75F},
                            {0.75F + step},
                            {0.75F + 1.5F * step},
                            {0.0F},
                            {1e-9F}});
    EXPECT_TRUE(design.IsExperimentEqual(1, 2, -1));
    EXPECT_FALSE(design.IsExperimentEqual(1, 3, -1));
    EXPECT_TRUE(design.IsExperimentEqual(4, 5, -1));
    EXPECT_FALSE(design.IsExperimentEqual(4, 6, -1));
    EXPECT_FALSE(design.IsExperimentEqual(7, 8, -1));
}

TEST(Doehlert, ComparisonOfNoRowIsRefused) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Doehlert design = Design(factors, 0);
    EXPECT_THROW((void)design.IsExperimentEqual(0, 1, -1), InvalidOperationException);
    EXPECT_THROW((void)design.IsExperimentEqual(1, 7, -1), InvalidOperationException);
    EXPECT_THROW((void)design.IsExperimentEqual(1, 2, 7), InvalidOperationException);
}

TEST(Doehlert, WithoutNumbersExperimentAndRowAreTheSame) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Doehlert design = Design(factors, 0);
    EXPECT_EQ(design.GetExperimentNumber(4), 4);
    EXPECT_EQ(design.GetRow(99), 99);
}

TEST(Doehlert, ExperimentNumbersNameRows) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    design.SetExperimentNumbers({5, 3, 8});
    EXPECT_EQ(design.GetExperimentNumber(1), 5);
    EXPECT_EQ(design.GetExperimentNumber(3), 8);
    EXPECT_EQ(design.GetExperimentNumber(4), 0);
    EXPECT_EQ(design.GetExperimentNumber(0), 0);
    EXPECT_EQ(design.GetRow(8), 3);
}

TEST(Doehlert, UnknownExperimentIsIllegal) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    design.SetExperimentNumbers({5, 3, 8});
    try {
        (void)design.GetRow(4);
        FAIL() << "no exception";
    } catch (const Exception& error) {
        EXPECT_STREQ(error.what(), "Illegal experiment.");
    }
}

TEST(Doehlert, NewNumbersLeaveAClonesNumbers) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    design.SetExperimentNumbers({5, 3, 8});
    const auto clone = std::dynamic_pointer_cast<Doehlert>(design.Clone());
    design.SetExperimentNumbers({1});
    EXPECT_EQ(clone->GetRow(8), 3);
    EXPECT_EQ(clone->GetDesignMatrix(), design.GetDesignMatrix());
}

TEST(Doehlert, MovingLeavesTheNumbersOfTheSource) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    design.SetExperimentNumbers({5, 3, 8});
    const Doehlert moved(std::move(design));
    EXPECT_EQ(moved.GetRow(8), 3);
    EXPECT_EQ(design.GetRow(8), 3);  // NOLINT(bugprone-use-after-move): what is tested
}

TEST(Doehlert, SavedDesignComesBackBitForBit) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    Doehlert design = Design(factors, 2);
    design.SetExperimentNumbers({32, 1, 7});
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    const ConfigurationStore loaded = ConfigurationStore::FromText(store.ToText(), "test");
    const Doehlert again(factors, *loaded.OpenRoot());
    EXPECT_EQ(*again.GetDesignMatrix(), *design.GetDesignMatrix());
    EXPECT_EQ(again.GetExperimentNumber(3), 7);
    EXPECT_EQ(again.GetExperimentNumber(4), 0);
}

TEST(Doehlert, SavedFormHasMatrixAndNumbersUnderDesign) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 1);
    design.SetExperimentNumbers({4, 2});
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    const auto section = store.OpenRoot()->OpenSection("Design");
    const auto matrix = section->OpenSection("FMatrix");
    int size = 0;
    EXPECT_TRUE(matrix->ReadInt("NCols", &size));
    EXPECT_EQ(size, 2);
    EXPECT_TRUE(matrix->ReadInt("NRows", &size));
    EXPECT_EQ(size, 7);
    std::vector<float> row;
    EXPECT_TRUE(matrix->ReadFloatVector("R2", &row));
    EXPECT_THAT(row, ElementsAre(0.5F, 0.8660254F));
    std::vector<int> numbers;
    EXPECT_TRUE(section->OpenSection("Doehlert")->ReadIntVector("Experiments", &numbers));
    EXPECT_THAT(numbers, ElementsAre(4, 2));
}

TEST(Doehlert, DesignWithoutNumbersStaysWithoutThem) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    ConfigurationStore store;
    design.SetExperimentNumbers({4, 2});
    design.Save(store.OpenRoot().get());
    Design(factors, 0).Save(store.OpenRoot().get());
    EXPECT_TRUE(design.Load(store.OpenRoot().get()));
    EXPECT_EQ(design.GetExperimentNumber(3), 3);
}

TEST(Doehlert, AnEmptyListOfNumbersComesBack) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    design.SetExperimentNumbers({});
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    const Doehlert again(factors, *store.OpenRoot());
    EXPECT_EQ(again.GetExperimentNumber(1), 0);
}

TEST(Doehlert, LoadWithoutADesignChangesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    const ConfigurationStore store;
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), 6);
}

TEST(Doehlert, DesignWithoutAMatrixComesBackWithoutOne) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Doehlert design = Design(factors, 0);
    ConfigurationStore store;
    design.Save(store.OpenRoot().get());
    design.ClearDesignMatrix();
    design.Save(store.OpenRoot().get());
    const Doehlert again(factors, *store.OpenRoot());
    EXPECT_EQ(again.GetDesignMatrix(), nullptr);
}

TEST(Doehlert, IsValidFromTwoToTwentyFactors) {
    for (int count = 0; count <= 22; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        EXPECT_EQ(Builder().IsValid(factors, DesignOptions(Builder(), factors)),
                  count >= 2 && count <= 20)
            << count;
    }
}

TEST(Doehlert, NeedsRoomForOneCenterPoint) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    options.SetMaxRuns(12);
    EXPECT_FALSE(Builder().IsValid(factors, options));
    options.SetMaxRuns(13);
    EXPECT_TRUE(Builder().IsValid(factors, options));
}

TEST(Doehlert, RefusesOtherModelsAndFactors) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options(Builder(), factors);
    EXPECT_TRUE(Builder().IsValid(factors, options));
    EXPECT_FALSE(Builder().IsValid(TestFactors().Quantitatives(2).Qualitative(2), options));
    EXPECT_FALSE(Builder().IsValid(TestFactors().Quantitatives(2).MultilevelOf(3), options));
    EXPECT_FALSE(Builder().IsValid(TestFactors().Quantitatives(2).Formulation(), options));
    EXPECT_FALSE(
        Builder().IsValid(TestFactors().Quantitatives(2).Formulation().WithFiller(false), options));
    EXPECT_TRUE(
        Builder().IsValid(TestFactors().Quantitatives(2).Formulation().WithFiller(true), options));
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(Builder().IsValid(factors, options));
    options.SetModel(EModel::Quadratic);
    options.SetObjective(EObjective::Screening);
    EXPECT_FALSE(Builder().IsValid(factors, options));
}

TEST(Doehlert, RecommendedForPlatesByItsRuns) {
    const TestFactors two = TestFactors().Quantitatives(2);
    const TestFactors three = TestFactors().Quantitatives(3);
    DesignOptions options;
    options.SetMaxRuns(96);
    options.SetRuns(12);
    EXPECT_TRUE(Builder().IsREDMUPRecommended(two, options));
    EXPECT_FALSE(Builder().IsREDMUPRecommended(three, options));
    options.SetRuns(13);
    EXPECT_TRUE(Builder().IsREDMUPRecommended(three, options));
}
