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
    std::string centerPoints;          // of each set, as ReadSetCounts reads them; may be empty
    std::string replicates;            // likewise
    bool csv = false;                  // CSV instead of the table
    std::string output;                // CSV file to write beside the table; may be empty
};

/// @throws NoValidDesign for factors that have to add up and for constraints; Exception for a
/// negative time limit or an
///         output that is the study itself
void CheckRequest(const SubsetSearchRequest& request, const Study& study, const std::string& name);

/// Reads the study's own options of the family, if its design is that family or none is named.
/// @throws Exception naming the member and what is wrong in it
void ApplyStudyOptions(const Study& study, EDesign::Type type, StabilityBaseOptions& options);

/// Hands the request to the family's options.
void ApplyRequest(const SubsetSearchRequest& request, StabilityBaseOptions& options);

/// Makes the design of the options.
/// @throws Exception when the engine refuses them or gives up the search; CancelException when the
///         user stopped it
[[nodiscard]] std::unique_ptr<StabilityDesign> MakeStabilityDesign(
    EDesign::Type type, const Study& study, std::shared_ptr<StabilityBaseOptions> options);

/// Gives the sets in use the centre points and replicates of the request: a whole number for all of
/// them, or "1:1=3,3:2=1" for single ones. Centre points of a subset that has a run to repeat are
/// copies of it. Sets without runs stay so.
/// @throws Exception naming the option and what is wrong: no number, a set that is not in use, one
///         told twice, or too many runs
void AddRuns(const SubsetSearchRequest& request,
             const StudyFactors& factors,
             StabilityDesign& design);

/// "C:2" for the second subset of reduction 3, "40:2" where there are no letters left.
[[nodiscard]] std::string SetName(int reduction, int index);

/// The runs in real units, one line each, behind the leading texts of each run: a header, and as
/// many lines as there are runs.
/// @param matrix [runs x factors], coded
[[nodiscard]] WorksheetTable MakeRunTable(const std::vector<std::string>& leadingHeader,
                                          const std::vector<std::vector<std::string>>& leading,
                                          const NCDataMatrix<float>& matrix,
                                          const StudyFactors& factors);

/// The runs as a table with a text above it, or as CSV alone.
void PrintRuns(const SubsetSearchRequest& request,
               const WorksheetTable& table,
               const std::string& above,
               std::ostream& out);

/// The CSV file that was asked for, if one was.
void WriteOutput(const SubsetSearchRequest& request, const WorksheetTable& table);
