#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "designs/optimal/D_Optimal.h"
#include "designs/optimal/D_OptimalOptions.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

/// Requests and given results for the tests of D-optimal designs.
namespace D_OptimalCases {

using Table = NCDataMatrix<float>;

inline const DesignBuilder& Builder() {
    static const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    return *builder;
}

inline D_OptimalOptions& FamilyOf(DesignOptions& options) {
    return dynamic_cast<D_OptimalOptions&>(*options.GetDesignSpecificOptions());
}

/// What a host asks for that changes nothing but the objective.
inline DesignOptions DefaultRequest(const Factors& factors, EObjective::Type objective) {
    return {Builder(),
            factors,
            objective,
            Builder().GetDefaultProcessModel(factors, objective, 12000),
            Builder().GetDefaultMixtureModel(factors, objective, 12000),
            12000};
}

/// A request of one run count without centre points.
inline DesignOptions Request(const Factors& factors, EObjective::Type objective, unsigned runs) {
    DesignOptions options = DefaultRequest(factors, objective);
    options.SetRuns(runs);
    options.SetCenterPoints(0);
    FamilyOf(options).SetRunRange(0);
    return options;
}

inline std::unique_ptr<D_Optimal> Search(const Factors& factors, const DesignOptions& options) {
    auto design = Builder().Build(factors, options);
    EXPECT_NE(design, nullptr);
    return std::unique_ptr<D_Optimal>(dynamic_cast<D_Optimal*>(design.release()));
}

inline std::string ExceptionText(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return "no exception";
}

/// The text of the refusal to build.
inline std::string RefusalOf(const Factors& factors, const DesignOptions& options) {
    return ExceptionText([&] { (void)Builder().Build(factors, options); });
}

inline bool IsRowOf(const Table& table, const NCDataVector<float>& row) {
    for (int i = 1; i <= table.SizeRows(); ++i) {
        if (table.GetRow(i) == row) {
            return true;
        }
    }
    return false;
}

inline DesignOptions WithStoredCandidates(DesignOptions options, const Table& rows) {
    CandidateSet set;
    set.SetCandidateSet(rows, {4, 3, 2});
    FamilyOf(options).SetCandidateSet(set);
    FamilyOf(options).SetNewCandidateSet(false);
    return options;
}

inline const Table cTriangle{{-1, -1}, {1, -1}, {0, 1}, {0, 0}};

/// Results given by their figures, read from a store.
class Given {
  public:
    Given& Result(const DesignStatistics::Results& figures, const std::vector<int>& rows = {1}) {
        const auto section =
            store_.OpenRoot()->OpenOrCreateSection("Design")->OpenOrCreateSection("DOptimal");
        const auto child = section->OpenOrCreateSection("Result", ++count_);
        figures.Save(*child);
        child->WriteIntVector("CandidateSetRows", rows);
        return *this;
    }
    Given& Selected(int index) {
        store_.OpenRoot()
            ->OpenOrCreateSection("Design")
            ->OpenOrCreateSection("DOptimal")
            ->WriteInt("SelectedDesign", index);
        return *this;
    }
    [[nodiscard]] D_Optimal Design(const Factors& factors) const {
        return {factors, *store_.OpenRoot()};
    }

  private:
    mutable ConfigurationStore store_;
    int count_ = 0;
};

inline DesignStatistics::Results FiguresOf(double condition,
                                           double g,
                                           double logDet,
                                           double average) {
    DesignStatistics::Results figures;
    figures.CondNo = condition;
    figures.GEff = g;
    figures.LogDet = logDet;
    figures.IOptimality = average;
    return figures;
}

}  // namespace D_OptimalCases
