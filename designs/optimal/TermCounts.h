#pragma once

#include "frame/Factors.h"

namespace DOpt {

/// How many columns the terms of a full model take, the constant left out. Process terms are those
/// of all factors but the mixture's, mixture terms those of a mixture of m factors without its
/// slack one. All mixture counts are 0 for fewer than two mixture factors.
class TermCounts {
  public:
    /// @param factors counted as they are: a DOptFactorAdapter counts its block factor, too
    explicit TermCounts(const Factors& factors);

    /// Expanded process variables.
    [[nodiscard]] int Linear() const { return linear_; }
    /// Linear, and the products of two factors.
    [[nodiscard]] int Interaction() const { return linear_ + pairs_; }
    /// Interaction, and the squares.
    [[nodiscard]] int Quadratic() const { return Interaction() + squares_; }
    [[nodiscard]] int MixLinear() const { return HasMixTerms() ? mixture_ - 1 : 0; }
    [[nodiscard]] int MixInteraction() const;
    [[nodiscard]] int MixQuadratic() const;
    [[nodiscard]] int MixSpecialCubic() const;
    [[nodiscard]] int MixCubic() const;
    /// Products of a process and a mixture factor.
    [[nodiscard]] int ProcessMixture() const { return widths_ * MixLinear(); }

    /// Expanded variables of all factors.
    [[nodiscard]] int Variables() const { return variables_; }
    [[nodiscard]] int Mixture() const { return mixture_; }
    /// Expanded variables outside the mixture.
    [[nodiscard]] int Process() const { return variables_ - mixture_; }

  private:
    [[nodiscard]] bool HasMixTerms() const { return mixture_ > 1; }

    int variables_;
    int mixture_;
    int linear_ = 0;
    int pairs_ = 0;
    int squares_ = 0;
    int widths_ = 0;  // of all factors but Formulation ones
};

// Run counts that are enough to search with a default model under an objective.

[[nodiscard]] int RecommendedRunsInteraction(const TermCounts& terms);
[[nodiscard]] int RecommendedRunsRobust(const TermCounts& terms);
[[nodiscard]] int RecommendedRunsSmall(const TermCounts& terms);
[[nodiscard]] int RecommendedRunsMix(const TermCounts& terms);

}  // namespace DOpt
