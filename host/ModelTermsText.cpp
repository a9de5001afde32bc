#include "host/ModelTermsText.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/HostError.h"
#include "host/JsonPlace.h"

namespace {

using ModelTermsText::Terms;

// The engine's columns are products of three variables at most.
constexpr std::size_t cMostFactors = 3;
constexpr std::size_t cMostTerms = 1000;

// One factor of a term and its power.
struct Power {
    std::string name;
    std::size_t exponent = 1;
};

// Reads a text from its beginning to its end and tells the term it stands at when that fails.
class TermReader {
  public:
    TermReader(const std::string& text, const std::string& place) : rest_(text), place_(place) {}

    [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

    /// The powers up to the next comma, which is consumed.
    std::vector<Power> Next() {
        begin_ = rest_;
        std::vector<Power> powers;
        do {
            powers.push_back({ReadName(), ReadExponent()});
        } while (Take('*'));
        if (!AtEnd() && !Take(',')) {
            Fail("is no term; wanted are names with * and ^, and commas between the terms");
        }
        isLast_ = AtEnd() && begin_.back() != ',';
        return powers;
    }

    /// False when a comma follows the last term.
    [[nodiscard]] bool EndsInATerm() const { return isLast_; }

    /// The text of the term that was read last.
    [[nodiscard]] std::string Term() const {
        std::string_view text = begin_.substr(0, begin_.size() - rest_.size());
        if (text.ends_with(',')) {
            text.remove_suffix(1);
        }
        return std::string(Trimmed(text));
    }

    [[noreturn]] void Fail(const std::string& problem) const {
        const std::string term = Term();
        FailWith(fmt::format(
            "{}: {} {}.", place_, Quoted(term.empty() ? Trimmed(begin_) : term), problem));
    }

  private:
    bool Take(char letter) {
        rest_ = rest_.substr(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
        if (!rest_.starts_with(letter)) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    std::string ReadName() {
        if (Take('"')) {
            return ReadQuoted();
        }
        const std::size_t end = std::min(rest_.find_first_of(",*^\""), rest_.size());
        std::string name(Trimmed(rest_.substr(0, end)));
        rest_.remove_prefix(end);
        if (name.empty()) {
            Fail("is no term; the name of a factor is missing");
        }
        return name;
    }

    std::string ReadQuoted() {
        std::string name;
        do {
            const std::size_t end = rest_.find('"');
            if (end == std::string_view::npos) {
                Fail("has quotes that do not end");
            }
            name += rest_.substr(0, end);
            rest_.remove_prefix(end + 1);
            // Two quotes within quotes are one of the name.
            if (!rest_.starts_with('"')) {
                return name;
            }
            name += '"';
            rest_.remove_prefix(1);
        } while (true);
    }

    std::size_t ReadExponent() {
        if (!Take('^')) {
            return 1;
        }
        const std::size_t end = std::min(rest_.find_first_of(",*^\""), rest_.size());
        const std::string_view digits = Trimmed(rest_.substr(0, end));
        rest_.remove_prefix(end);
        if (digits != "1" && digits != "2" && digits != "3") {
            Fail("has a power that is none of 1, 2 and 3");
        }
        return static_cast<std::size_t>(digits.front() - '0');
    }

    std::string_view rest_;
    std::string_view begin_;
    bool isLast_ = false;
    const std::string& place_;
};

int FactorOf(const std::string& name, const StudyFactors& factors, const TermReader& reader) {
    const int factor = factors.Find(name);
    if (factor >= 0) {
        return factor;
    }
    if (factors.GetFiller() && factors.GetFiller()->name == name) {
        reader.Fail(
            fmt::format("names {}, the filler, which is what the others leave and no factor of a "
                        "model",
                        Quoted(name)));
    }
    std::vector<std::string> names;
    names.reserve(factors.All().size());
    for (const StudyFactor& known : factors.All()) {
        names.push_back(Quoted(known.name));
    }
    reader.Fail(fmt::format("names {}, which is no factor of the study; its factors are {}",
                            Quoted(name),
                            ListOf(names, "and")));
}

void RequirePower(const StudyFactor& factor, std::size_t exponent, const TermReader& reader) {
    if (exponent > 1 && factor.type == CEType::Qualitative) {
        reader.Fail(
            fmt::format("is a power of {}, which is qualitative: its levels are names, and names "
                        "have no squares",
                        Quoted(factor.name)));
    }
    if (factor.type == CEType::Multilevel && factor.settings.size() <= exponent) {
        reader.Fail(
            fmt::format("is a power of {}, which has {} settings only; a curve of that degree "
                        "needs {} or more",
                        Quoted(factor.name),
                        factor.settings.size(),
                        exponent + 1));
    }
}

std::vector<int> ReadTerm(TermReader& reader, const StudyFactors& factors) {
    std::vector<int> term;
    for (const Power& power : reader.Next()) {
        term.insert(term.end(), power.exponent, FactorOf(power.name, factors, reader));
    }
    if (term.size() > cMostFactors) {
        reader.Fail(fmt::format(
            "is a product of {} factors; allowed are {} at most", term.size(), cMostFactors));
    }
    std::ranges::sort(term);
    for (const int factor : term) {
        RequirePower(
            factors.At(factor), static_cast<std::size_t>(std::ranges::count(term, factor)), reader);
    }
    return term;
}

Terms MainEffects(const StudyFactors& factors, int blocks) {
    const int count = static_cast<int>(factors.All().size());
    Terms terms{{}};
    for (int factor = 0; factor < count; ++factor) {
        terms.push_back({factor});
    }
    if (blocks > 1) {
        terms.push_back({count});
    }
    return terms;
}

// The name as Read takes it.
std::string Written(const std::string& name) {
    if (name.find_first_of(",*^\"") == std::string::npos) {
        return name;
    }
    std::string text = "\"";
    for (const char letter : name) {
        text += letter;
        if (letter == '"') {
            text += letter;
        }
    }
    return text + '"';
}

}  // namespace

Terms ModelTermsText::Read(const std::string& text,
                           const Study& study,
                           int blocks,
                           const std::string& place) {
    Terms terms = MainEffects(study.factors, blocks);
    if (Trimmed(text).empty()) {
        return terms;
    }
    TermReader reader(text, place);
    do {
        std::vector<int> term = ReadTerm(reader, study.factors);
        if (std::ranges::find(terms, term) == terms.end()) {
            terms.push_back(std::move(term));
        }
        if (terms.size() > cMostTerms) {
            FailWith(fmt::format("{}: more than {} terms.", place, cMostTerms));
        }
    } while (!reader.AtEnd());
    if (!reader.EndsInATerm()) {
        FailWith(fmt::format("{}: a term is missing behind the last comma.", place));
    }
    return terms;
}

std::string ModelTermsText::TextOf(const std::vector<int>& term, const StudyFactors& factors) {
    std::string text;
    for (auto first = term.begin(); first != term.end();) {
        const auto next =
            std::find_if(first, term.end(), [first](int other) { return other != *first; });
        const bool isBlock = *first >= static_cast<int>(factors.All().size());
        text += (text.empty() ? "" : "*") + (isBlock ? "block" : Written(factors.At(*first).name));
        if (next - first > 1) {
            text += fmt::format("^{}", next - first);
        }
        first = next;
    }
    return text.empty() ? "constant" : text;
}

std::string ModelTermsText::TextOf(const Terms& terms, const StudyFactors& factors) {
    std::string text;
    for (const auto& term : terms) {
        if (term.size() > 1) {
            text += (text.empty() ? "" : ", ") + TextOf(term, factors);
        }
    }
    return text.empty() ? "main effects" : text;
}
