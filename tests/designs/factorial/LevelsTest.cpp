#include "designs/factorial/Levels.h"

#include "foundation/utl/Exceptions.h"
#include "tests/support/BuiltDesign.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto cType = EDesign::Levels;

bool IsValidFor(const Factors& factors, EObjective::Type objective, EModel::Type model) {
    DesignOptions options(built::BuilderOf(cType), factors);
    options.SetObjective(objective);
    options.SetModel(model);
    return built::BuilderOf(cType).IsValid(factors, options);
}

std::vector<unsigned> LegalRuns(const Factors& factors, unsigned maxRuns) {
    DesignOptions options(built::BuilderOf(cType), factors);
    options.SetMaxRuns(maxRuns);
    return built::BuilderOf(cType).GetLegalRuns(factors, options);
}

TEST(Levels, QuantitativeFactorHasFiveEvenRunsAndThreeCentrePointsByDefault) {
    EXPECT_THAT(built::ColumnOf(built::MatrixOf(cType, TestFactors().Quantitative()), 1),
                ElementsAre(-1, -0.5, 0, 0.5, 1, 0, 0, 0));
}

TEST(Levels, QuantitativeRunsSpanTheWholeRange) {
    const TestFactors factors = TestFactors().Quantitative();
    for (unsigned runs = 2; runs <= 100; ++runs) {
        const auto column = built::ColumnOf(
            built::MatrixOf(cType, factors, built::CoreOptions(cType, factors, runs)), 1);
        ASSERT_EQ(column.size(), runs);
        EXPECT_EQ(column.front(), -1) << runs << " runs";
        EXPECT_NEAR(column.back(), 1, 1e-6)
            << runs << " runs";  // a few roundings of 2 / (runs - 1)
    }
}

TEST(Levels, MultilevelFactorStandsAtEachLevelAndTheMiddleOne) {
    // The middle of four levels, rounded up, is the second: 66.
    EXPECT_THAT(built::ColumnOf(built::MatrixOf(cType, TestFactors().MultilevelOf(4)), 1),
                ElementsAre(65, 66, 67, 68, 66, 66, 66));
}

TEST(Levels, QualitativeFactorStandsAtEachLevelAndTheFirstOne) {
    EXPECT_THAT(built::ColumnOf(built::MatrixOf(cType, TestFactors().Qualitative(3)), 1),
                ElementsAre(65, 66, 67, 65, 65, 65));
}

TEST(Levels, ReplicatesCopyRunsAndCentrePoints) {
    const TestFactors factors = TestFactors().Qualitative(2);
    DesignOptions options = built::CoreOptions(cType, factors);
    options.SetCenterPoints(1);
    options.SetReplicates(1);
    EXPECT_THAT(built::ColumnOf(built::MatrixOf(cType, factors, options), 1),
                ElementsAre(65, 66, 65, 65, 66, 65));
}

TEST(Levels, ReplicatedRunsStandBeforeTheCentrePoints) {
    const TestFactors factors = TestFactors().Quantitative();
    DesignOptions options = built::CoreOptions(cType, factors, 2);
    options.SetReplicatedRuns(2);
    options.SetCenterPoints(1);
    const auto column = built::ColumnOf(built::MatrixOf(cType, factors, options), 1);
    ASSERT_EQ(column.size(), 5);
    EXPECT_EQ(column[2] * column[3], -1);  // both runs once more, in some order
    EXPECT_EQ(column[4], 0);
}

TEST(Levels, MoreRunsThanLevelsStayBlank) {
    const TestFactors factors = TestFactors().MultilevelOf(3);
    EXPECT_THAT(
        built::ColumnOf(built::MatrixOf(cType, factors, built::CoreOptions(cType, factors, 5)), 1),
        ElementsAre(65, 66, 67, -99, -99));
}

TEST(Levels, FewerRunsThanLevelsTakeTheFirstLevels) {
    const TestFactors factors = TestFactors().Qualitative(5);
    EXPECT_THAT(
        built::ColumnOf(built::MatrixOf(cType, factors, built::CoreOptions(cType, factors, 2)), 1),
        ElementsAre(65, 66));
}

TEST(Levels, ASingleRunIsANumber) {
    const TestFactors factors = TestFactors().Quantitative();
    EXPECT_THAT(
        built::ColumnOf(built::MatrixOf(cType, factors, built::CoreOptions(cType, factors, 1)), 1),
        ElementsAre(-1));
}

