#pragma once

#include <memory>
#include <string>
#include <vector>

#include "designs/optimal/CentroidPlan.h"
#include "designs/optimal/DOPTMatrix.h"
#include "designs/optimal/DOptResults.h"
#include "designs/optimal/ModelExpansion.h"
#include "designs/optimal/Transforms.h"
#include "designs/optimal/engine/Centroids.h"
#include "designs/optimal/engine/DOptExchange.h"
#include "designs/optimal/engine/DOptStatus.h"
#include "designs/optimal/engine/DOptVertexGen.h"

class DesignOptions;
class DOptFactorAdapter;
class NCProgress;

/// The candidate rows of a generator, in the adapter's order, with what a file may tell of them.
struct DOptCandidateMatrix {
    DOPTMatrix<float> rows;
    std::shared_ptr<std::vector<int>> numbers;      // rows of each layer
    std::shared_ptr<std::vector<int>> startPoints;  // first row of each layer, from 1
    std::shared_ptr<std::vector<std::string>> rowNames;
    std::shared_ptr<std::vector<float>> percentages;
};

/// How designs are searched.
struct DOptSearchSettings {
    /// Run counts beyond this are not told apart.
    static constexpr int cMaxRuns = 0x3fffffff;

    int runs = 0;
    int exchangeWidth = 3;      // design points examined in one exchange
    int randomStartPoints = 3;  // rows of the start design that are drawn
    int repetitions = 10;
    int runRange = 1;
    bool scale = true;  // the model matrix is coded
};

/// The generator of candidates and designs. Its parts are set one by one, each with its size
/// tested; a block of variables is a generator of its own.
class DOptGen {
  public:
    /// @param progress borrowed, may be null
    explicit DOptGen(NCProgress* progress = nullptr);
    ~DOptGen();
    DOptGen(const DOptGen&) = delete;
    DOptGen& operator=(const DOptGen&) = delete;

    /// Sets the number of variables and of model terms; IllegalArgument below 1.
    DOpt::Status SetVariables(int variables);
    /// IllegalArgument when the matrix does not have one column a variable.
    DOpt::Status SetCandidates(const NCDataMatrix<float>& rows);
    // Each of these stores a copy and throws NCInternalError with its own name for a wrong size.
    /// Constraints of the start, [constraints x (variables + 1)].
    void SetPInitCon(const NCDataMatrix<float>& constraints);
    /// Vertices of the start, [vertices x variables].
    void SetPInitVert(const NCDataMatrix<float>& vertices);
    /// Constraints to cut with, [constraints x (variables + 1)].
    void SetPNewCon(const NCDataMatrix<float>& constraints);
    /// 1 for a mixture variable, else 0.
    void SetPIsMix(const OneBasedVec<int>& isMix);
    void SetVarRanges(const OneBasedVec<float>& low, const OneBasedVec<float>& high);
    /// One entry a variable, null for none.
    void SetTransforms(const std::vector<std::unique_ptr<Transforms>>& transforms);
    void SetEdgeCentres(bool edgeCentres) { edgeCentres_ = edgeCentres; }
    void SetEdgeThirds(bool edgeThirds) { edgeThirds_ = edgeThirds; }
    void SetMaxPoints(int maxPoints) { maxPoints_ = maxPoints; }
    DOpt::Status SetStatus(DOpt::Status status) { return status_ = status; }

    /// Marks the Formulation variables of the factors, unless a filler frees their sum.
    void SetIsMixFrom(const DOptFactorAdapter& factors);
    /// The ends of a factor with a range, -1 and 1 for the variables of any other.
    void SetVarRangesFrom(const DOptFactorAdapter& factors);
    /// Copies the transforms of Quantitative factors, if any of them is not the identity.
    void SetTransformsFrom(const DOptFactorAdapter& factors);

    /// Cuts the start with the new constraints. MissingObject without a start.
    DOpt::Status ComputeVertices(const DOpt::StopTest& stop);
    /// The points of the faces; NoCentroidPlan for an empty plan.
    /// @param scale the vertices in the scale in which points are averaged
    DOpt::Status ComputeCentroids(const DOpt::CentroidPlan& plan,
                                  const DOpt::WorkingScale& scale,
                                  const DOpt::StopTest& stop);

