#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "host/Study.h"
#include "host/Worksheet.h"

/// What the commands on subsets of a full factorial have in common.
struct SubsetSearchRequest {
    std::optional<long long> seconds;  // time limit of the search; the family's without one
    bool preferCondition = false;      // small condition numbers instead of balance
    std::string output;                // CSV file to write beside the table; may be empty
};

/// @throws NoValidDesign for factors that have to add up; Exception for a negative time limit or an
///         output that is the study itself
void CheckRequest(const SubsetSearchRequest& request, const Study& study, const std::string& name);

/// Hands the request to the family's options.
void ApplyRequest(const SubsetSearchRequest& request, StabilityBaseOptions& options);

/// Makes the design of the options.
/// @throws Exception when the engine refuses them or gives up the search; CancelException when the
///         user stopped it
[[nodiscard]] std::unique_ptr<StabilityDesign> MakeStabilityDesign(
    EDesign::Type type, const Study& study, std::shared_ptr<StabilityBaseOptions> options);

/// "C:2" for the second subset of reduction 3, "40:2" where there are no letters left.
[[nodiscard]] std::string SetName(int reduction, int index);

/// The runs in real units, one line each, behind the leading texts of each run: a header, and as
/// many lines as there are runs.
/// @param matrix [runs x factors], coded
[[nodiscard]] WorksheetTable MakeRunTable(const std::vector<std::string>& leadingHeader,
                                          const std::vector<std::vector<std::string>>& leading,
                                          const NCDataMatrix<float>& matrix,
                                          const StudyFactors& factors);

/// The CSV file that was asked for, if one was.
void WriteOutput(const SubsetSearchRequest& request, const WorksheetTable& table);
