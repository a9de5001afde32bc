#include "designs/optimal/ModelTerms.h"

#include "frame/Factors.h"

namespace {

using ModelTerms::Factor;
using ModelTerms::List;
using ModelTerms::Request;

/// A factor with this number of levels has no square in reduced combinatorial designs.
constexpr unsigned int cLevelsWithoutSquare = 2;

/// Adds terms of growing degree to one list.
class TermMaker {
  public:
    TermMaker(const std::vector<Factor>& factors, const Request& request)
        : factors_(factors), request_(request), count_(static_cast<int>(factors.size())) {}

    List Make() {
        terms_.emplace_back();
        for (int i = 0; i < count_; ++i) {
            terms_.push_back({i});
        }
        if (request_.blocks > 1) {
            terms_.push_back({count_});
        }
        if (request_.design != EDesign::DefinitiveScreening) {
            AddInteractions();
        }
        AddSquares();
        AddCubicPairs();
        AddCubes();
        return terms_;
    }

  private:
    void AddInteractions() {
        for (int i = 0; i + 1 < count_; ++i) {
            for (int j = i + 1; j < count_; ++j) {
                const bool oneKind = IsFormulation(i) == IsFormulation(j);
                if (oneKind ? Reaches(i, EModel::Interaction)
                            : request_.processMixtureInteraction) {
                    terms_.push_back({i, j});
                }
            }
        }
    }

    // Deliberate: LinearQuadratic has squares although it has no interactions.
    void AddSquares() {
        for (int i = 0; i < count_; ++i) {
            const bool flat =
                request_.design == EDesign::J2 && At(i).levels == cLevelsWithoutSquare;
            if (!IsQualitative(i) && !flat && ModelOf(i) >= EModel::Quadratic) {
                terms_.push_back({i, i});
            }
        }
    }

    void AddCubicPairs() {
        for (int i = 0; i + 1 < count_; ++i) {
            for (int j = i + 1; j < count_; ++j) {
                if (IsFormulation(i) && IsFormulation(j) && Reaches(i, EModel::SpecialCubic)) {
                    terms_.push_back({i, i, j});
                    terms_.push_back({i, j, j});
                }
            }
        }
    }

    void AddCubes() {
        for (int i = 0; i < count_; ++i) {
            if (!IsQualitative(i) && Reaches(i, EModel::Cubic)) {
                terms_.push_back({i, i, i});
            }
        }
    }

    [[nodiscard]] const Factor& At(int i) const { return factors_[static_cast<std::size_t>(i)]; }
    [[nodiscard]] bool IsFormulation(int i) const { return At(i).type == CEType::Formulation; }
    [[nodiscard]] bool IsQualitative(int i) const { return At(i).type == CEType::Qualitative; }
    [[nodiscard]] EModel::Type ModelOf(int i) const {
        return IsFormulation(i) ? request_.mixture : request_.process;
    }
    // LinearQuadratic has the highest number but stands aside of the growing models.
    [[nodiscard]] bool Reaches(int i, EModel::Type model) const {
        return ModelOf(i) >= model && ModelOf(i) != EModel::LinearQuadratic;
    }

    const std::vector<Factor>& factors_;
    const Request& request_;
    int count_;
    List terms_;
};

}  // namespace

namespace ModelTerms {

std::vector<Factor> Describe(const Factors& factors) {
    std::vector<Factor> described;
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int i = 0; i < count; ++i) {
        const CEType::EType type = factors.GetFactorType(i);
        const bool hasLevels = type == CEType::Multilevel || type == CEType::Qualitative;
        described.push_back({type, hasLevels ? factors.GetLevelCount(i) : 0});
    }
    return described;
}

List Make(const std::vector<Factor>& factors, const Request& request) {
    return TermMaker(factors, request).Make();
}

}  // namespace ModelTerms
