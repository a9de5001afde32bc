#include "host/AliasesCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "host/FactorLetters.h"
#include "host/HostError.h"
#include "host/Notes.h"
#include "host/StudyFile.h"
#include "host/TextTable.h"

namespace {

using FactorLetters::WordOf;
using NCDOE::AliasStructure;

// Lines of text are broken behind this many characters.
constexpr std::size_t cLineWidth = 96;
// The shortest ones tell what matters; a saturated fraction has hundreds.
constexpr std::size_t cMostWordsShown = 31;
// Partial aliases are listed one by one up to here.
constexpr int cMostFactorsInFull = 12;

void RequireTwoLevels(const StudyFactors& factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        const bool levels = type == CEType::Multilevel || type == CEType::Qualitative;
        if (levels && factors.GetLevelCount(factor) != 2) {
            FailWith(
                fmt::format("aliases: the factor {} has {} levels; aliases are told for "
                            "factors at two levels only.",
                            Quoted(factors.All()[static_cast<std::size_t>(factor)].name),
                            factors.GetLevelCount(factor)));
        }
    }
}

// A run that stands twice, or at the centre, tells nothing of aliases.
DesignRequest CoreOnly(DesignRequest request, const Study& study) {
    const BuilderHandle builder =
        FindBuilder(request.design.empty() ? study.design : request.design);
    if (builder && builder->GetMinimumCenterPoints() == 0) {
        request.centerPoints = 0;
    }
    request.replicates = 0;
    request.replicatedRuns = 0;
    return request;
}

std::string SignText(int sign) {
    return sign < 0 ? "-" : "";
}

// Items one after the other, broken into lines that begin under the first item.
void PrintWrapped(std::ostream& out,
                  const std::string& label,
                  const std::vector<std::string>& items,
                  std::string_view separator) {
    std::string line = label;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string item =
            i + 1 < items.size() ? items[i] + std::string(separator) : items[i];
        if (line.size() + item.size() > cLineWidth && line.size() > label.size()) {
            out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
            line = std::string(label.size(), ' ');
        }
        line += item;
    }
    out << line << '\n';
}

std::string ResolutionText(const AliasStructure& structure) {
    static constexpr std::array<const char*, 9> cNumerals{
        "", "I", "II", "III", "IV", "V", "VI", "VII", "VIII"};
    if (!std::isfinite(structure.resolution)) {
        return "full factorial: nothing is aliased";
    }
    if (!structure.isRegular) {
        return fmt::format("{:.4g} (generalised; the design has no defining words)",
                           structure.resolution);
    }
    const auto length = static_cast<std::size_t>(structure.resolution);
    return length < cNumerals.size() ? cNumerals[length] : fmt::format("{}", length);
}

std::string GeneratorText(const AliasStructure::Word& word) {
    std::vector<int> base = word.factors;
    base.pop_back();
    return fmt::format("{} = {}{}",
                       FactorLetters::LetterOf(word.factors.back()),
                       SignText(word.sign),
                       WordOf(base));
}

void PrintWords(const AliasStructure& structure, std::ostream& out) {
    std::vector<std::string> lengths;
    for (std::size_t i = 0; i < structure.wordLengthPattern.size(); ++i) {
        if (structure.wordLengthPattern[i] > 0) {
            lengths.push_back(fmt::format("{:.4g} of {}", structure.wordLengthPattern[i], i + 1));
        }
    }
    if (!lengths.empty()) {
        PrintWrapped(out, "Word lengths      ", lengths, ", ");
    }
    std::vector<std::string> generators;
    for (const AliasStructure::Word& word : structure.generators) {
        generators.push_back(GeneratorText(word));
    }
    if (!generators.empty()) {
        PrintWrapped(out, "Generators        ", generators, ", ");
    }
    std::vector<std::string> words{"I"};
    const std::size_t shown = std::min(structure.definingWords.size(), cMostWordsShown);
    for (std::size_t i = 0; i < shown; ++i) {
        const AliasStructure::Word& word = structure.definingWords[i];
        words.push_back(SignText(word.sign) + WordOf(word.factors));
    }
    if (words.size() > 1) {
        PrintWrapped(out, "Defining words    ", words, " = ");
    }
    if (shown < structure.definingWords.size()) {
        out << fmt::format("                  and {} more (--json lists them all)\n",
                           structure.definingWords.size() - shown);
    }
}

