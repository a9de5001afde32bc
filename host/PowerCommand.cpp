#include "host/PowerCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "host/HostError.h"
#include "host/ModelColumns.h"
#include "host/NumberList.h"
#include "host/TermPower.h"
#include "host/TextTable.h"

namespace {

constexpr double cLargestEffect = 1e6;
constexpr std::size_t cMostEffects = 20;
// Below, 1 minus the level has few digits left.
constexpr double cSmallestAlpha = 1e-12;

// The numbers of a request, checked.
struct Question {
    std::vector<double> effects;  // in units of sigma
    double alpha = PowerArguments::cDefaultAlpha;
};

Question Checked(const PowerArguments& arguments) {
    Question question;
    if (arguments.sigma && !(*arguments.sigma > 0 && std::isfinite(*arguments.sigma))) {
        FailWith(fmt::format("--sigma: {} must be a number above 0.", *arguments.sigma));
    }
    question.alpha = arguments.alpha.value_or(PowerArguments::cDefaultAlpha);
    if (!(question.alpha > 0 && question.alpha < 1)) {
        FailWith(fmt::format("--alpha: {} must be between 0 and 1.", question.alpha));
    }
    if (question.alpha < cSmallestAlpha) {
        FailWith(fmt::format("--alpha: {} must be {} at least.", question.alpha, cSmallestAlpha));
    }
    if (arguments.power && !(*arguments.power > question.alpha && *arguments.power < 1)) {
        FailWith(
            fmt::format("--power: {} must be above the level of significance, {}, and below 1.",
                        *arguments.power,
                        question.alpha));
    }
    if (!arguments.effects.empty() || !arguments.power) {
        question.effects = ReadNumbers(
            arguments.effects.empty() ? PowerArguments::cDefaultEffects : arguments.effects,
            "--effects");
    }
    if (question.effects.size() > cMostEffects) {
        FailWith(fmt::format("--effects: more than {} effects.", cMostEffects));
    }
    for (const double effect : question.effects) {
        if (!(effect > 0 && effect <= cLargestEffect)) {
            FailWith(fmt::format(
                "--effects: {} must be above 0 and {} at most.", effect, cLargestEffect));
        }
    }
    return question;
}

std::string InUnits(double effect, const PowerArguments& arguments) {
    return arguments.sigma ? fmt::format("{:g} sigma = {:g}", effect, effect * *arguments.sigma)
                           : fmt::format("{:g} sigma", effect);
}

std::string ChanceText(double chance) {
    return std::isnan(chance) ? "-" : fmt::format("{:.3f}", chance);
}

std::string DetectableText(double effect, const PowerArguments& arguments) {
    if (std::isnan(effect)) {
        return "-";
    }
    return arguments.sigma ? fmt::format("{:.3f} = {:.4g}", effect, effect * *arguments.sigma)
                           : fmt::format("{:.3f}", effect);
}

const char* NameOf(TermPower::Meaning meaning) {
    switch (meaning) {
        case TermPower::Meaning::Range:
            return "low to high";
        case TermPower::Meaning::Square:
            return "centre to end";
        case TermPower::Meaning::Level:
            return "level to level";
        case TermPower::Meaning::Component:
            return "component";
        case TermPower::Meaning::Blend:
            return "blend";
        default:
            return "-";
    }
}

const char* Explanation(TermPower::Meaning meaning) {
    switch (meaning) {
        case TermPower::Meaning::Range:
            return "low to high: the change of the response over the range of the factor, for an "
                   "interaction half the difference that the other factor makes to it";
        case TermPower::Meaning::Square:
            return "centre to end: the change by curvature from the centre to either end of the "
                   "range";
        case TermPower::Meaning::Level:
            return "level to level: the difference between the last level and another one, with "
                   "the remaining levels half-way";
        case TermPower::Meaning::Component:
            return "component: the component alone against the mean of the other components alone, "
                   "each at all that the low settings leave";
        case TermPower::Meaning::Blend:
            return "blend: the gain at the blend in equal parts; the coefficient is 4 times the "
                   "effect "
                   "for two factors of a product, 27 times for three, 16/3 times for a cube";
        default:
            return "-: no power is told of interactions with levels or with components";
    }
}

void PrintExplanations(const TermPower& power, std::ostream& out) {
    out << '\n';
    for (const TermPower::Meaning meaning : {TermPower::Meaning::Range,
                                             TermPower::Meaning::Square,
                                             TermPower::Meaning::Level,
                                             TermPower::Meaning::Component,
                                             TermPower::Meaning::Blend,
                                             TermPower::Meaning::None}) {
        if (std::ranges::any_of(power.GetTerms(), [meaning](const TermPower::Term& term) {
                return term.meaning == meaning;
            })) {
            out << Explanation(meaning) << '\n';
        }
    }
}

void PrintHead(const JudgedDesign& design,
               const TermPower& power,
               const PowerArguments& arguments,
               double alpha,
               std::ostream& out) {
    const auto print = [&out](const char* label, const std::string& value) {
        out << fmt::format("{:<24}{}\n", label, value);
    };
    print("Design", design.name);
    print("Runs", fmt::format("{}", design.runs.SizeRows()));
    print("Residual degrees", fmt::format("{}", power.GetResidual()));
    print("Level of significance", fmt::format("{:g}", alpha));
    print("Effects in units of",
          arguments.sigma
              ? fmt::format("sigma = {:g}, the standard deviation of one run", *arguments.sigma)
              : "sigma, the standard deviation of one run");
    if (!power.GetLeftOut().empty()) {
        print("Left out",
              ShortListOf(power.GetLeftOut()) +
                  ", which these runs cannot tell from the terms before them");
    }
    out << '\n';
}

void PrintTable(const TermPower& power,
                const PowerArguments& arguments,
                const Question& question,
                std::ostream& out) {
    std::vector<std::string> header{"Term", "Degrees", "Effect"};
    for (const double effect : question.effects) {
        header.push_back(InUnits(effect, arguments));
    }
    if (arguments.power) {
        header.push_back(fmt::format("Detected with {:g}", *arguments.power));
    }
    std::vector<std::vector<std::string>> lines;
    lines.reserve(power.GetTerms().size());
    for (const TermPower::Term& term : power.GetTerms()) {
        const std::size_t number = lines.size();
        std::vector<std::string> line{
            term.name, fmt::format("{}", term.degrees), NameOf(term.meaning)};
        for (const double effect : question.effects) {
            line.push_back(ChanceText(power.Chance(number, effect, question.alpha)));
        }
        if (arguments.power) {
            line.push_back(DetectableText(
                power.Detectable(number, *arguments.power, question.alpha), arguments));
        }
        lines.push_back(std::move(line));
    }
    out << FormatTable(header, lines);
}

}  // namespace

void RunPower(const PowerArguments& arguments, std::ostream& out, std::ostream& err) {
    const Question question = Checked(arguments);
    const JudgedDesign design = MakeJudgedDesign(arguments.judged, err);
    const TermPower power(design);
    PrintHead(design, power, arguments, question.alpha, out);
    PrintTable(power, arguments, question, out);
    PrintExplanations(power, out);
}
