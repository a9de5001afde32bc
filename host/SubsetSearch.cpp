#include "host/SubsetSearch.h"

#include <fmt/format.h>

#include <charconv>
#include <map>
#include <utility>

#include "foundation/utl/QvFile.h"
#include "foundation/utl/QvStdString.h"
#include "host/DesignNames.h"
#include "host/FilePaths.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/JsonPlace.h"
#include "host/TextTable.h"

namespace {

// More would not be waited for.
constexpr long long cMostSeconds = 366LL * 24 * 3600;

using Set = std::pair<int, int>;  // reduction and index
using CountBySet = std::map<Set, long long>;

template <class Number>
bool ParseNumber(std::string_view text, Number& number) {
    text = Trimmed(text);
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

long long ReadCount(std::string_view text, std::string_view option) {
    long long count = 0;
    if (!ParseNumber(text, count) || count < 0 || count > StudyLimits::cMaxRuns) {
        FailWith(fmt::format("{}: {} must be a whole number from 0 to {}.",
                             option,
                             Quoted(text),
                             StudyLimits::cMaxRuns));
    }
    return count;
}

Set ReadSet(std::string_view text, std::string_view option, const CountBySet& inUse) {
    const std::size_t colon = text.find(':');
    Set set;
    const bool isSet = colon != std::string_view::npos &&
                       ParseNumber(text.substr(0, colon), set.first) &&
                       ParseNumber(text.substr(colon + 1), set.second);
    if (!isSet || !inUse.contains(set)) {
        std::vector<std::string> names;
        names.reserve(inUse.size());
        for (const auto& entry : inUse) {
            names.push_back(fmt::format("{}:{}", entry.first.first, entry.first.second));
        }
        FailWith(fmt::format(
            "{}: {} is no set in use; there are {}.", option, Quoted(text), ListOf(names, "and")));
    }
    return set;
}

// One count for every set in use, or counts for single ones and 0 for the others.
CountBySet ReadSetCounts(const std::string& text,
                         std::string_view option,
                         const StabilityDesign& design) {
    CountBySet counts;
    for (const Set& set : design.GetUniqueUsedDesignsets()) {
        counts[set] = 0;
    }
    if (text.find('=') == std::string::npos) {
        const long long count = ReadCount(text, option);
        for (auto& entry : counts) {
            entry.second = count;
        }
        return counts;
    }
    CountBySet told;
    for (const std::string& part : QvStdString::Split(text, ",")) {
        const std::size_t equals = part.find('=');
        if (equals == std::string::npos) {
            FailWith(
                fmt::format("{}: {} is no count of a set; wanted is reduction:index=count, "
                            "such as 3:1=2.",
                            option,
                            Quoted(part)));
        }
        const std::string_view name = std::string_view(part).substr(0, equals);
        const long long count = ReadCount(std::string_view(part).substr(equals + 1), option);
        if (!told.emplace(ReadSet(name, option, counts), count).second) {
            FailWith(fmt::format("{}: the set {} is told twice.", option, Quoted(name)));
        }
    }
    for (const auto& [set, count] : told) {
        counts[set] = count;
    }
    return counts;
}

}  // namespace

void CheckRequest(const SubsetSearchRequest& request, const Study& study, const std::string& name) {
    if (!request.output.empty() && IsSameFile(request.output, study.file)) {
        FailWith(fmt::format("-o: {} is the study itself; choose another file.", request.output));
    }
    if (request.seconds && (*request.seconds < 0 || *request.seconds > cMostSeconds)) {
        FailWith(fmt::format(
            "--seconds: {} must be a whole number from 0 to {}.", *request.seconds, cMostSeconds));
    }
    if (!study.factors.IsProcessOnly()) {
        throw NoValidDesign(
            fmt::format("{}: {} needs factors that do not have to add up; formulation factors do.",
                        study.file,
                        name));
    }
    if (!study.constraints.IsEmpty()) {
        throw NoValidDesign(
            fmt::format("{}: constraints: {} holds all combinations of levels and keeps to no "
                        "constraints.",
                        study.file,
                        name));
    }
}

void ApplyStudyOptions(const Study& study, EDesign::Type type, StabilityBaseOptions& options) {
    constexpr const char* cMember = "designSpecificOptions";
    const BuilderHandle named = study.design.empty() ? nullptr : FindBuilder(study.design);
    if (!study.options.has_child(cMember) || (named && named->IsDesign() != type)) {
        return;
    }
    json_value root = json_value::make_object();
    root.put_child("options") = study.options;
    const JsonPlace place = JsonPlace(root, study.file).Member("options").Member(cMember);
    const json_value known = options.ToJson();
    std::vector<std::string_view> names;
    for (unsigned long long i = 0; i < known.get_length(); ++i) {
        names.emplace_back(known.get_child_name(i));
    }
    place.RequireMembers(names);
    try {
        options.FromJson(place.Value());
    } catch (const Exception& exception) {
        place.Fail(exception.what());
    }
}

void ApplyRequest(const SubsetSearchRequest& request, StabilityBaseOptions& options) {
    if (request.seconds) {
        options.SetSecondsToWait(static_cast<unsigned long long>(*request.seconds));
    }
    if (request.preferCondition) {
        options.SetPreferBalanced(false);
    }
}

std::unique_ptr<StabilityDesign> MakeStabilityDesign(
    EDesign::Type type, const Study& study, std::shared_ptr<StabilityBaseOptions> options) {
    DesignOptions request(*AllDesigns::GetDesignBuilder(type, ""), study.factors);
    request.SetDesignSpecificOptions(std::move(options));
    try {
        // Not by the builder, which keeps the reason of a refusal to itself.
        return std::make_unique<StabilityDesign>(type, study.factors, request);
    } catch (const Exception& exception) {
        FailWith(fmt::format("{}: {}", study.file, exception.what()));
    } catch (const CancelException&) {
        Interrupt::ThrowIfRequested();
        // Nobody asked for a stop: the engine has told the user why.
        FailWith(fmt::format("{}: the search was given up.", study.file));
    }
}

void AddRuns(const SubsetSearchRequest& request,
             const StudyFactors& factors,
             StabilityDesign& design) {
    if (request.centerPoints.empty() && request.replicates.empty()) {
        return;
    }
    const auto read = [&design](const std::string& text, std::string_view option) {
        return ReadSetCounts(text.empty() ? "0" : text, option, design);
    };
    const CountBySet centerPoints = read(request.centerPoints, "--center-points");
    const CountBySet replicates = read(request.replicates, "--replicates");
    // Before anything grows.
    long long runs = 0;
    for (const auto& used : design.GetUsedDesigns()) {
        const auto set = design.GetDesign(used.first, used.second);
        const long long base = set ? set->GetDesignMatrix().SizeRows() : 0;
        runs += base > 0 ? base * (replicates.at(used) + 1) + centerPoints.at(used) : 0;
        if (runs > StudyLimits::cMaxRuns) {
            FailWith(
                fmt::format("The design sets would have more than {} runs with their centre "
                            "points and replicates.",
                            StudyLimits::cMaxRuns));
        }
    }
    const DesignOptions plain;
    for (const auto& [set, count] : centerPoints) {
        const auto data = design.GetDesign(set.first, set.second);
        if (data->GetDesignMatrix().SizeRows() > 0) {
            data->SetReplicates(static_cast<int>(replicates.at(set)), factors, plain);
            data->SetCenterPoints(static_cast<int>(count), factors, plain);
        }
    }
    design.SpecifyUsedDesigns(StabilityDesign::UsedDesigns(design.GetUsedDesigns()));
}

void PrintRuns(const SubsetSearchRequest& request,
               const WorksheetTable& table,
               const std::string& above,
               std::ostream& out) {
    if (request.csv) {
        out << ToCsv(table);
    } else {
        out << above << FormatTable(table.header, table.lines);
    }
}

std::string SetName(int reduction, int index) {
    const std::string name = StabilityDesignData::GetDesignsetName(reduction, index);
    return name.empty() ? fmt::format("{}:{}", reduction, index) : name;
}

WorksheetTable MakeRunTable(const std::vector<std::string>& leadingHeader,
                            const std::vector<std::vector<std::string>>& leading,
                            const NCDataMatrix<float>& matrix,
                            const StudyFactors& factors) {
    constexpr std::ptrdiff_t cOrders = 2;  // StdOrder and RunOrder, which have no place here
    WorksheetTable table =
        MakeWorksheetTable(DecodeRuns(matrix, factors, DesignForm()), factors, false);
    table.header.erase(table.header.begin(), table.header.begin() + cOrders);
    table.header.insert(table.header.begin(), leadingHeader.begin(), leadingHeader.end());
    for (std::size_t i = 0; i < table.lines.size(); ++i) {
        auto& line = table.lines[i];
        line.erase(line.begin(), line.begin() + cOrders);
        line.insert(line.begin(), leading[i].begin(), leading[i].end());
    }
    return table;
}

void WriteOutput(const SubsetSearchRequest& request, const WorksheetTable& table) {
    if (!request.output.empty()) {
        QvFile::ReplaceAll(request.output, ToCsv(table));
    }
}