void PrintAliasSets(const AliasStructure& structure, std::ostream& out) {
    if (structure.aliasSets.empty()) {
        out << "\nNo main effect or two-factor interaction is the alias of another.\n";
        return;
    }
    out << "\nAliases up to two-factor interactions\n";
    for (const AliasStructure::AliasSet& set : structure.aliasSets) {
        std::vector<std::string> effects;
        for (std::size_t i = 0; i < set.effects.size(); ++i) {
            effects.push_back(SignText(set.signs[i]) + WordOf(set.effects[i]));
        }
        PrintWrapped(out, "  ", effects, " = ");
    }
}

// The partial aliases of one main effect by what they add to its estimate.
using ByCoefficient = std::map<double, std::vector<std::string>>;

std::string CoefficientText(double coefficient) {
    return fmt::format("{:+.4g}", coefficient);
}

void PrintWhole(const std::string& effect, const ByCoefficient& aliases, std::ostream& out) {
    std::string label = fmt::format("  {:<4}", effect);
    for (const auto& [coefficient, effects] : aliases) {
        PrintWrapped(out, label + fmt::format("{:<8}", CoefficientText(coefficient)), effects, " ");
        label = std::string(label.size(), ' ');
    }
}

void PrintSummed(const std::string& effect, const ByCoefficient& aliases, std::ostream& out) {
    std::vector<std::string> counts;
    for (const auto& [coefficient, effects] : aliases) {
        counts.push_back(fmt::format("{} of {}", effects.size(), CoefficientText(coefficient)));
    }
    PrintWrapped(out, fmt::format("  {:<4}", effect), counts, ", ");
}

void PrintPartialAliases(const AliasStructure& structure, int factorCount, std::ostream& out) {
    if (structure.partialAliases.empty()) {
        return;
    }
    // In larger designs there are thousands of them, which nobody reads.
    const bool isSummed = factorCount > cMostFactorsInFull;
    out << "\nPartial aliases of main effects: what one unit of each adds to the estimate"
        << (isSummed ? "\n(counts only; --json lists them all)\n" : "\n");
    for (auto first = structure.partialAliases.begin(); first != structure.partialAliases.end();) {
        ByCoefficient aliases;
        auto alias = first;
        for (; alias != structure.partialAliases.end() && alias->effect == first->effect; ++alias) {
            aliases[alias->coefficient].push_back(WordOf(alias->of));
        }
        (isSummed ? PrintSummed : PrintWhole)(WordOf(first->effect), aliases, out);
        first = alias;
    }
}

void PrintBlocks(const AliasStructure& structure, unsigned int blocks, std::ostream& out) {
    if (blocks < 2) {
        return;
    }
    std::vector<std::string> effects;
    for (const AliasStructure::BlockConfounding& confounding : structure.blockConfounding) {
        effects.push_back(
            confounding.share > 1 - 1e-9
                ? WordOf(confounding.effect)
                : fmt::format("{} ({:.3g} of it)", WordOf(confounding.effect), confounding.share));
    }
    out << '\n';
    if (effects.empty()) {
        out << fmt::format("The {} blocks take no main effect and no two-factor interaction.\n",
                           blocks);
    } else {
        PrintWrapped(out, fmt::format("Lost to the {} blocks: ", blocks), effects, ", ");
    }
}

// The runs that hold every factor at low or high, and how many others there are.
struct Core {
    NCDataMatrix<float> runs;
    int leftOut = 0;
};

Core CoreOf(const BuiltDesign& built, int factorCount) {
    const auto matrix = built.design->GetDesignMatrix();
    std::vector<int> rows;
    for (int row = 1; row <= matrix->SizeRows(); ++row) {
        const auto cells = matrix->RowSpan(row).first(static_cast<std::size_t>(factorCount));
        if (std::find(cells.begin(), cells.end(), 0.0F) == cells.end()) {
            rows.push_back(row);
        }
    }
    if (rows.empty()) {
        FailWith(
            fmt::format("aliases: no run of the design {} holds all factors at low or high; "
                        "aliases are told for two-level designs.",
                        built.builder->GetShortString()));
    }
    Core core{{static_cast<int>(rows.size()), matrix->SizeColumns()},
              matrix->SizeRows() - static_cast<int>(rows.size())};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto cells = matrix->RowSpan(rows[i]);
        std::copy(cells.begin(), cells.end(), core.runs.RowSpan(static_cast<int>(i) + 1).begin());
    }
    return core;
}

std::string RunsText(const Core& core) {
    const std::string runs = fmt::format("{}", core.runs.SizeRows());
    return core.leftOut == 0
               ? runs
               : fmt::format(
                     "{}; left out are {} with a factor at its centre, such as centre and "
                     "star points",
                     runs,
                     core.leftOut);
}

