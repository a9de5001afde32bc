#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/JudgedDesign.h"

/// The power of a design for the terms of its model. Effects are in units of the standard deviation
/// of one run.
class TermPower {
  public:
    /// What an effect of a term means.
    enum class Meaning { Range, Square, Level, Component, Blend, None };

    struct Term {
        std::string name;
        int degrees = 0;  // of freedom
        Meaning meaning = Meaning::None;
    };

    /// @throws Exception without a degree of freedom for the residual, for a level that occurs in
    ///         no run, and for fewer than 4 runs
    explicit TermPower(const JudgedDesign& design);

    /// The terms whose effects can be told apart from those of earlier ones.
    [[nodiscard]] const std::vector<Term>& GetTerms() const { return terms_; }
    /// The names of the others.
    [[nodiscard]] const std::vector<std::string>& GetLeftOut() const { return leftOut_; }
    /// Degrees of freedom of the residual.
    [[nodiscard]] int GetResidual() const { return residual_; }

    /// The chance to detect an effect, NaN where it cannot be told or is no larger than alpha.
    /// @param term counted from 0
    [[nodiscard]] double Chance(std::size_t term, double effect, double alpha) const;
    /// The smallest effect that is detected with that power, NaN where there is none.
    [[nodiscard]] double Detectable(std::size_t term, double power, double alpha) const;

  private:
    void AddTerms(const JudgedDesign& design, const NCDataMatrix<float>& matrix);

    std::vector<Term> terms_;
    std::vector<std::string> leftOut_;
    int residual_ = 0;
    std::vector<std::vector<int>> columns_;  // the terms that are kept, and the constant last
    std::shared_ptr<const NCDOE::Power> power_;
};
