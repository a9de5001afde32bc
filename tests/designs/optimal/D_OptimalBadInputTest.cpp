#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

#include "designs/optimal/D_Optimal.h"
#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"
#include "tests/designs/optimal/D_OptimalCases.h"
#include "tests/support/SilentDisplay.h"
#include "tests/support/ValidatingScope.h"

namespace {

using D_OptimalCases::Builder;
using D_OptimalCases::cTriangle;
using D_OptimalCases::FamilyOf;
using D_OptimalCases::RefusalOf;
using D_OptimalCases::Request;
using D_OptimalCases::Search;
using D_OptimalCases::Table;
using D_OptimalCases::WithStoredCandidates;

constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float cInfinity = std::numeric_limits<float>::infinity();
constexpr float cMissing = -99.0F;

const std::string cSingular =
    "Matrix is singular. The current candidate set might not be rich enough to support your model "
    "or the problem.";
const std::string cNotRichEnough =
    "No proper design could be generated. The current candidate set is not rich enough or the "
    "model is too complex.";

DesignOptions LinearRequest(const Factors& factors, unsigned runs) {
    return Request(factors, EObjective::Screening, runs);
}

// --- Numbers ----------------------------------------------------------------------------------

TEST(DOptimalBadInput, CandidatesWithoutANumberAreNeverPicked) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    for (const float hole : {cNaN, cInfinity, -cInfinity, cMissing}) {
        Table rows = cTriangle;
        rows.ConcatRows(Table{{1, 1}, {-1, 1}});
        rows(2, 1, hole);
        const auto design = Search(factors, WithStoredCandidates(LinearRequest(factors, 6), rows));
        for (const auto& result : design->GetResults()) {
            for (const int row : result.rows) {
                EXPECT_NE(row, 2) << hole;
            }
        }
    }
}

TEST(DOptimalBadInput, CandidatesWithoutAnyNumberAreSingular) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    for (const float hole : {cNaN, cInfinity, cMissing}) {
        EXPECT_EQ(
            RefusalOf(factors, WithStoredCandidates(LinearRequest(factors, 6), Table(6, 2, hole))),
            cSingular)
            << hole;
    }
}

// A range of 1 with a candidate a thousand million times as far out: no design is of sound
// condition.
TEST(DOptimalBadInput, ACandidateFarOutsideTheRangesIsRefused) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    Table rows = cTriangle;
    rows(2, 1, 1e10F);
    EXPECT_EQ(RefusalOf(factors, WithStoredCandidates(LinearRequest(factors, 6), rows)), cSingular);
    rows(2, 1, 1e6F);
    EXPECT_EQ(RefusalOf(factors, WithStoredCandidates(LinearRequest(factors, 6), rows)),
              cNotRichEnough);
}

TEST(DOptimalBadInput, InclusionsWithoutANumberAreToBeEdited) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    for (const float hole : {cNaN, cInfinity, cMissing}) {
        DesignOptions options = LinearRequest(factors, 8);
        FamilyOf(options).SetInclusions(Table{{hole, 0.5F}}, factors);
        EXPECT_EQ(RefusalOf(factors, options), "Edit your inclusions and try again.") << hole;
    }
}

TEST(DOptimalBadInput, AFactorWithoutALimitHasNoCandidates) {
    for (const float limit : {cNaN, cInfinity}) {
        const TestFactors factors = TestFactors().Quantitative(0, limit).Quantitative();
        EXPECT_EQ(RefusalOf(factors, LinearRequest(factors, 8)),
                  "The candidate set could not be generated: No design for the problem. Internal "
                  "D-Optimal error number 6003.");
    }
}

// --- Models that no candidates can tell apart -------------------------------------------------

TEST(DOptimalBadInput, AFactorWithoutARangeIsSingular) {
    const TestFactors factors = TestFactors().Quantitative(7, 7).Quantitative();
    EXPECT_EQ(RefusalOf(factors, LinearRequest(factors, 8)), cSingular);
}

TEST(DOptimalBadInput, ASquareOfTwoLevelsIsSingular) {
    const TestFactors factors = TestFactors().Quantitatives(2).MultilevelOf(2);
    EXPECT_EQ(RefusalOf(factors, Request(factors, EObjective::Optimization, 16)), cSingular);
}

TEST(DOptimalBadInput, AStoredSetThatIsTooPoorIsSingular) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(
        RefusalOf(factors,
                  WithStoredCandidates(Request(factors, EObjective::Optimization, 12), cTriangle)),
        cSingular);
}

// --- Run counts -------------------------------------------------------------------------------

TEST(DOptimalBadInput, NoRunsAreToldByTheirNumber) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    EXPECT_EQ(RefusalOf(factors, LinearRequest(factors, 0)),
              "No design for the problem. Internal D-Optimal error number 6007.");
}

TEST(DOptimalBadInput, ANegativeRunRangeLeavesNoRunCount) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options = LinearRequest(factors, 8);
    FamilyOf(options).SetRunRange(-1);
    EXPECT_EQ(RefusalOf(factors, options), cNotRichEnough);
}

TEST(DOptimalBadInput, InclusionsThatFillTheDesignLeaveNothingToSearch) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    for (const int rows : {8, 9}) {
        DesignOptions options = LinearRequest(factors, 8);
        FamilyOf(options).SetInclusions(Table(rows, 2, 0.5F), factors);
        EXPECT_EQ(RefusalOf(factors, options), cNotRichEnough) << rows;
    }
}

