#pragma once

#include <memory>
#include <string>
#include <vector>

#include "designs/plate/REDMUPFactors.h"
#include "foundation/stream/Export.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/EDesign.h"
#include "frame/EModel.h"

/// How an experiment is spread over microtiter plates. The factors stand in two groups; each has a
/// design of its own, with one run for each column of the plate (the horizontal group) or for each
/// row (the vertical one), and a well is the combination of two such runs. Factors in neither group
/// are plate factors, which change from plate to plate only.
class QORVA_EXPORT REDMUPOptions final : public DesignSpecificOptions {
  public:
    /// The numbers are stored, and so are fixed; any other acts as 96 wells.
    enum EPlateSize : int { Wells96 = 0, Wells384 = 1, Wells1536 = 2 };
    /// Whether the design has one more column, which holds the letter of the plate.
    enum EPlateFactors : int { WithoutPlateColumn = 0, WithPlateColumn = 1 };
    /// The number of an enumerator is the number of plates; plate factors need a power of 2.
    enum ENumPlates : int {
        OnePlate = 1,
        TwoPlates = 2,
        ThreePlates = 3,
        FourPlates = 4,
        EightPlates = 8,
        SixteenPlates = 16
    };

    /// The small design along one side of the plate.
    struct QORVA_EXPORT REDMUPSubDesign {
        /// Factor numbers, from 0.
        std::vector<unsigned long long> factors;
        /// For each position along the side, the row (from 1) of the small design that stands
        /// there.
        std::vector<unsigned int> runOrder;
        EDesign::Type designType = EDesign::None;
        /// Tells builders of one type apart, as DesignBuilder::GetDesignData.
        std::string designData;
        /// Null until a design is set.
        std::unique_ptr<DesignOptions> options;

        /// Takes the strongest proposal that has exactly `size` runs with its centre points, and a
        /// random run order. Keeps the design that was set where none has, as for an empty group.
        /// @param group takes the place of the group's factors, unless it is empty
        /// @throws Exception as REDMUPFactors, with nothing changed
        void Setup(unsigned long long size,
                   const Factors& all,
                   const std::vector<unsigned long long>& group);
        /// Sets a design of one's own, filled up with centre points. False, with nothing changed,
        /// when there is none, it cannot have as many runs as there are positions, it is not valid
        /// or, deliberately, has replicates. True does not promise that it can be built.
        /// @throws Exception as REDMUPFactors, with nothing changed
        bool SetDesign(const Factors& all,
                       const std::vector<unsigned long long>& group,
                       EDesign::Type type,
                       const std::string& data,
                       unsigned int runs,
                       unsigned int replicates,
                       EModel::Type model,
                       int size);
        /// A view of the group, which borrows `all`.
        /// @throws Exception as REDMUPFactors
        [[nodiscard]] std::unique_ptr<Factors> GetREDMUPFactors(const Factors& all) const;
    };

    /// One plate of 96 wells with the default division and its strongest proposals.
    explicit REDMUPOptions(const Factors& factors);

    /// @param setup divides the factors, unless they are divided already, and sets up both groups
    ///        for the new size; without it, run orders and designs stay those of the old one.
    ///        Formulation factors that have to add up form the vertical group, otherwise the first
    ///        half of all factors does (rounded down)
    /// @throws Exception as REDMUPFactors, with nothing changed
    void SetPlateSize(EPlateSize size, const Factors& factors, bool setup);
    [[nodiscard]] EPlateSize GetPlateSize() const { return plateSize_; }
    [[nodiscard]] EPlateFactors GetPlateFactorsUse() const { return plateFactorsUse_; }
    void SetPlateFactorsUse(EPlateFactors use) { plateFactorsUse_ = use; }
    [[nodiscard]] int GetNumPlates() const { return numPlates_; }
    void SetNumPlates(ENumPlates plates) { numPlates_ = plates; }
    /// Columns of a plate.
    [[nodiscard]] unsigned long long GetHorizontalSize() const;
    /// Rows of a plate.
    [[nodiscard]] unsigned long long GetVerticalSize() const;

    /// The runs of the plate's first column: 1, 2 and so on.
    [[nodiscard]] std::vector<int> GetVerticalDesignRows() const;
    /// The first run of each column of the plate.
    [[nodiscard]] std::vector<int> GetHorizontalDesignRows() const;
    /// Columns of the group's factors in the design matrix, from 1.
    [[nodiscard]] std::vector<int> GetVerticalDesignCols() const;
    [[nodiscard]] std::vector<int> GetHorizontalDesignCols() const;

    [[nodiscard]] REDMUPSubDesign& GetHorizontalDesign() { return horizontal_; }
    [[nodiscard]] const REDMUPSubDesign& GetHorizontalDesign() const { return horizontal_; }
    [[nodiscard]] REDMUPSubDesign& GetVerticalDesign() { return vertical_; }
    [[nodiscard]] const REDMUPSubDesign& GetVerticalDesign() const { return vertical_; }
    /// Puts a row (from 1) of the small design at a position (from 0), neither of which is checked
    /// here; a design is refused for a row that does not exist.
    void SetHorizontalDesignIndex(int position, int row);
    void SetVerticalDesignIndex(int position, int row);
    /// As REDMUPSubDesign::SetDesign.
    bool SetHorizontalDesign(const Factors& all,
                             const std::vector<unsigned long long>& group,
                             EDesign::Type type,
                             const std::string& data,
                             unsigned int runs,
                             unsigned int replicates,
                             EModel::Type model);
    bool SetVerticalDesign(const Factors& all,
                           const std::vector<unsigned long long>& group,
                           EDesign::Type type,
                           const std::string& data,
                           unsigned int runs,
                           unsigned int replicates,
                           EModel::Type model);

    /// The factors in neither group, ascending.
    [[nodiscard]] std::vector<unsigned long long> GetPlateFactors(const Factors& factors) const;
    /// The wells in run order, down the plate's columns: "A_1", "B_1" and so on, with several
    /// plates "P2_A_1".
    /// @throws Exception when all plates together have more wells than a design may have runs
    [[nodiscard]] std::vector<std::string> GetDefaultExperimentNames() const;
    /// New random run orders for the sizes of the plate; the same ones in validating mode.
    void RandomizeRunOrder();

    void Save(ConfigurationSection* section) const override;
    /// False, with nothing changed, when a section is missing.
    bool Load(const ConfigurationSection* section) override;
    /// @throws Exception always: there is no such form
    [[nodiscard]] json_value ToJson() const override;
    void CreateSubSectionRedmupSubDesign(ConfigurationSection* section,
                                         const REDMUPSubDesign& design) const;
    /// False for no section; otherwise the design is the stored one.
    /// @throws Exception as DesignOptions::Load, with nothing changed
    bool LoadSubSectionRedmupSubDesign(const ConfigurationSection* section,
                                       REDMUPSubDesign& design) const;

  private:
    EPlateSize plateSize_ = Wells96;
    EPlateFactors plateFactorsUse_ = WithoutPlateColumn;
    int numPlates_ = 1;
    REDMUPSubDesign horizontal_;
    REDMUPSubDesign vertical_;
};
