#include "host/CombinatorialResults.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/Figures.h"
#include "host/HostError.h"
#include "host/ModelTermsText.h"
#include "host/TextTable.h"

namespace {

constexpr int cLevelsOfASquare = 3;
/// Of a factor without a column, which has no levels to coincide on.
constexpr float cNoValue = NCDataMatrix<float>::cMissing;

// The sum over all pairs of runs, replicated ones left out, of the squared number of factors on
// which they coincide.
long long CoincidencesOf(const J2Design::Results& result) {
    const int runs = result.design.SizeRows() - result.ReplicatedRuns;
    long long sum = 0;
    for (int a = 1; a <= runs; ++a) {
        const auto first = result.design.RowSpan(a);
        for (int b = a + 1; b <= runs; ++b) {
            const auto second = result.design.RowSpan(b);
            long long same = 0;
            for (std::size_t i = 0; i < first.size(); ++i) {
                same += first[i] == second[i] && first[i] != cNoValue ? 1 : 0;
            }
            sum += same * same;
        }
    }
    return sum;
}

bool HasSquareOfAContinuousFactor(const D_OptimalOptions::Model& terms,
                                  const StudyFactors& factors) {
    return std::ranges::any_of(terms, [&factors](const std::vector<int>& term) {
        return term.size() == 2 && term[0] == term[1] &&
               factors.GetFactorType(term[0]) == CEType::Quantitative;
    });
}

}  // namespace

std::string FormatCombinatorialResults(const J2Design& design,
                                       const StudyFactors& factors,
                                       const DesignOptions& options) {
    const auto& family = dynamic_cast<const J2Options&>(*options.GetDesignSpecificOptions());
    const D_OptimalOptions::Model terms = family.GetModel(EDesign::J2, factors, options);
    std::vector<std::vector<std::string>> lines;
    lines.reserve(design.GetResults().size());
    for (const J2Design::Results& result : design.GetResults()) {
        const auto number = lines.size();
        lines.push_back({static_cast<int>(number) == design.GetSelectedIndex() ? "*" : "",
                         fmt::format("{}", number + 1),
                         fmt::format("{}", result.design.SizeRows() - result.ReplicatedRuns),
                         fmt::format("{}", result.ReplicatedRuns),
                         fmt::format("{}", CoincidencesOf(result)),
                         Figures::Text(result.CondNo),
                         Figures::Text(result.GEff),
                         Figures::Text(result.LogDet),
                         Figures::Text(result.NormLogDet),
                         Figures::Text(result.IOptimality)});
    }
    std::string text = fmt::format("Model: {}; levels of continuous factors: {}\n",
                                   ModelTermsText::TextOf(terms, factors),
                                   family.GetLevels()) +
                       FormatTable({"",
                                    "Result",
                                    "Runs",
                                    "Repeated",
                                    "J2",
                                    "Condition",
                                    "G-eff. %",
                                    "Log det",
                                    "Norm. log det",
                                    "I-value"},
                                   lines);
    if (family.GetLevels() < cLevelsOfASquare && HasSquareOfAContinuousFactor(terms, factors)) {
        text +=
            "Squares of continuous factors need three levels: there are no figures. Ask for "
            "--levels 3.\n";
    }
    return text;
}

void SelectCombinatorialResult(J2Design& design, long long number) {
    const auto count = static_cast<long long>(design.GetResults().size());
    if (number < 1 || number > count) {
        FailWith(fmt::format(
            "--select: {} is no result of the search; there are 1 to {}.", number, count));
    }
    design.SelectDesign(static_cast<int>(number) - 1);
}