void PrintText(const AliasStructure& structure,
               const Core& core,
               const Study& study,
               const BuiltDesign& built,
               std::ostream& out) {
    out << fmt::format("Design            {} ({})\n",
                       built.builder->GetShortString(),
                       built.builder->GetDisplayName());
    out << fmt::format("Runs              {}\n", RunsText(core));
    out << fmt::format("Resolution        {}\n", ResolutionText(structure));
    PrintWords(structure, out);
    std::vector<std::vector<std::string>> letters;
    int index = 0;
    for (const StudyFactor& factor : study.factors.All()) {
        letters.push_back({FactorLetters::LetterOf(index++), factor.name});
    }
    out << '\n' << FormatTable({"Letter", "Factor"}, letters);
    PrintAliasSets(structure, out);
    PrintPartialAliases(structure, static_cast<int>(study.factors.GetDesignFactorCount()), out);
    PrintBlocks(structure, built.options.GetBlocks(), out);
}

json_value NamesOf(const AliasStructure::Effect& effect, const Study& study) {
    json_value names = json_value::make_array();
    for (const int factor : effect) {
        names.push_back(study.factors.All()[static_cast<std::size_t>(factor)].name);
    }
    return names;
}

json_value WordsToJson(const std::vector<AliasStructure::Word>& words, const Study& study) {
    json_value list = json_value::make_array();
    for (const AliasStructure::Word& word : words) {
        json_value& one = list.append_child();
        one.put_child("factors") = NamesOf(word.factors, study);
        one.put_child("sign") = word.sign;
    }
    return list;
}

json_value ToJson(const AliasStructure& structure,
                  const Core& core,
                  const Study& study,
                  const BuiltDesign& built) {
    json_value value = json_value::make_object();
    value.put_child("design") = built.builder->GetShortString();
    value.put_child("runs") = structure.runs;
    value.put_child("runsLeftOut") = core.leftOut;
    value.put_child("isRegular") = structure.isRegular;
    // A full factorial has no resolution that a number could tell.
    value.put_child("resolution") =
        std::isfinite(structure.resolution) ? json_value(structure.resolution) : json_value();
    json_value& lengths = value.put_child("wordLengthPattern");
    lengths = json_value::make_array();
    for (const double count : structure.wordLengthPattern) {
        lengths.push_back(count);
    }
    value.put_child("generators") = WordsToJson(structure.generators, study);
    value.put_child("definingWords") = WordsToJson(structure.definingWords, study);
    json_value& sets = value.put_child("aliasSets");
    sets = json_value::make_array();
    for (const AliasStructure::AliasSet& set : structure.aliasSets) {
        json_value one = json_value::make_array();
        for (std::size_t i = 0; i < set.effects.size(); ++i) {
            json_value& effect = one.append_child();
            effect.put_child("factors") = NamesOf(set.effects[i], study);
            effect.put_child("sign") = set.signs[i];
        }
        sets.push_back(std::move(one));
    }
    json_value& partial = value.put_child("partialAliases");
    partial = json_value::make_array();
    for (const AliasStructure::PartialAlias& alias : structure.partialAliases) {
        json_value& one = partial.append_child();
        one.put_child("effect") = NamesOf(alias.effect, study);
        one.put_child("of") = NamesOf(alias.of, study);
        one.put_child("coefficient") = alias.coefficient;
    }
    json_value& blocks = value.put_child("blockConfounding");
    blocks = json_value::make_array();
    for (const AliasStructure::BlockConfounding& confounding : structure.blockConfounding) {
        json_value& one = blocks.append_child();
        one.put_child("effect") = NamesOf(confounding.effect, study);
        one.put_child("share") = confounding.share;
    }
    return value;
}

}  // namespace

void RunAliases(const AliasesArguments& arguments, std::ostream& out, std::ostream& err) {
    const Study study = ReadStudyFile(arguments.study);
    PrintNotes(study, err);
    RequireTwoLevels(study.factors);
    const BuiltDesign built = MakeDesign(study, CoreOnly(arguments.request, study));
    const int factorCount = static_cast<int>(study.factors.GetDesignFactorCount());
    const Core core = CoreOf(built, factorCount);
    const AliasStructure structure = NCDOE::ComputeAliasStructure(core.runs, factorCount);
    if (arguments.json) {
        out << ToJson(structure, core, study, built).to_text(2) << '\n';
    } else {
        PrintText(structure, core, study, built, out);
    }
}
