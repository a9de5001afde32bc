#include "designs/optimal/TermCounts.h"

namespace DOpt {

namespace {

/// From so many variables on a full interaction model asks for too many runs.
constexpr int cFewVariables = 8;
constexpr int cSomeVariables = 11;

}  // namespace

TermCounts::TermCounts(const Factors& factors)
    : variables_(static_cast<int>(factors.GetDesignFactorCountExpanded())),
      mixture_(static_cast<int>(factors.GetMixtureFactorCount())) {
    const bool sumFree = factors.IsFormulationSumFree();
    linear_ = sumFree ? variables_ : variables_ - mixture_;
    int before = 0;  // variables of the factors so far that take part in pairs
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        const int width = static_cast<int>(factors.GetExpandedVariableCount(factor));
        const bool isFormulation = type == CEType::Formulation;
        widths_ += isFormulation ? 0 : width;
        if (isFormulation && !sumFree) {
            continue;
        }
        pairs_ += before * width;
        before += width;
        squares_ += type == CEType::Qualitative ? 0 : width;
    }
}

int TermCounts::MixInteraction() const {
    const int free = MixLinear();
    return HasMixTerms() ? (free - 1) * free / 2 + free : 0;
}

int TermCounts::MixQuadratic() const {
    return MixInteraction() + MixLinear();
}

int TermCounts::MixSpecialCubic() const {
    return HasMixTerms() ? (mixture_ - 2) * (mixture_ - 1) + MixQuadratic() : 0;
}

int TermCounts::MixCubic() const {
    return MixSpecialCubic() + MixLinear();
}

int RecommendedRunsInteraction(const TermCounts& terms) {
    const int process = terms.Process();
    const int mixture = terms.Mixture();
    if (process == 0) {
        return mixture > 0 ? mixture + 6 : 7;
    }
    if (mixture == 0) {
        return process > 6 ? terms.Linear() + 15 : terms.Interaction() + 7;
    }
    if (process + mixture <= cFewVariables) {
        return mixture + terms.Interaction() + terms.ProcessMixture() + 6;
    }
    if (process + mixture <= cSomeVariables) {
        if (process < 4 && terms.Interaction() < 4) {
            return terms.Interaction() + terms.MixLinear() + 10;
        }
        if (process <= 5) {
            return terms.Interaction() + terms.MixLinear() + 7;
        }
    }
    return terms.Linear() + terms.MixLinear() + 15;
}

int RecommendedRunsRobust(const TermCounts& terms) {
    const int process = terms.Process();
    const int mixture = terms.Mixture();
    if (process == 0) {
        return mixture < 6 ? terms.MixQuadratic() + 7 : mixture + 6;
    }
    if (mixture == 0) {
        return process > 4 ? terms.Linear() + 13 : terms.Interaction() + 7;
    }
    const int mixtureTerms = mixture > 4 ? terms.MixLinear() : terms.MixQuadratic();
    return process + mixture > cFewVariables
               ? terms.Linear() + 15 + mixtureTerms
               : terms.Interaction() + terms.ProcessMixture() + 7 + mixtureTerms;
}

int RecommendedRunsSmall(const TermCounts& terms) {
    const int process = terms.Process();
    const int mixture = terms.Mixture();
    if (process == 0) {
        return mixture > 0 ? mixture + 4 : 5;
    }
    if (mixture == 0) {
        return process > 4 ? terms.Linear() + 9 : terms.Interaction() + 5;
    }
    return process + mixture > cFewVariables ? terms.Linear() + mixture + 8
                                             : mixture + terms.Interaction() + 4;
}

int RecommendedRunsMix(const TermCounts& terms) {
    const int process = terms.Process();
    const int mixture = terms.Mixture();
    if (process == 0) {
        return mixture < 5 ? terms.MixQuadratic() + 5 : mixture + 4;
    }
    if (mixture == 0) {
        return process > 5 ? terms.Linear() + 9 : terms.Interaction() + 5;
    }
    const int mixtureTerms = mixture >= 5 ? terms.MixLinear() : terms.MixQuadratic();
    return process + mixture > cFewVariables ? terms.Linear() + 9 + mixtureTerms
                                             : terms.Interaction() + 5 + mixtureTerms;
}

}  // namespace DOpt
