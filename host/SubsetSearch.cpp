#include "host/SubsetSearch.h"

#include <fmt/format.h>

#include "foundation/utl/QvFile.h"
#include "host/FilePaths.h"
#include "host/HostError.h"
#include "host/Interrupt.h"

namespace {

// More would not be waited for.
constexpr long long cMostSeconds = 366LL * 24 * 3600;

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
}

void ApplyRequest(const SubsetSearchRequest& request, StabilityBaseOptions& options) {
    if (request.seconds) {
        options.SetSecondsToWait(static_cast<unsigned long long>(*request.seconds));
    }
    options.SetPreferBalanced(!request.preferCondition);
}

std::unique_ptr<StabilityDesign> MakeStabilityDesign(
    EDesign::Type type, const Study& study, std::shared_ptr<StabilityBaseOptions> options) {
    DesignOptions request(*AllDesigns::GetDesignBuilder(type, ""), study.factors);
    request.SetDesignSpecificOptions(std::move(options));
    try {
        // Not by the builder, which keeps the reason of a refusal to itself.
        return std::make_unique<StabilityDesign>(type, study.factors, request);
    } catch (const CancelException&) {
        Interrupt::ThrowIfRequested();
        // Nobody asked for a stop: the engine has told the user why.
        FailWith(fmt::format("{}: the search was given up.", study.file));
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