TEST(Levels, TooManyReplicatesRaise) {
    const TestFactors factors = TestFactors().Quantitative();
    DesignOptions options(built::BuilderOf(cType), factors);
    options.SetReplicates(4'000'000'000U);
    EXPECT_THROW(static_cast<void>(built::BuilderOf(cType).Build(factors, options)), Exception);
}

TEST(Levels, LegalRunsOfAQuantitativeFactorReachTheLimit) {
    EXPECT_THAT(LegalRuns(TestFactors().Quantitative(), 4), ElementsAre(2, 3, 4));
}

TEST(Levels, OneRunIsNeverLegal) {
    EXPECT_THAT(LegalRuns(TestFactors().Quantitative(), 1), IsEmpty());
}

TEST(Levels, LegalRunsEndWhereNoDesignCouldBeBuilt) {
    EXPECT_EQ(LegalRuns(TestFactors().Quantitative(), 4'000'000'000U).back(), 1'000'000);
}

TEST(Levels, LegalRunsOfALevelFactorAreItsLevels) {
    EXPECT_THAT(LegalRuns(TestFactors().Qualitative(6), 6), ElementsAre(6));
    EXPECT_THAT(LegalRuns(TestFactors().MultilevelOf(6), 5), IsEmpty());
}

TEST(Levels, NoFactorsAndFormulationFactorsHaveNoRuns) {
    const TestFactors none;
    const TestFactors formulation = TestFactors().Formulation();
    EXPECT_EQ(built::BuilderOf(cType).GetDefaultRuns(none, EObjective::Screening), 0);
    EXPECT_EQ(built::BuilderOf(cType).GetDefaultRuns(formulation, EObjective::Screening), 0);
    EXPECT_THAT(LegalRuns(none, 12000), IsEmpty());
    EXPECT_THAT(LegalRuns(formulation, 12000), IsEmpty());
}

TEST(Levels, ExactlyOneFactorIsValid) {
    EXPECT_TRUE(IsValidFor(TestFactors().Quantitative(), EObjective::Screening, EModel::Linear));
    EXPECT_FALSE(IsValidFor(TestFactors().Quantitatives(2), EObjective::Screening, EModel::Linear));
    EXPECT_FALSE(IsValidFor(TestFactors(), EObjective::Screening, EModel::Linear));
}

TEST(Levels, InteractionModelIsInvalid) {
    EXPECT_FALSE(
        IsValidFor(TestFactors().Quantitative(), EObjective::Screening, EModel::Interaction));
}

TEST(Levels, TwoLevelsShowNoCurve) {
    EXPECT_FALSE(
        IsValidFor(TestFactors().MultilevelOf(2), EObjective::Optimization, EModel::Quadratic));
    EXPECT_TRUE(
        IsValidFor(TestFactors().MultilevelOf(3), EObjective::Optimization, EModel::Quadratic));
}

TEST(Levels, QualitativeFactorHasNoCurve) {
    const TestFactors factors = TestFactors().Qualitative(3);
    EXPECT_TRUE(IsValidFor(factors, EObjective::Screening, EModel::Linear));
    EXPECT_FALSE(IsValidFor(factors, EObjective::SystemCharacterization, EModel::Linear));
    EXPECT_FALSE(IsValidFor(factors, EObjective::Screening, EModel::Quadratic));
    EXPECT_FALSE(IsValidFor(factors, EObjective::Screening, EModel::Cubic));
}

TEST(Levels, FillerIsNotLookedAt) {
    EXPECT_TRUE(IsValidFor(
        TestFactors().Quantitative().WithFiller(false), EObjective::Screening, EModel::Linear));
}

TEST(Levels, MixtureFactorIsInvalid) {
    EXPECT_FALSE(IsValidFor(TestFactors().Formulation(), EObjective::Screening, EModel::Linear));
}

TEST(Levels, ConstraintsAreInvalid) {
    const TestFactors factors = TestFactors().Quantitative();
    DesignOptions options(built::BuilderOf(cType), factors);
    built::Constrain(options, factors);
    EXPECT_FALSE(built::BuilderOf(cType).IsValid(factors, options));
    EXPECT_EQ(built::BuilderOf(cType).Build(factors, options), nullptr);
}

TEST(Levels, RunLimitMustHoldTheLevels) {
    const TestFactors factors = TestFactors().Qualitative(4);
    DesignOptions options(built::BuilderOf(cType), factors);
    options.SetMaxRuns(3);
    EXPECT_FALSE(built::BuilderOf(cType).IsValid(factors, options));
    options.SetMaxRuns(4);
    EXPECT_TRUE(built::BuilderOf(cType).IsValid(factors, options));
}

TEST(Levels, DefaultModelFollowsTheObjective) {
    const TestFactors factors = TestFactors().Quantitative();
    const DesignBuilder& builder = built::BuilderOf(cType);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Screening), EModel::Linear);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::RobustnessVerification), EModel::Linear);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Optimization), EModel::Quadratic);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::SystemCharacterization),
              EModel::Quadratic);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::SplitObjective), EModel::None);
}

TEST(Levels, PriorityIsTheSameForEveryCount) {
    EXPECT_EQ(built::BuilderOf(cType).GetPriority(TestFactors().Quantitative()), 23);
    EXPECT_EQ(built::BuilderOf(cType).GetPriority(TestFactors().Qualitative(60)), 23);
}

}  // namespace
