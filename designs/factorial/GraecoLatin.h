#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// The array of 9 runs for up to 4 factors at three levels.
class QORVA_EXPORT L9 : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    L9(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;

  protected:
    [[nodiscard]] int GetDesignCoding(int row, int column) const override;
};

/// The array of 18 runs for one factor at two levels and up to 7 at three. The two-level column
/// goes to the first level factor with two levels, else to the last continuous factor.
class QORVA_EXPORT L18 : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    L18(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;

  protected:
    [[nodiscard]] int GetDesignCoding(int row, int column) const override;
};

/// The array of 27 runs for up to 13 factors at three levels.
class QORVA_EXPORT L27 : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    L27(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;

  protected:
    [[nodiscard]] int GetDesignCoding(int row, int column) const override;
};

/// The array of 36 runs for up to 13 factors at three levels.
class QORVA_EXPORT L36 : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    L36(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;

  protected:
    [[nodiscard]] int GetDesignCoding(int row, int column) const override;
};

/// What the four families share: screening and robustness verification of process factors with a
/// linear model, in one run count each, without blocks. The arrays estimate squares as well, but
/// not all interactions.
class QORVA_EXPORT GraecoLatinBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    /// 0 for factor counts outside the family's range.
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;

  protected:
    /// Runs of the array and the factor counts it is offered for.
    struct ArraySize {
        unsigned int runs = 0;
        unsigned int minFactors = 0;
        unsigned int maxFactors = 0;
    };
    [[nodiscard]] virtual ArraySize GetArraySize() const = 0;
    /// Whether the factors' level counts fit the columns of the array.
    [[nodiscard]] virtual bool FitsLevels(const Factors& factors) const;
};

class QORVA_EXPORT L9Builder : public GraecoLatinBuilder {
  public:
    using GraecoLatinBuilder::GraecoLatinBuilder;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::L9; }

  protected:
    [[nodiscard]] ArraySize GetArraySize() const override { return {9, 2, 4}; }
};

class QORVA_EXPORT L18Builder : public GraecoLatinBuilder {
  public:
    using GraecoLatinBuilder::GraecoLatinBuilder;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::L18; }

  protected:
    [[nodiscard]] ArraySize GetArraySize() const override { return {18, 2, 8}; }
    /// At most one level factor has two levels, and all others have three; without a two-level
    /// factor, a continuous one takes the two-level column.
    [[nodiscard]] bool FitsLevels(const Factors& factors) const override;
};

class QORVA_EXPORT L27Builder : public GraecoLatinBuilder {
  public:
    using GraecoLatinBuilder::GraecoLatinBuilder;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::L27; }

  protected:
    [[nodiscard]] ArraySize GetArraySize() const override { return {27, 5, 13}; }
};

class QORVA_EXPORT L36Builder : public GraecoLatinBuilder {
  public:
    using GraecoLatinBuilder::GraecoLatinBuilder;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::L36; }

  protected:
    [[nodiscard]] ArraySize GetArraySize() const override { return {36, 2, 13}; }
};
