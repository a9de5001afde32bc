#pragma once

#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "frame/Factors.h"

/// The caller's factors as the D-optimal engine wants them: all non-Formulation factors in the
/// caller's order, then one more Qualitative factor for the blocks when there are 2 or more, then
/// the Formulation factors. In a matrix of the caller the block columns stand behind all factors.
/// Borrows the factors.
class DOptFactorAdapter : public Factors {
  public:
    DOptFactorAdapter(const Factors& factors, unsigned int blocks);
    ~DOptFactorAdapter() override;

    /// With the block factor.
    [[nodiscard]] unsigned int GetDesignFactorCount() const override;
    [[nodiscard]] CEType::EType GetFactorType(int factor) const override;
    /// A zero a block for the block factor.
    [[nodiscard]] std::vector<float> GetFactorSettings(int factor) const override;
    [[nodiscard]] unsigned int GetLevelCount(int factor) const override;
    /// @throws NCInternalError always: the engine never changes the caller's factors.
    void SetFactorRange(int factor, float low, float high) override;
    [[nodiscard]] const TransformStruct* GetFactorTransform(int factor) const override;
    [[nodiscard]] bool HasFiller() const override;
    [[nodiscard]] bool IsFormulationSumFree() const override;
    [[nodiscard]] float GetConstantMixtureShare() const override;

    /// The factors that this shows, in the caller's order.
    [[nodiscard]] const Factors& GetUnderlying() const { return *factors_; }

    /// Puts the columns of a matrix from the caller's order into this order. Nothing happens, not
    /// even a test of the width, where the two orders are the same.
    /// @param matrix one column a factor, or one an expanded variable
    /// @throws NCInternalError for any other width; so does the way back.
    void ReorderFromOriginal(NCDataMatrix<float>& matrix) const;
    void ReorderToOriginal(NCDataMatrix<float>& matrix) const;

    /// Number of the factor that owns an expanded variable, both counted from 1 in this order; 0
    /// outside the variables.
    [[nodiscard]] int ExpandedToFactor(int variable) const;
    /// First expanded variable of a factor, both counted from 1; 0 outside the factors.
    [[nodiscard]] int FactorToExpanded(int factor) const;
    /// Expanded variables of a factor counted from 1; 0 outside the factors.
    [[nodiscard]] int ExpandedWidth(int factor) const;
    /// Position, counted from 1, of a factor index of the caller, counted from 0. An index without
    /// a factor gives index + 1, the largest number at most.
    [[nodiscard]] int FactorPosition(int index) const;

  private:
    [[nodiscard]] bool IsBlock(int factor) const;
    [[nodiscard]] int ToUnderlying(int factor) const;
    [[nodiscard]] bool IsOriginalOrder() const;
    /// The caller's column, counted from 0, that stands at each column of this order.
    [[nodiscard]] std::vector<int> ColumnOrder(bool expanded) const;
    [[nodiscard]] std::vector<int> ColumnOrderOfWidth(int columns) const;

    std::vector<int>
        order_;  // the caller's index at each position; the block has the next free one
    const Factors* factors_;
    unsigned int blocks_;
};
