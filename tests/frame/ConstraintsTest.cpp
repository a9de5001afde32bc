#include "frame/Constraints.h"

#include <functional>
#include <string>

#include "foundation/utl/Exceptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/support/TestFactors.h"

namespace {

using NCDOE::Constraint;
using NCDOE::Constraints;
using Settings = NCDataVector<float>;

// x0 + x1 against 3.
Constraint SumOfTwo(bool greaterOrEqual) {
    return {{{0, 1.0}, {1, 1.0}}, 3.0, greaterOrEqual};
}

std::string MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.what();
    }
    return "no exception";
}

TEST(Constraint, DefaultIsAtLeastZeroOverNoTerms) {
    const Constraint constraint;
    EXPECT_TRUE(constraint.terms.empty());
    EXPECT_EQ(constraint.value, 0.0);
    EXPECT_TRUE(constraint.greaterOrEqual);
    EXPECT_FALSE(constraint.IsConstrained(Settings{1, 2}));
}

TEST(Constraint, AtLeastExcludesSumsBelowTheBoundOnly) {
    EXPECT_FALSE(SumOfTwo(true).IsConstrained(Settings{1, 2}));
    EXPECT_TRUE(SumOfTwo(true).IsConstrained(Settings{1, 1.9F}));
    EXPECT_FALSE(SumOfTwo(true).IsConstrained(Settings{2, 2}));
}

TEST(Constraint, AtMostExcludesSumsAboveTheBoundOnly) {
    EXPECT_TRUE(SumOfTwo(false).IsConstrained(Settings{2, 2}));
    EXPECT_FALSE(SumOfTwo(false).IsConstrained(Settings{1, 2}));
    EXPECT_FALSE(SumOfTwo(false).IsConstrained(Settings{1, 1}));
}

TEST(Constraint, MissingValueCountsAsExcluded) {
    EXPECT_TRUE(SumOfTwo(true).IsConstrained(Settings{-99, 4}));
    EXPECT_TRUE(SumOfTwo(false).IsConstrained(Settings{-99, 4}));
}

TEST(Constraint, MissingValueOfAnotherFactorDoesNotCount) {
    EXPECT_FALSE(SumOfTwo(true).IsConstrained(Settings{1, 2, -99}));
}

TEST(Constraint, CoefficientsWeighTheirOwnFactor) {
    const Constraint constraint{{{2, 2.0}, {0, -1.0}}, 5.0, true};
    EXPECT_FALSE(constraint.IsConstrained(Settings{1, 100, 3}));
    EXPECT_TRUE(constraint.IsConstrained(Settings{2, 100, 3}));
}

TEST(Constraint, SumsAreFormedInDouble) {
    // In float 16777216 + 1 is 16777216.
    const Constraint constraint{{{0, 1.0}, {1, 1.0}}, 16777217.0, true};
    EXPECT_FALSE(constraint.IsConstrained(Settings{16777216.0F, 1}));
}

TEST(Constraint, FactorOutsideTheRunIsTold) {
    for (const int factor : {-1, 2, 100}) {
        const Constraint constraint{{{factor, 1.0}}, 0.0, true};
        EXPECT_EQ(MessageOf([&] {
                      (void)constraint.IsConstrained(Settings{1, 2});
                  }),
                  "Constraint is out of bounds.")
            << factor;
    }
}

TEST(Constraint, MissingValueInFrontEndsTheWalkBeforeAFactorOutsideTheRun) {
    const Constraint constraint{{{0, 1.0}, {5, 1.0}}, 0.0, true};
    EXPECT_TRUE(constraint.IsConstrained(Settings{-99, 2}));
}

TEST(Constraints, NoneExcludeNothing) {
    EXPECT_TRUE(Constraints().IsEmpty());
    EXPECT_FALSE(Constraints().IsConstrained(Settings{-99}));
}

TEST(Constraints, OneBrokenInequalityExcludesTheRun) {
    const Constraints constraints({SumOfTwo(true), {{{0, 1.0}}, 1.5, false}});
    EXPECT_FALSE(constraints.IsConstrained(Settings{1.5F, 2}));
    EXPECT_TRUE(constraints.IsConstrained(Settings{2, 2}));
    EXPECT_TRUE(constraints.IsConstrained(Settings{1, 1}));
}

TEST(Constraints, RowsThatBreakNoneAreCounted) {
    EXPECT_EQ(Constraints({SumOfTwo(true)}).NumOK({{1, 2}, {1, 1}, {4, 4}}), 2U);
}

