// A study text is either refused with an Exception, or reads back the same from its own JSON text
// and can be asked for proposals.

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/Require.h"
#include "host/Proposals.h"
#include "host/StudyFile.h"

namespace {

// Proposals for more than this take too long for a fuzzer.
constexpr unsigned int cMostFactors = 5;
constexpr unsigned int cMostColumns = 12;

bool IsSmall(const StudyFactors& factors) {
    return factors.GetDesignFactorCount() <= cMostFactors &&
           factors.GetDesignFactorCountExpanded() <= cMostColumns;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Study study;
    try {
        study = ReadStudy(std::string(data, data + size), "fuzz");
    } catch (const Exception&) {
        return 0;
    }
    const Study again = ReadStudy(study.text, "again");
    Require(again.text == study.text, "the study's text reads back the same");
    Require(again.factors.GetDesignFactorCount() == study.factors.GetDesignFactorCount(),
            "the factors are the same");
    Require(again.constraints == study.constraints, "the constraints are the same");
    if (IsSmall(study.factors)) {
        for (const Proposal& proposal : Propose(ConditionsOf(study))) {
            Require(KeepsRunLimit(proposal.options), "proposals keep the run limit");
        }
    }
    return 0;
}
