#include "designs/optimal/GenerateCandidateset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "designs/optimal/DOptGen.h"
#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/CandidateCases.h"

namespace {

using CandidateCases::AtLeast;
using CandidateCases::AtMost;
using CandidateCases::Candidates;
using CandidateCases::Generate;
using CandidateCases::MakeOptions;
using CandidateCases::MessageOf;
using CandidateCases::Request;
using DOpt::NumData;

TEST(GenerateCandidateset, AnImpossibleConstraintIsInconsistent) {
    Request request;
    request.constraints = {AtLeast({{0, 1}, {1, 1}}, 2.5)};
    EXPECT_EQ(MessageOf(TestFactors().Quantitatives(2), request),
              "The candidate set could not be generated: The constraints are inconsistent.");
}

TEST(GenerateCandidateset, AConstraintWithoutCoefficientsHoldsNowhereOrChangesNothing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Request request;
    const Candidates free = Generate(factors, request);
    request.constraints = {AtMost({{0, 0}}, 0), AtMost({{0, 1}, {0, -1}}, 0.5)};
    EXPECT_EQ(Generate(factors, request).rows, free.rows);
    for (const NCDOE::Constraint& impossible :
         {AtMost({{0, 0}}, -0.25), AtLeast({{1, 2}, {1, -2}}, 0.25)}) {
        request.constraints = {impossible};
        EXPECT_EQ(MessageOf(factors, request),
                  "The candidate set could not be generated: The constraints are inconsistent.");
    }
}

TEST(GenerateCandidateset, AnEqualityIsInconsistent) {
    Request request;
    request.constraints = {AtLeast({{0, 1}, {1, 1}}, 0.5), AtMost({{0, 1}, {1, 1}}, 0.5)};
    EXPECT_EQ(MessageOf(TestFactors().Quantitatives(2), request),
              "The candidate set could not be generated: The constraints are inconsistent.");
}

TEST(GenerateCandidateset, AFixedMixtureComponentIsInconsistent) {
    EXPECT_EQ(
        MessageOf(TestFactors().Formulation(0.2F, 0.2F).Formulation(0, 1).Formulation(0, 1), {}),
        "The candidate set could not be generated: The constraints are inconsistent.");
}

TEST(GenerateCandidateset, ALimitCountsCells) {
    Request request;
    request.limit = 9;
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(MessageOf(factors, request),
              "The candidate set could not be generated: The candidate set will exceed the limit "
              "of runs.");
    request.limit = 10;
    EXPECT_EQ(Generate(factors, request).rows.SizeRows(), 5);
}

TEST(GenerateCandidateset, TheLimitHoldsForLevelsAndForCrossedBlocks) {
    Request request;
    request.limit = 10;
    for (const TestFactors& factors : {TestFactors().MultilevelOf(11),
                                       TestFactors().Quantitative().Formulation().Formulation(),
                                       TestFactors().Quantitative().MultilevelOf(2)}) {
        EXPECT_NE(MessageOf(factors, request).find("exceed the limit of runs"), std::string::npos);
    }
}

// At most two of 24 shares each: C(24, 12), some 2.7 million vertices, of which a limit lets no
// more be made than it and a million cells hold.
TEST(GenerateCandidateset, ARegionFarAboveTheLimitIsNotCutToItsEnd) {
    TestFactors factors;
    for (int i = 0; i < 24; ++i) {
        factors.Formulation(0, 2.0F / 24);
    }
    Request request;
    request.limit = 10;
    EXPECT_NE(MessageOf(factors, request).find("Too many vertices"), std::string::npos);
}

TEST(GenerateCandidateset, NoFactorsAreRefused) {
    EXPECT_EQ(MessageOf(TestFactors(), {}), "The candidate set could not be generated.");
}

TEST(GenerateCandidateset, AFactorWithoutLevelsHasNoRuns) {
    EXPECT_EQ(MessageOf(TestFactors().Multilevel({}), {}),
              "The candidate set could not be generated.");
}

TEST(GenerateCandidateset, NoModelForProcessFactorsIsRefused) {
    Request request;
    request.process = EModel::None;
    EXPECT_EQ(MessageOf(TestFactors().Quantitatives(2), request),
              "The candidate set could not be generated: No design for the problem. Internal "
              "D-Optimal error number 6003.");
}

TEST(GenerateCandidateset, FactorsWithoutARangeAreRefused) {
    const TestFactors factors = TestFactors().Quantitative().Other(CEType::Time, {1, 2}, 2);
    EXPECT_NE(MessageOf(factors, {}).find("6003"), std::string::npos);
}

TEST(GenerateCandidateset, MissingLimitsAreRefused) {
    EXPECT_NE(MessageOf(TestFactors().Quantitative(0, std::nanf("")), {}).find("6003"),
              std::string::npos);
}

TEST(GenerateCandidateset, TooManyLevelCombinationsAreRefused) {
    TestFactors factors;
    for (int i = 0; i < 4; ++i) {
        factors.Qualitative(216);  // 216^4 = 2,176,782,336 = 0x81bf1000
    }
    EXPECT_NE(MessageOf(factors, {}).find("Too many vertices"), std::string::npos);
}

TEST(GenerateCandidateset, AFailedCallLeavesTheCountsAlone) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Request request;
    request.limit = 1;
    NumData counts;
    EXPECT_THROW(static_cast<void>(DOpt::GenerateCandidateset(
                     nullptr, factors, MakeOptions(factors, request), false, &counts, nullptr, 1)),
                 Exception);
    EXPECT_EQ(counts, NumData());
}

TEST(GenerateCandidateset, AnEarlierResultNeverStandsForAFailedOne) {
    DOptGen generator;
    const TestFactors good = TestFactors().Quantitatives(2);
    static_cast<void>(DOpt::GenerateCandidateset(
        &generator, good, MakeOptions(good, {}), false, nullptr, nullptr, 0));
    const TestFactors empty = TestFactors().Multilevel({});
    EXPECT_THROW(static_cast<void>(DOpt::GenerateCandidateset(
                     &generator, empty, MakeOptions(empty, {}), false, nullptr, nullptr, 0)),
                 Exception);
}

TEST(GenerateCandidateset, FactorsBeyondTheFractionsAreRefused) {
    EXPECT_NE(MessageOf(TestFactors().Quantitatives(33), {}).find("6003"), std::string::npos);
}

TEST(GenerateCandidateset, ASetCancelFlagStopsAtOnce) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const bool cancel = true;
    EXPECT_THROW(static_cast<void>(DOpt::GenerateCandidateset(
                     nullptr, factors, MakeOptions(factors, {}), false, nullptr, &cancel, 0)),
                 CancelException);
}

}  // namespace
