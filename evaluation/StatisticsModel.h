#pragma once

#include <memory>
#include <vector>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptGen.h"
#include "designs/optimal/ModelExpansion.h"
#include "designs/optimal/ModelTerms.h"
#include "evaluation/DesignStatistics.h"

namespace NCDOE {
class IOptimal;
}

/// The figures of several designs of one model over the same candidates, which are expanded once.
class StatisticsModel {
  public:
    /// @param candidates borrowed, may be null; see DesignStatistics::CalculateStatistics
    StatisticsModel(const Factors& factors,
                    const ModelTerms::List& terms,
                    int blocks,
                    const NCDataMatrix<float>* candidates);
    ~StatisticsModel();
    StatisticsModel(const StatisticsModel&) = delete;
    StatisticsModel& operator=(const StatisticsModel&) = delete;

    /// @param design in real units and expanded variables, in the caller's order
    /// @throws InvalidOperationException with an empty text when the candidates have another width
    [[nodiscard]] DesignStatistics::Results Calculate(const NCDataMatrix<float>& design,
                                                      bool& stop);
    /// The model matrix, constant first; empty without factors.
    [[nodiscard]] NCDataMatrix<float> Expand(const NCDataMatrix<float>& rows) const;
    /// The variables of each column of that matrix, counted from 1 in the adapter's order.
    [[nodiscard]] std::vector<std::vector<int>> GetColumns() const;

  private:
    void ExpandCandidates(int columns);
    void JudgePredictions(const NCDataMatrix<float>& model,
                          const NCDataMatrix<float>& inverse,
                          DesignStatistics::Results& results);

    DOptFactorAdapter adapter_;
    DOptGen generator_;
    std::unique_ptr<DOpt::ModelExpansion> expansion_;
    const NCDataMatrix<float>* candidates_;
    NCDataMatrix<float> candidateModel_;
    std::unique_ptr<NCDOE::IOptimal> average_;
};