    /// Searches designs for the model, the run count and the settings of the options, which must
    /// hold D_OptimalOptions. Candidates, transforms and inclusions stand here already; limits and
    /// mixture flags that were not set are taken from the factors.
    /// @param cancel read at every safe point; null allowed
    /// Returns false for a failure, which GetStatus() tells.
    /// @throws CancelException when the user stops between two run counts
    bool GenerateDesigns(const DOptFactorAdapter& factors,
                         const DesignOptions& options,
                         bool* cancel);
    /// Searches over the run counts of the settings with the model that is prepared.
    /// @param balance factors whose levels are to be balanced; null for none
    /// @param onlyBalanced leaves out what is not, and run counts that cannot be
    /// Success; IllegalArgument for no runs or repetitions; NoResult; MissingSource without a
    /// model; or what the search ended with.
    /// @throws CancelException as GenerateDesigns does
    DOpt::Status MakeDOpt(const DOpt::BalanceMap* balance, bool onlyBalanced, bool* cancel);
    /// Records of the last search, by ascending run count.
    [[nodiscard]] const std::vector<DOptResults>& GetResults() const { return results_; }
    /// Null before a search.
    [[nodiscard]] const DOpt::ExchangeModel* GetModelMatrix() const { return model_.get(); }

    /// Result of the last step that reached it.
    [[nodiscard]] DOpt::Status GetStatus() const { return status_; }
    [[nodiscard]] int GetVariables() const { return variables_; }
    [[nodiscard]] int GetModelTerms() const { return modelTerms_; }
    [[nodiscard]] int GetMixtureVariables() const { return mixtureVariables_; }
    [[nodiscard]] bool HasMixture() const { return mixtureVariables_ > 0; }
    [[nodiscard]] bool GetEdgeCentres() const { return edgeCentres_; }
    [[nodiscard]] bool GetEdgeThirds() const { return edgeThirds_; }
    [[nodiscard]] NCProgress* GetProgress() const { return progress_; }
    // Borrowed; null where nothing was set.
    [[nodiscard]] const OneBasedVec<int>* GetIsMix() const { return isMix_.get(); }
    [[nodiscard]] const OneBasedVec<float>* GetVarMin() const { return varMin_.get(); }
    [[nodiscard]] const OneBasedVec<float>* GetVarMax() const { return varMax_.get(); }
    [[nodiscard]] const Transforms* GetTransform(int variable) const;
    [[nodiscard]] DOptCandidateMatrix* GetCandidates() { return candidates_.get(); }
    [[nodiscard]] const DOptCandidateMatrix* GetCandidates() const { return candidates_.get(); }
    [[nodiscard]] const DOpt::Region* GetRegion() const { return region_.get(); }
    [[nodiscard]] const DOpt::CtdList* GetCentroids() const { return centroids_.get(); }

    /// Ranges of the mixture variables in their order; null without mixture or limits.
    [[nodiscard]] std::unique_ptr<OneBasedVec<float>> GetVarRangeMix() const;
    /// The candidate rows of a list, up to its end or its first 0; null for no rows.
    [[nodiscard]] std::unique_ptr<DOPTMatrix<float>> GetDesign(const OneBasedVec<int>& rows) const;

    DOptSearchSettings search;
    /// Candidate rows 1 to m that every design holds; null for none.
    std::unique_ptr<OneBasedVec<int>> inclusions;

  private:
    DOpt::Status BuildModel();
    DOpt::Status SearchRunRange(const DOpt::BalanceMap& balance, bool onlyBalanced, bool* cancel);
    DOpt::Status SearchRunCount(int runs,
                                const DOpt::BalanceMap& balance,
                                bool onlyBalanced,
                                bool* cancel);
    void RequireColumns(const NCDataMatrix<float>& matrix, int columns, const char* name) const;

    std::unique_ptr<DOptCandidateMatrix> candidates_;
    DOpt::Status status_ = DOpt::Success;
    std::unique_ptr<DOPTMatrix<float>> initCon_;
    std::unique_ptr<DOPTMatrix<float>> initVert_;
    std::unique_ptr<DOPTMatrix<float>> newCon_;
    std::unique_ptr<DOpt::Region> region_;
    std::unique_ptr<DOpt::CtdList> centroids_;
    std::unique_ptr<OneBasedVec<float>> varMax_;
    std::unique_ptr<OneBasedVec<float>> varMin_;
    std::unique_ptr<OneBasedVec<int>> isMix_;
    std::vector<std::unique_ptr<Transforms>> transforms_;
    std::unique_ptr<DOpt::ModelExpansion> expansion_;  // during a search
    std::unique_ptr<DOpt::ExchangeModel> model_;
    std::vector<DOptResults> results_;
    int variables_ = 0;
    int modelTerms_ = 0;
    int mixtureVariables_ = 0;
    int maxPoints_;
    bool edgeCentres_ = true;
    bool edgeThirds_ = false;
    NCProgress* progress_;
};
