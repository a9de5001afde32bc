#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/PlateCommand.h"
#include "host/Study.h"

/// A plate design and the options that it was made from.
struct PlateDesign {
    DesignOptions options;  // with its REDMUPOptions
    std::unique_ptr<NCDesign> design;

    [[nodiscard]] const REDMUPOptions& Plates() const;
    /// A copy of the design matrix in which all continuous factors are coded: a mixture design
    /// holds proportions instead, whose meaning depends on the factors of its side alone.
    [[nodiscard]] NCDataMatrix<float> CodedMatrix(const StudyFactors& factors) const;
};

/// @throws as RunPlate
[[nodiscard]] PlateDesign MakePlateDesign(const Study& study, const PlateArguments& arguments);

/// The names of the factors, in this order.
[[nodiscard]] std::vector<std::string> FactorNames(const std::vector<unsigned long long>& group,
                                                   const StudyFactors& factors);
