#include "host/ProposeCommand.h"

#include <fmt/format.h>

#include "host/HostError.h"
#include "host/Notes.h"
#include "host/Proposals.h"
#include "host/StudyFile.h"
#include "host/TextTable.h"

namespace {

template <class Count>
std::string Counts(const std::vector<Count>& counts) {
    return CountsText({counts.begin(), counts.end()});
}

template <class Count>
json_value CountsToJson(const std::vector<Count>& counts) {
    json_value array = json_value::make_array();
    for (const Count count : counts) {
        array.push_back(static_cast<long long>(count));
    }
    return array;
}

std::string ToText(const std::vector<Proposal>& proposals) {
    std::vector<std::vector<std::string>> lines;
    for (const Proposal& proposal : proposals) {
        const DesignOptions& options = proposal.options;
        lines.push_back({proposal.priority == 0 ? "-" : fmt::format("{}", proposal.priority),
                         proposal.builder->GetShortString(),
                         proposal.builder->GetDisplayName(),
                         fmt::format("{}", options.GetRuns()),
                         fmt::format("{}", options.GetCenterPoints()),
                         EModel::GetString(options.GetModel()),
                         Counts(proposal.legalRuns),
                         Counts(proposal.legalBlocks)});
    }
    return FormatTable({"Priority",
                        "Design",
                        "Name",
                        "Runs",
                        "Centre points",
                        "Model",
                        "Legal runs",
                        "Legal blocks"},
                       lines);
}

json_value ProposalToJson(const Proposal& proposal) {
    json_value value = json_value::make_object();
    value.put_child("priority") = static_cast<long long>(proposal.priority);
    value.put_child("design") = proposal.builder->GetShortString();
    value.put_child("name") = proposal.builder->GetDisplayName();
    value.put_child("runs") = static_cast<long long>(proposal.options.GetRuns());
    value.put_child("centerPoints") = static_cast<long long>(proposal.options.GetCenterPoints());
    value.put_child("model") = EModel::ToJson(proposal.options.GetModel());
    value.put_child("legalRuns") = CountsToJson(proposal.legalRuns);
    value.put_child("legalBlocks") = CountsToJson(proposal.legalBlocks);
    return value;
}

std::string ToJsonText(const Study& study, const std::vector<Proposal>& proposals) {
    json_value value = json_value::make_object();
    value.put_child("study") = study.name;
    value.put_child("objective") = EObjective::ToJson(study.objective);
    json_value& array = value.put_child("proposals");
    for (const Proposal& proposal : proposals) {
        array.push_back(ProposalToJson(proposal));
    }
    return value.to_text(2) + '\n';
}

}  // namespace

void RunPropose(const ProposeArguments& arguments, std::ostream& out, std::ostream& err) {
    const Study study = ReadStudyFile(arguments.study);
    PrintNotes(study, err);
    const Conditions conditions = ConditionsOf(study);
    const std::vector<Proposal> proposals = Propose(conditions);
    if (proposals.empty()) {
        ThrowNoValidDesign(fmt::format("{}: no design is valid for this study.", study.file),
                           conditions,
                           AllDesigns::ClassicDesigns().GetAllDesigns());
    }
    out << (arguments.json ? ToJsonText(study, proposals) : ToText(proposals));
}
