#include "designs/optimal/DOptGen.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptFactorRef.h"
#include "foundation/util/NCInternalError.h"

using DOpt::Status;

namespace {

bool IsFreeSum(const Factors& factors) {
    return factors.HasFiller() && factors.IsFormulationSumFree();
}

bool HasRange(const Factors& factors, int factor) {
    const CEType::EType type = factors.GetFactorType(factor);
    return type == CEType::Quantitative || type == CEType::Formulation ||
           (type == CEType::Multilevel && factors.GetLevelCount(factor) > 0);
}

bool NeedsTransform(const DOptFactorAdapter& factors, int factor) {
    return factors.GetFactorType(factor) == CEType::Quantitative &&
           DOptFactorRef(factors, factor).GetTransform().kind != TransformStruct::Identity;
}

}  // namespace

DOptGen::DOptGen(NCProgress* progress)
    : maxPoints_(std::numeric_limits<int>::max()), progress_(progress) {}

DOptGen::~DOptGen() = default;

void DOptGen::RequireColumns(const NCDataMatrix<float>& matrix,
                             int columns,
                             const char* name) const {
    if (matrix.SizeColumns() != columns) {
        throw NCInternalError(name);
    }
}

Status DOptGen::SetVariables(int variables) {
    if (variables < 1) {
        return status_ = DOpt::IllegalArgument;
    }
    variables_ = variables;
    modelTerms_ = variables;
    return status_ = DOpt::Success;
}

Status DOptGen::SetCandidates(const NCDataMatrix<float>& rows) {
    if (rows.SizeColumns() != variables_) {
        return status_ = DOpt::IllegalArgument;
    }
    candidates_ = std::make_unique<DOptCandidateMatrix>();
    candidates_->rows = DOPTMatrix<float>(rows);
    return status_ = DOpt::Success;
}

void DOptGen::SetPInitCon(const NCDataMatrix<float>& constraints) {
    RequireColumns(constraints, variables_ + 1, "SetPInitCon");
    initCon_ = std::make_unique<DOPTMatrix<float>>(constraints);
}

void DOptGen::SetPInitVert(const NCDataMatrix<float>& vertices) {
    RequireColumns(vertices, variables_, "SetPInitVert");
    initVert_ = std::make_unique<DOPTMatrix<float>>(vertices);
}

void DOptGen::SetPNewCon(const NCDataMatrix<float>& constraints) {
    RequireColumns(constraints, variables_ + 1, "SetPNewCon");
    newCon_ = std::make_unique<DOPTMatrix<float>>(constraints);
}

void DOptGen::SetPIsMix(const OneBasedVec<int>& isMix) {
    if (isMix.Size() != variables_) {
        throw NCInternalError("SetPIsMix");
    }
    isMix_ = std::make_unique<OneBasedVec<int>>(isMix);
    mixtureVariables_ = static_cast<int>(std::ranges::count(isMix.Values(), 1));
}

void DOptGen::SetVarRanges(const OneBasedVec<float>& low, const OneBasedVec<float>& high) {
    if (low.Size() != variables_ || high.Size() != variables_) {
        throw NCInternalError("SetVarRanges");
    }
    varMin_ = std::make_unique<OneBasedVec<float>>(low);
    varMax_ = std::make_unique<OneBasedVec<float>>(high);
}

void DOptGen::SetTransforms(const std::vector<std::unique_ptr<Transforms>>& transforms) {
    std::vector<std::unique_ptr<Transforms>> copies(transforms.size());
    for (std::size_t i = 0; i < transforms.size(); ++i) {
        if (transforms[i] != nullptr) {
            copies[i] = std::make_unique<Transforms>(*transforms[i]);
        }
    }
    transforms_ = std::move(copies);
}

void DOptGen::SetIsMixFrom(const DOptFactorAdapter& factors) {
    const auto isMix = MakeOneBasedVec<int>("IsMix", variables_, 0);
    for (int variable = 1; variable <= variables_; ++variable) {
        const CEType::EType type = factors.GetFactorType(factors.ExpandedToFactor(variable) - 1);
        const bool inMixture = type == CEType::Formulation || type == CEType::Filler;
        (*isMix)(variable) = inMixture && !IsFreeSum(factors) ? 1 : 0;
    }
    SetPIsMix(*isMix);
}

