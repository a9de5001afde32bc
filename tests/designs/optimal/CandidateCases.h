#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/GenerateCandidateset.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

/// What the tests of candidate generation ask for.
namespace CandidateCases {

struct Request {
    EModel::Type process = EModel::Linear;
    EModel::Type mixture = EModel::Linear;
    bool usePotentialTerms = true;
    std::vector<NCDOE::Constraint> constraints;
    unsigned blocks = 1;
    unsigned runs = 0;
    bool grow = false;
    unsigned limit = 0;
};

inline DesignOptions MakeOptions(const Factors& factors, const Request& request) {
    auto family = std::make_shared<D_OptimalOptions>();
    family->SetDOptMixtureModel(request.mixture);
    family->SetUsePotentialTerms(request.usePotentialTerms);
    family->SetConstraints(NCDOE::Constraints(request.constraints), factors);
    DesignOptions options;
    options.SetModel(request.process);
    options.SetBlocks(request.blocks);
    options.SetRuns(request.runs);
    options.SetDesignSpecificOptions(family);
    return options;
}

struct Candidates {
    NCDataMatrix<float> rows;
    DOpt::NumData counts;
};

inline Candidates Generate(const Factors& factors, const Request& request) {
    Candidates made;
    made.rows = DOpt::GenerateCandidateset(nullptr,
                                           factors,
                                           MakeOptions(factors, request),
                                           request.grow,
                                           &made.counts,
                                           nullptr,
                                           request.limit);
    return made;
}

inline int Sum(const DOpt::NumData& counts) {
    return counts.ExtVert + counts.NumEdges + counts.NumHiDimCent;
}

/// The text of the refusal; empty when there is none.
inline std::string MessageOf(const Factors& factors, const Request& request) {
    try {
        Generate(factors, request);
    } catch (const Exception& error) {
        return error.what();
    }
    return "";
}

inline NCDOE::Constraint AtMost(std::vector<NCDOE::Constraint::Term> terms, double value) {
    return {std::move(terms), value, false};
}

inline NCDOE::Constraint AtLeast(std::vector<NCDOE::Constraint::Term> terms, double value) {
    return {std::move(terms), value, true};
}

/// `count` rows from row `first` on, in no order.
inline std::set<std::vector<float>> RowSet(const NCDataMatrix<float>& rows, int first, int count) {
    std::set<std::vector<float>> set;
    for (int row = first; row < first + count; ++row) {
        set.emplace(rows.RowSpan(row).begin(), rows.RowSpan(row).end());
    }
    return set;
}

}  // namespace CandidateCases
