#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <typeinfo>
#include <vector>

#include "tests/support/CompositeRequest.h"
#include "tests/support/SecondOrder.h"

namespace {

using Matrix = NCDataMatrix<float>;
using Signs = std::vector<int>;

CompositeRequest Reduced(EDesign::Type type) {
    return {.type = type, .factors = 4};
}

bool IsValid(const CompositeRequest& request, const DesignOptions& options) {
    return request.Builder().IsValid(request.MakeFactors(), options);
}

// The runs of the 2^4 factorial that are not among the first twelve of the design.
std::set<Signs> MissingRuns(const Matrix& design) {
    std::set<Signs> missing;
    for (int bits = 0; bits < 16; ++bits) {
        Signs run;
        for (int factor = 0; factor < 4; ++factor) {
            run.push_back((bits >> factor) % 2 == 0 ? -1 : 1);
        }
        missing.insert(run);
    }
    for (int row = 1; row <= 12; ++row) {
        const auto cells = design.RowSpan(row);
        missing.erase(Signs(cells.begin(), cells.end()));
    }
    return missing;
}

}  // namespace

TEST(ReducedComposite, TheFactorialPartLacksOneRegularQuarter) {
    const std::set<Signs> missing = MissingRuns(Reduced(EDesign::RCCF).Build());
    ASSERT_EQ(missing.size(), 4U);
    // John (1961), "Three-quarter replicates of 2^4 and 2^5 designs": the runs left out form a
    // regular quarter, here I = -AC = -ABD = BCD.
    for (const Signs& run : missing) {
        EXPECT_EQ(run[0] * run[2], -1);
        EXPECT_EQ(run[0] * run[1] * run[3], -1);
    }
}

TEST(ReducedComposite, EveryLevelStandsSixTimesInTheFactorialPart) {
    const Matrix design = Reduced(EDesign::RCCF).Build();
    for (int column = 1; column <= 4; ++column) {
        float sum = 0;
        for (int row = 1; row <= 12; ++row) {
            sum += design(row, column);
        }
        EXPECT_EQ(sum, 0) << column;
    }
}

TEST(ReducedComposite, TheQuadraticModelHasFullRank) {
    for (const EDesign::Type type : {EDesign::RCCF, EDesign::RCCC}) {
        CompositeRequest request = Reduced(type);
        request.centrePoints = 1;
        EXPECT_TRUE(SecondOrder::HasFullRank(SecondOrder::Information(request.Build(), 4)))
            << request;
    }
}

// What a three-quarter replicate is made for (John, 1961).
TEST(ReducedComposite, MainEffectsAndInteractionsAreEstimableFromTheFactorialPart) {
    const Matrix design = Reduced(EDesign::RCCF).Build();
    oracles::Table model;
    for (int row = 1; row <= 12; ++row) {
        const auto cells = design.RowSpan(row);
        model.push_back({1});
        model.back().insert(model.back().end(), cells.begin(), cells.end());
        for (int a = 1; a <= 4; ++a) {
            for (int b = a + 1; b <= 4; ++b) {
                model.back().push_back(static_cast<long double>(design(row, a) * design(row, b)));
            }
        }
    }
    const auto information = oracles::Product(oracles::Transposed(model), model);
    EXPECT_TRUE(SecondOrder::HasFullRank(information));
}

// The changed run is the second one twice, and the first one is missing.
TEST(ReducedComposite, AFlippedCellBreaksTheQuarter) {
    Matrix design = Reduced(EDesign::RCCF).Build();
    design(1, 1, -design(1, 1));
    EXPECT_EQ(MissingRuns(design).size(), 5U);
}

TEST(ReducedComposite, StarRunsFollowMinusFirst) {
    CompositeRequest request = Reduced(EDesign::RCCC);
    request.centrePoints = 1;
    const Matrix design = request.Build();
    ASSERT_EQ(design.SizeRows(), 21);
    for (int axis = 1; axis <= 4; ++axis) {
        EXPECT_EQ(design(11 + 2 * axis, axis), -1.861F) << axis;
        EXPECT_EQ(design(12 + 2 * axis, axis), 1.861F) << axis;
    }
    EXPECT_THAT(std::vector<float>(design.RowSpan(21).begin(), design.RowSpan(21).end()),
                testing::Each(0.0F));
}

TEST(ReducedComposite, TheDefaultDistanceIsTheFourthRootOfTheFactorialRuns) {
    EXPECT_NEAR(Reduced(EDesign::RCCC).Options().GetStarDistance(), std::pow(12.0, 0.25), 5e-4);
    EXPECT_EQ(Reduced(EDesign::RCCF).Options().GetStarDistance(), 1.0F);
}

TEST(ReducedComposite, OtherFactorCountsHaveNoDefaultDistance) {
    const DesignBuilder& builder = Reduced(EDesign::RCCC).Builder();
    EXPECT_EQ(builder.GetDefaultStarDistance(3, DesignOptions()), -99.0F);
    EXPECT_EQ(builder.GetDefaultStarDistance(5, DesignOptions()), -99.0F);
}

