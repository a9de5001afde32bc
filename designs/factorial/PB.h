#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// The two-level screening designs of Plackett and Burman (1946), "The design of optimum
/// multifactorial experiments", Biometrika 33.
class QORVA_EXPORT PB : public NCDesign {
  public:
    /// Signs as -1 and 1.
    template <std::size_t N>
    using Signs = std::array<float, N>;
    using Block = std::array<Signs<9>, 9>;

    /// Generators: the cyclic shifts of one of these, and a last run of -1, make the design of N +
    /// 1 runs.
    static const Signs<7> pb8;
    static const Signs<11> pb12;
    static const Signs<15> pb16;
    static const Signs<19> pb20;
    static const Signs<23> pb24;
    static const Signs<31> pb32;
    static const Signs<35> pb36;
    /// The blocks of the design of 28 runs, which has no cyclic generator.
    static const Block pb28A;
    static const Block pb28B;
    static const Block pb28C;

    /// Builds the whole design; the options must be valid for the factors. With blocks, one more
    /// column of the table becomes the block column.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    PB(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;

    /// Appends the first `options.runs` rows once more with all signs reversed, which clears the
    /// main effects of two-factor interactions. Letter codes are reversed like any other value, and
    /// the design gets no centre points here, whatever `centerPoints` says.
    /// @throws InvalidOperationException when the design has no matrix or fewer rows
    void FoldOver(int centerPoints, const Factors& factors, const DesignOptions& options);

    /// The table of -1 and 1 [runs x factors, one column more with `blockColumn`] for 8, 12, 16,
    /// 20, 24, 28, 32 or 36 runs; all -99 for another count. Columns from `runs` on have no values
    /// but the -1 of the last run.
    [[nodiscard]] static NCDataMatrix<float> MakePBDesignTable(int factors,
                                                               int runs,
                                                               bool blockColumn);

  protected:
    /// A design without a matrix, for designs cut from the table.
    explicit PB(const Factors& factors) : NCDesign(factors) {}
};

/// Resolution III designs of 8 to 36 runs, a multiple of 4, for 2 to 32 model columns at two
/// levels: screening and robustness verification with a linear model.
class QORVA_EXPORT PBBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::PB; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;

  protected:
    /// Least run count for a number of model columns; 0 where there is no design.
    [[nodiscard]] virtual unsigned int GetRunsForFactors(int factors) const;
};
