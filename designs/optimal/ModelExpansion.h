#pragma once

#include <array>
#include <set>
#include <span>
#include <vector>

#include "designs/optimal/ModelTerms.h"
#include "foundation/mat/NCDataMatrix.h"
#include "frame/EModel.h"

class DOptFactorAdapter;
class DOptGen;

namespace DOpt {

/// The columns of a regression model: the constant, the main effects of all variables in coded
/// scale, the model terms, the potential terms. In a mixture the variable of the largest range is
/// left out (the slack variable): the others determine it.
class ModelExpansion {
  public:
    /// Columns that potential terms are taken from: that many terms at most.
    static constexpr int cMaxPotentialTerms = 190;

    /// Borrows both. The generator must know its variables, their limits and which of them are
    /// mixture variables.
    ModelExpansion(const DOptGen& generator, const DOptFactorAdapter& factors);

    /// Adds the terms of two and three factors of a list in the caller's factor indices; shorter
    /// ones are columns already. A term of a Qualitative factor becomes one column for each of its
    /// variables; one that repeats it, or that touches the slack variable, is dropped.
    void AddModelTerms(const ModelTerms::List& terms);
    /// Adds the terms that the models leave out and that a design should still tell something
    /// about. To be called once, after the model terms.
    void AddPotentialTerms(EModel::Type process, EModel::Type mixture);

    /// Columns of the model: potential terms are none of them.
    [[nodiscard]] int GetModelTerms() const;
    /// Columns of the potential terms.
    [[nodiscard]] int GetPotentialTerms() const { return static_cast<int>(potential_.size()); }
    /// The variables, one-based and ascending, that are multiplied in each column of the model; an
    /// empty list is the constant.
    [[nodiscard]] std::vector<std::vector<int>> GetColumns() const;
    /// One-based, 0 without mixture.
    [[nodiscard]] int GetSlackVariable() const { return slack_; }

    /// The model matrix [rows x (model + potential terms)] of rows in the adapter's order, in real
    /// units. A cell that needs a missing value, or has no finite one, is missing (-99).
    [[nodiscard]] NCDataMatrix<float> MakeMatrix(const NCDataMatrix<float>& rows) const;

  private:
    /// One-based factors or variables, ascending, 0 for none.
    using Product = std::array<int, 3>;

    void AddTerm(Product factors, std::vector<Product>& columns);
    void AddCombinations(std::span<const int> factors,
                         Product variables,
                         std::vector<Product>& columns);
    void AddPotential(int a, int b, int c);
    void AddProcessPotential(EModel::Type model, const std::vector<int>& process);
    void AddMixturePotential(EModel::Type model, const std::vector<int>& mixture);
    void AddPairs(const std::vector<int>& factors);
    void AddPowers(const std::vector<int>& factors, int degree, bool rangedOnly);
    [[nodiscard]] bool HasSquare() const;
    [[nodiscard]] bool IsMixtureFactor(int factor) const;
    [[nodiscard]] bool IsQualitative(int factor) const;
    void FillMainEffects(std::span<const float> source, std::span<float> target) const;

    const DOptGen& generator_;
    const DOptFactorAdapter& factors_;
    int slack_ = 0;
    std::set<Product> terms_;     // in factors
    std::set<Product> known_;     // in variables
    std::vector<Product> model_;  // columns behind the main effects, in variables
    std::vector<Product> potential_;
    int potentialTerms_ = 0;  // in factors
};

}  // namespace DOpt