TEST(ReducedComposite, FaceCentredStarsIgnoreTheOptionsDistance) {
    CompositeRequest request = Reduced(EDesign::RCCF);
    const Matrix faces = request.Build();
    request.starDistance = 1.7F;
    EXPECT_EQ(request.Build(), faces);
    EXPECT_EQ(faces(14, 1), 1.0F);
}

TEST(ReducedComposite, CircumscribedStarsFollowTheOptionsDistance) {
    CompositeRequest request = Reduced(EDesign::RCCC);
    request.starDistance = 1.7F;
    EXPECT_EQ(request.Build()(14, 1), 1.7F);
    request.starDistance = DesignOptions::cNoStarDistance;
    EXPECT_EQ(request.Build()(14, 1), 1.0F);
}

TEST(ReducedComposite, BlocksOfTheOptionsAreNotLookedAt) {
    for (const EDesign::Type type : {EDesign::RCCF, EDesign::RCCC}) {
        CompositeRequest request = Reduced(type);
        const Matrix unblocked = request.Build();
        request.blocks = 2;
        EXPECT_EQ(request.Build(), unblocked);
    }
}

TEST(ReducedComposite, ReplicatesRepeatCentrePointsAndReplicatedRuns) {
    const CompositeRequest request = Reduced(EDesign::RCCF);
    const TestFactors factors = request.MakeFactors();
    DesignOptions options = request.Options();
    options.SetReplicatedRuns(2);
    options.SetReplicates(1);
    EXPECT_EQ(request.Builder().Build(factors, options)->GetDesignMatrix()->SizeRows(),
              (20 + 2 + 3) * 2);
}

TEST(ReducedComposite, AreForFourFactorsOnly) {
    for (const EDesign::Type type : {EDesign::RCCF, EDesign::RCCC}) {
        for (const int factors : {1, 2, 3, 4, 5, 6}) {
            const CompositeRequest request{.type = type, .factors = factors};
            EXPECT_EQ(IsValid(request, request.Options()), factors == 4) << request;
            EXPECT_EQ(request.Options().GetRuns(), factors == 4 ? 20U : 0U) << request;
        }
    }
}

TEST(ReducedComposite, NeedRoomForOneCentrePoint) {
    for (const EDesign::Type type : {EDesign::RCCF, EDesign::RCCC}) {
        const CompositeRequest request = Reduced(type);
        DesignOptions options = request.Options();
        options.SetMaxRuns(20);
        EXPECT_FALSE(IsValid(request, options)) << request;
        options.SetMaxRuns(21);
        EXPECT_TRUE(IsValid(request, options)) << request;
    }
}

TEST(ReducedComposite, ServeTheQuadraticModelOfResponseSurfaces) {
    const CompositeRequest request = Reduced(EDesign::RCCF);
    DesignOptions options = request.Options();
    EXPECT_EQ(options.GetObjective(), EObjective::Optimization);
    EXPECT_EQ(options.GetModel(), EModel::Quadratic);
    options.SetObjective(EObjective::SystemCharacterization);
    EXPECT_TRUE(IsValid(request, options));
    options.SetObjective(EObjective::Screening);
    EXPECT_FALSE(IsValid(request, options));
    options = request.Options();
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(IsValid(request, options));
}

TEST(ReducedComposite, AFillerIsServedAtTheFacesOnly) {
    TestFactors factors;
    factors.Quantitatives(4).WithFiller(true);
    for (const EDesign::Type type : {EDesign::RCCF, EDesign::RCCC}) {
        const DesignBuilder& builder = Reduced(type).Builder();
        EXPECT_EQ(builder.IsValid(factors, DesignOptions(builder, factors)), type == EDesign::RCCF);
    }
}

TEST(ReducedComposite, HaveNoBlocksAndAPriorityOfTheirOwn) {
    const CompositeRequest faces = Reduced(EDesign::RCCF);
    const CompositeRequest circumscribed = Reduced(EDesign::RCCC);
    const TestFactors factors = faces.MakeFactors();
    EXPECT_THAT(faces.Builder().GetLegalBlocks(factors, faces.Options(), false),
                testing::ElementsAre(1));
    EXPECT_EQ(faces.Builder().GetPriority(factors), 12);
    EXPECT_EQ(circumscribed.Builder().GetPriority(factors), 16);
    EXPECT_EQ(faces.Builder().GetDisplayName(), "Reduced CCF");
    EXPECT_EQ(circumscribed.Builder().GetDisplayName(), "Reduced CCC");
    EXPECT_TRUE(circumscribed.Builder().IsREDMUPRecommended(factors, DesignOptions()));
}

TEST(ReducedComposite, ACloneIsOfTheSameClassAndSharesTheMatrix) {
    for (const EDesign::Type type : {EDesign::RCCF, EDesign::RCCC}) {
        const CompositeRequest request = Reduced(type);
        const TestFactors factors = request.MakeFactors();
        const auto design = request.Builder().Build(factors, request.Options());
        const NCDesign& original = *design;
        const auto clone = original.Clone();
        const NCDesign& copy = *clone;
        EXPECT_EQ(copy.GetDesignMatrix(), original.GetDesignMatrix());
        EXPECT_EQ(typeid(copy), typeid(original));
    }
}