// --- Conditions that rounding cannot carry ----------------------------------------------------

// At 1 the factor from 9 to 10 is at -17 in coded units, and its square at 289: after many updates
// the determinant seems to rise for ever, though the designs come again and again.
TEST(DOptimalBadInput, InclusionsFarOutsideTheRangesDoNotKeepTheSearchForEver) {
    const ValidatingScope validating;
    const TestFactors factors =
        TestFactors().Quantitative(9, 10).Quantitative(3, 22).Quantitative(0, 15).Qualitative(5);
    for (const float value : {1.0F, 0.3F, -45.0F, -500.0F}) {
        DesignOptions options = Request(factors, EObjective::Optimization, 55);
        options.SetBlocks(4);
        FamilyOf(options).SetRepetitions(1);
        FamilyOf(options).SetInclusions(Table(2, 10, value), factors);
        try {
            EXPECT_EQ(Search(factors, options)->GetDesignMatrix()->SizeRows(), 55) << value;
        } catch (const Exception& error) {
            EXPECT_TRUE(error.what() == cSingular || error.what() == cNotRichEnough)
                << value << ": " << error.what();
        }
    }
}

// --- Terms and balance ------------------------------------------------------------------------

TEST(DOptimalBadInput, TermsThatHaveNoColumnAddNothing) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options = LinearRequest(factors, 8);
    FamilyOf(options).SetModel({{}, {0}, {1}});
    const auto plain = Search(factors, options);
    // Factors that are not there, a block that is not there, and a product of four.
    for (const std::vector<int>& term :
         std::vector<std::vector<int>>{{9}, {0, 9}, {-5, 0}, {2}, {0, 2}, {0, 0, 1, 1}}) {
        FamilyOf(options).SetModel({{}, {0}, {1}, term});
        const auto design = Search(factors, options);
        EXPECT_EQ(*design->GetDesignMatrix(), *plain->GetDesignMatrix()) << term.back();
        EXPECT_EQ(design->GetResults()[0].NormLogDet, plain->GetResults()[0].NormLogDet);
    }
}

TEST(DOptimalBadInput, ABalanceFactorWithoutLevelsIsNotAskedToBalance) {
    const TestFactors factors = TestFactors().Quantitatives(2).MultilevelOf(3);
    for (const int factor : {0, 2, 17, std::numeric_limits<int>::max()}) {
        DesignOptions options = LinearRequest(factors, 10);
        FamilyOf(options).SetBalanceOnFactor(factor);
        FamilyOf(options).SetOnlyAllowBalanced(true);
        EXPECT_EQ(Search(factors, options)->GetResults().size(), 5U) << factor;
    }
}

// --- Stopping ---------------------------------------------------------------------------------

/// A small search with a mixture, levels, inclusions and figures: it passes through every phase.
struct StoppedSearch {
    StoppedSearch() {
        factors.Quantitative().Qualitative(2).Formulation().Formulation().Formulation();
        options = std::make_unique<DesignOptions>(LinearRequest(factors, 16));
        FamilyOf(*options).SetRepetitions(1);
    }
    TestFactors factors;
    std::unique_ptr<DesignOptions> options;
};

TEST(DOptimalStop, ABreakAtAnyQuestionEndsTheBuild) {
    const StoppedSearch search;
    int questions = 1;
    for (bool stopped = true; stopped; ++questions) {
        const SilentDisplay display(questions);
        stopped = false;
        try {
            (void)Builder().Build(search.factors, *search.options);
        } catch (const CancelException&) {
            stopped = true;
        }
        ASSERT_LT(questions, 5000);
    }
    EXPECT_GT(questions, 20);
}

/// Sets a flag, as another thread would, at a moment counted in calls of the display.
class FlagSetter : public NCProgressDisplay {
  public:
    FlagSetter(bool& flag, int calls) : flag_(flag), left_(calls) {}
    void Begin(const std::string& /*title*/, const std::string& /*text*/, bool /*c*/) override {
        Count();
    }
    void Show(double /*share*/, const std::string& /*text*/) override { Count(); }
    void Hide() override {}
    void End() override {}
    bool IsBreakPressed() const override {
        Count();
        return false;
    }

  private:
    void Count() const { flag_ = flag_ || --left_ == 0; }
    bool& flag_;
    mutable int left_;
};

TEST(DOptimalStop, TheFlagEndsTheBuildWhereverItIsSet) {
    const StoppedSearch search;
    int calls = 1;
    for (bool stopped = true; stopped; ++calls) {
        bool cancel = false;
        NCProgress::SetDisplay(std::make_shared<FlagSetter>(cancel, calls));
        stopped = false;
        try {
            (void)Builder().Build(search.factors, *search.options, &cancel);
        } catch (const CancelException&) {
            stopped = true;
        }
        EXPECT_EQ(stopped, cancel) << "call " << calls;
        ASSERT_LT(calls, 5000);
    }
    NCProgress::SetDisplay(nullptr);
    EXPECT_GT(calls, 20);
}

TEST(DOptimalBadInput, RunRangeBeyondTheMostRunsIsRefusedBeforeTheSearch) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    DesignOptions options = LinearRequest(factors, 999'999);
    options.SetMaxRuns(2'000'000);
    options.SetCenterPoints(0);
    FamilyOf(options).SetRunRange(2);
    EXPECT_EQ(RefusalOf(factors, options),
              "The design would have 1000001 runs in each of 1 copies. It may have at most 1000000 "
              "runs in all.");
}

}  // namespace