TEST(Constraints, NoRowsCountZero) {
    EXPECT_EQ(Constraints({SumOfTwo(true)}).NumOK(NCDataMatrix<float>()), 0U);
}

TEST(Constraints, WithoutInequalitiesAllRowsCount) {
    EXPECT_EQ(Constraints().NumOK({{1, 2}, {-99, 1}, {4, 4}}), 3U);
}

TestFactors QuantitativeFormulationMultilevel() {
    return TestFactors().Quantitative().Quantitative().Formulation().MultilevelOf(3).Qualitative(2);
}

Constraints Over(std::vector<int> factors) {
    Constraint constraint;
    for (const int factor : factors) {
        constraint.terms.push_back({factor, 1.0});
    }
    return Constraints({constraint});
}

std::string MessageOfSet(const Constraints& constraints) {
    DesignSpecificOptions options;
    return MessageOf(
        [&] { options.SetConstraints(constraints, QuantitativeFormulationMultilevel()); });
}

TEST(SetConstraints, StoresInequalitiesOverOneKindOfFactor) {
    DesignSpecificOptions options;
    options.SetConstraints(Over({0, 1}), QuantitativeFormulationMultilevel());
    EXPECT_EQ(options.GetConstraints(), Over({0, 1}));
    options.SetConstraints(Over({2}), QuantitativeFormulationMultilevel());
    EXPECT_EQ(options.GetConstraints(), Over({2}));
}

TEST(SetConstraints, EveryInequalityHasAKindOfItsOwn) {
    const Constraints both({Over({0, 1}).GetConstraints()[0], Over({2}).GetConstraints()[0]});
    EXPECT_EQ(MessageOfSet(both), "no exception");
}

TEST(SetConstraints, EmptyListReplacesTheOldOne) {
    DesignSpecificOptions options;
    options.SetConstraints(Over({0}), QuantitativeFormulationMultilevel());
    options.SetConstraints(Constraints(), TestFactors());
    EXPECT_TRUE(options.GetConstraints().IsEmpty());
}

TEST(SetConstraints, IndexOutsideTheFactorsIsTold) {
    EXPECT_EQ(MessageOfSet(Over({-1})), "Constraint is out of bounds.");
    EXPECT_EQ(MessageOfSet(Over({6})), "Constraint is out of bounds.");
    EXPECT_EQ(MessageOfSet(Over({0, 6})), "Constraint is out of bounds.");
}

TEST(SetConstraints, LevelFactorIsTold) {
    for (const int factor : {3, 4}) {
        EXPECT_EQ(MessageOfSet(Over({factor})),
                  "Constraints are only for quantitative and mixture factors.")
            << factor;
    }
}

TEST(SetConstraints, MixedKindsAreTold) {
    for (const std::vector<int>& factors : {std::vector<int>{0, 2}, {2, 0}, {0, 1, 3}}) {
        EXPECT_EQ(MessageOfSet(Over(factors)),
                  "Constraints should not mix quantitative and mixture factors.")
            << ::testing::PrintToString(factors);
    }
}

// Answers as the last of its factors for the index behind them.
class FactorsWithOneBehind : public TestFactors {
  public:
    CEType::EType GetFactorType(int factor) const override {
        return factor == 2 ? CEType::Quantitative : TestFactors::GetFactorType(factor);
    }
};

TEST(SetConstraints, IndexEqualToTheFactorCountIsLeftToTheFactors) {
    // A list that knows no type there refuses by the type, not by the range.
    EXPECT_EQ(MessageOfSet(Over({5})),
              "Constraints are only for quantitative and mixture factors.");
    FactorsWithOneBehind factors;
    factors.Quantitatives(2);
    DesignSpecificOptions options;
    options.SetConstraints(Over({2}), factors);
    EXPECT_EQ(options.GetConstraints(), Over({2}));
    EXPECT_EQ(MessageOf([&] {
                  (void)options.GetConstraints().IsConstrained(Settings{1, 2});
              }),
              "Constraint is out of bounds.");
}

TEST(SetConstraints, RefusedListLeavesTheOldOne) {
    DesignSpecificOptions options;
    const TestFactors factors = QuantitativeFormulationMultilevel();
    options.SetConstraints(Over({0}), factors);
    const Constraints refused({Over({1}).GetConstraints()[0], Over({3}).GetConstraints()[0]});
    EXPECT_THROW(options.SetConstraints(refused, factors), Exception);
    EXPECT_EQ(options.GetConstraints(), Over({0}));
}

}  // namespace