void DOptGen::SetVarRangesFrom(const DOptFactorAdapter& factors) {
    const auto low = MakeOneBasedVec<float>("VarMin", variables_, -1.0F);
    const auto high = MakeOneBasedVec<float>("VarMax", variables_, 1.0F);
    for (int variable = 1; variable <= variables_; ++variable) {
        const int factor = factors.ExpandedToFactor(variable) - 1;
        if (HasRange(factors, factor)) {
            const DOptFactorRef ref(factors, factor);
            (*low)(variable) = ref.GetLow();
            (*high)(variable) = ref.GetHigh();
        }
    }
    SetVarRanges(*low, *high);
}

void DOptGen::SetTransformsFrom(const DOptFactorAdapter& factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    bool needed = false;
    for (int factor = 0; factor < count; ++factor) {
        needed = needed || NeedsTransform(factors, factor);
    }
    std::vector<std::unique_ptr<Transforms>> transforms;
    for (int variable = 1; needed && variable <= variables_; ++variable) {
        const int factor = factors.ExpandedToFactor(variable) - 1;
        const bool given = factors.GetFactorType(factor) == CEType::Quantitative &&
                           factors.GetFactorTransform(factor) != nullptr;
        transforms.push_back(
            given ? std::make_unique<Transforms>(*factors.GetFactorTransform(factor)) : nullptr);
    }
    transforms_ = std::move(transforms);
}

Status DOptGen::ComputeVertices(const DOpt::StopTest& stop) {
    if (initVert_ == nullptr || initVert_->SizeRows() == 0) {
        return status_ = DOpt::MissingObject;
    }
    const auto tableOf = [this](const DOPTMatrix<float>* constraints) {
        return constraints != nullptr && constraints->SizeRows() > 0
                   ? DOpt::PointTable(*constraints)
                   : DOpt::PointTable(variables_ + 1);
    };
    try {
        DOpt::DOptVertexGen generator(
            DOpt::PointTable(*initVert_), tableOf(initCon_.get()), HasMixture(), {}, maxPoints_);
        status_ = generator.Cut(tableOf(newCon_.get()), stop);
        region_ = std::make_unique<DOpt::Region>(
            DOpt::Region{generator.Vertices(), generator.Constraints(), HasMixture()});
    } catch (const std::bad_alloc&) {
        status_ = DOpt::TooManyVertices;
    }
    return status_;
}

Status DOptGen::ComputeCentroids(const DOpt::CentroidPlan& plan,
                                 const DOpt::WorkingScale& scale,
                                 const DOpt::StopTest& stop) {
    if (plan.IsEmpty()) {
        return status_ = DOpt::NoCentroidPlan;
    }
    if (region_ == nullptr) {
        return status_ = DOpt::MissingCentroids;
    }
    DOpt::CentroidRequest request;
    request.dimensions = plan.dimensions;
    request.edgeCentres = edgeCentres_;
    request.edgeThirds = edgeThirds_;
    request.maxPoints = maxPoints_;
    try {
        centroids_ = std::make_unique<DOpt::CtdList>(variables_);
        status_ = DOpt::ComputeCentroids(*region_, scale, request, stop, *centroids_);
    } catch (const std::bad_alloc&) {
        status_ = DOpt::TooManyCentroids;
    }
    return status_;
}

const Transforms* DOptGen::GetTransform(int variable) const {
    return variable >= 1 && variable <= static_cast<int>(transforms_.size())
               ? transforms_[static_cast<std::size_t>(variable - 1)].get()
               : nullptr;
}

std::unique_ptr<OneBasedVec<float>> DOptGen::GetVarRangeMix() const {
    if (!HasMixture() || varMin_ == nullptr) {
        return nullptr;
    }
    auto ranges = MakeOneBasedVec<float>("VarRangeMix", 0, 0.0F);
    for (int variable = 1; variable <= variables_; ++variable) {
        if ((*isMix_)(variable) == 1) {
            ranges->Append((*varMax_)(variable) - (*varMin_)(variable));
        }
    }
    return ranges;
}

std::unique_ptr<DOPTMatrix<float>> DOptGen::GetDesign(const OneBasedVec<int>& rows) const {
    const auto listed = rows.Values();
    const auto count = static_cast<int>(std::ranges::find(listed, 0) - listed.begin());
    if (candidates_ == nullptr || count == 0) {
        return nullptr;
    }
    auto design = MakeDOPTMatrix<float>("DOptMx", count, candidates_->rows.SizeColumns(), -99.0F);
    for (int i = 1; i <= count; ++i) {
        std::ranges::copy(std::as_const(candidates_->rows).RowSpan(rows(i)),
                          design->RowSpan(i).begin());
    }
    return design;
}
