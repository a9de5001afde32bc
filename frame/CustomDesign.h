#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/NCDesign.h"

/// A caller's finished design matrix in real values [runs x expanded factor count], and the file it
/// came from. The file path is stored, the matrix is not.
class QORVA_EXPORT CustomDesignOptions final : public DesignSpecificOptions {
  public:
    [[nodiscard]] const std::string& GetFilePath() const { return filePath_; }
    void SetFilePath(std::string filePath) { filePath_ = std::move(filePath); }
    [[nodiscard]] const NCDataMatrix<float>& GetMatrix() const { return matrix_; }
    void SetMatrix(const NCDataMatrix<float>& matrix) { matrix_ = matrix; }

    /// Writes the child section "CustomDesign".
    void Save(ConfigurationSection* section) const override;
    bool Load(const ConfigurationSection* section) override;
    void FromJson(const json_value& value) override;
    [[nodiscard]] json_value ToJson() const override;

  private:
    std::string filePath_;
    NCDataMatrix<float> matrix_;
};

/// A design that the caller brings along. The engine adds no runs and recodes nothing.
class QORVA_EXPORT CustomDesign : public NCDesign {
  public:
    explicit CustomDesign(const Factors& factors) : NCDesign(factors) {}
    /// @throws Exception when the options hold no matrix, or one of another width
    CustomDesign(const Factors& factors, const DesignOptions& options);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    [[nodiscard]] bool IsDesignMatrixCoded() const override { return false; }
};

/// Valid where the options are CustomDesignOptions with a matrix of the expanded factor count.
class QORVA_EXPORT CustomDesignBuilder : public DesignBuilder {
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
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::Custom; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& factors, const DesignOptions& options) const override;
};
