#include "host/OptimalResults.h"

#include <fmt/format.h>

#include "host/Figures.h"
#include "host/HostError.h"
#include "host/ModelTermsText.h"
#include "host/TextTable.h"

namespace {

std::string Balance(const DOptResults& result, const D_OptimalOptions& family) {
    if (family.GetBalanceOnFactor() < 0) {
        return "-";
    }
    return result.balanced ? "yes" : "no";
}

}  // namespace

std::string FormatOptimalResults(const D_Optimal& design,
                                 const StudyFactors& factors,
                                 const DesignOptions& options) {
    const auto& family = dynamic_cast<const D_OptimalOptions&>(*options.GetDesignSpecificOptions());
    std::vector<std::vector<std::string>> lines;
    lines.reserve(design.GetResults().size());
    for (const DOptResults& result : design.GetResults()) {
        const auto number = lines.size();
        lines.push_back({static_cast<int>(number) == design.GetSelectedIndex() ? "*" : "",
                         fmt::format("{}", number + 1),
                         fmt::format("{}", result.rows.size()),
                         Figures::Text(result.CondNo),
                         Figures::Text(result.GEff),
                         Figures::Text(result.LogDet),
                         Figures::Text(result.NormLogDet),
                         Figures::Text(result.IOptimality),
                         Balance(result, family)});
    }
    const std::string balance = family.GetBalanceOnFactor() < 0
                                    ? ""
                                    : " on " + factors.At(family.GetBalanceOnFactor()).name;
    return fmt::format(
               "Model: {}; potential terms: {}. Figures are those with centre points and "
               "replicated "
               "runs; * is selected.\n",
               ModelTermsText::TextOf(family.GetModel(EDesign::DOpt, factors, options), factors),
               family.GetUsePotentialTerms() ? "used" : "not used") +
           FormatTable({"",
                        "Result",
                        "Runs",
                        "Condition",
                        "G-eff. %",
                        "Log det",
                        "Norm. log det",
                        "I-value",
                        "Balanced" + balance},
                       lines);
}

void SelectOptimalResult(D_Optimal& design,
                         long long number,
                         const StudyFactors& factors,
                         const DesignOptions& options,
                         const std::string& place) {
    const auto count = static_cast<long long>(design.GetResults().size());
    if (number < 1 || number > count) {
        FailWith(fmt::format(
            "{}: {} is no result of the search; there are 1 to {}.", place, number, count));
    }
    if (number - 1 != design.GetSelectedIndex() || !design.GetDesignMatrix()) {
        design.SelectDesign(static_cast<int>(number) - 1, factors, options, 0);
    }
}
