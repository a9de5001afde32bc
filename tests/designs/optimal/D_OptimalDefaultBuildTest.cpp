#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "designs/optimal/D_Optimal.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "tests/designs/optimal/D_OptimalCases.h"
#include "tests/support/ValidatingScope.h"

namespace {

using D_OptimalCases::Builder;
using D_OptimalCases::DefaultRequest;
using D_OptimalCases::FamilyOf;
using D_OptimalCases::Search;
using D_OptimalCases::Table;

/// log10 of |X'X|^(1/p) / n of the best result, in coded units.
double BestNormalised(const D_Optimal& design) {
    const int best = design.GetBestDesignBy(EDesign::LogDeterminant);
    return design.GetResults()[static_cast<std::size_t>(best)].NormLogDet;
}

/// The request with one repetition of the one run count: whole builds take seconds.
DesignOptions Shortened(DesignOptions options) {
    FamilyOf(options).SetRepetitions(1);
    FamilyOf(options).SetRunRange(0);
    return options;
}

// Whatever the number of factors and the objective, what is proposed by default must be found.
TEST(DOptimalDefaultBuild, EveryNumberOfQuantitativeFactorsIsBuilt) {
    const ValidatingScope validating;
    for (int count = 2; count <= 10; ++count) {
        for (const EObjective::Type objective : {EObjective::Screening,
                                                 EObjective::Optimization,
                                                 EObjective::SplitObjective,
                                                 EObjective::RobustnessVerification,
                                                 EObjective::SystemCharacterization}) {
            const TestFactors factors = TestFactors().Quantitatives(count);
            const DesignOptions options = Shortened(DefaultRequest(factors, objective));
            std::unique_ptr<D_Optimal> design;
            ASSERT_NO_THROW(design = Search(factors, options))
                << count << " factors, objective " << objective;
            EXPECT_EQ(design->GetResults().size(), 1U);
            EXPECT_GT(design->GetResults()[0].CondNo, 0) << count << ", " << objective;
        }
    }
}

TEST(DOptimalDefaultBuild, EveryMixOfFactorsIsBuilt) {
    const ValidatingScope validating;
    int built = 0;
    for (int code = 0; code < 2 * 4 * 2 * 2; ++code) {
        const int quantitatives = code % 2;
        const int components = code / 2 % 4 == 0 ? 0 : 2 + code / 2 % 4;
        TestFactors factors;
        for (int i = 0; i < components; ++i) {
            factors.Formulation(0, i % 2 == 0 ? 0.7F : 1);
        }
        factors.Quantitatives(quantitatives);
        if (code / 8 % 2 == 1) {
            factors.Qualitative(3);
        }
        if (code / 16 == 1) {
            factors.MultilevelOf(3);
        }
        for (const EObjective::Type objective : {EObjective::Screening, EObjective::Optimization}) {
            const DesignOptions options = Shortened(DefaultRequest(factors, objective));
            if (!Builder().IsValid(factors, options)) {
                continue;
            }
            ASSERT_NO_THROW((void)Search(factors, options)) << code << ", objective " << objective;
            ++built;
        }
    }
    EXPECT_GT(built, 40);
}

// Eight factors have 1,024 edges, of which points of 500 at most are kept. With two points an edge
// these would all have the first two factors at their limits: their squares could not be told
// apart.
TEST(DOptimalDefaultBuild, EightFactorsKeepTheirSquaresApart) {
    const TestFactors factors = TestFactors().Quantitatives(8);
    DesignOptions options = DefaultRequest(factors, EObjective::Optimization);
    DOpt::NumData counts;
    const Table rows =
        DOpt::GenerateCandidateset(nullptr, factors, options, false, &counts, nullptr, 0);
    EXPECT_EQ(counts, (DOpt::NumData{256, 500, 1}));
    bool differ = false;
    for (int row = 1; row + 1 <= rows.SizeRows(); ++row) {
        differ = differ || std::fabs(rows(row, 1)) != std::fabs(rows(row, 2));
    }
    EXPECT_TRUE(differ);
}

TEST(DOptimalDefaultBuild, EightFactorsReachWhatSevenDo) {
    const ValidatingScope validating;
    double best[2] = {};
    for (int i = 0; i < 2; ++i) {
        const TestFactors factors = TestFactors().Quantitatives(7 + i);
        best[i] = BestNormalised(
            *Search(factors, Shortened(DefaultRequest(factors, EObjective::Optimization))));
    }
    EXPECT_GT(best[1], best[0] - 0.05) << best[0] << " and " << best[1];
}

// With fewer edges the thirds stay: seven factors have 448.
TEST(DOptimalDefaultBuild, SevenFactorsKeepTwoPointsAnEdge) {
    const TestFactors factors = TestFactors().Quantitatives(7);
    const DesignOptions options = DefaultRequest(factors, EObjective::Optimization);
    const Table rows =
        DOpt::GenerateCandidateset(nullptr, factors, options, false, nullptr, nullptr, 0);
    ASSERT_EQ(rows.SizeRows(), 128 + 500 + 1);
    for (int row = 129; row <= 628; ++row) {
        int thirds = 0;
        for (int factor = 1; factor <= 7; ++factor) {
            thirds += std::fabs(std::fabs(rows(row, factor)) - 1.0F / 3) < 1e-6F ? 1 : 0;
        }
        ASSERT_EQ(thirds, 1) << row;
    }
}

}  // namespace
