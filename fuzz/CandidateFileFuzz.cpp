// A candidate set file is either refused, or gives a set no larger than its text that survives
// writing and reading, as a whole file and layer by layer.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "frame/CandidateSetFile.h"
#include "fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using CandidateSetFile::Content;
using CandidateSetFile::Layers;
using CandidateSetFile::Status;

std::string Write(const Content& content) {
    const bool named = !content.names.empty();
    return CandidateSetFile::Write({content.rows,
                                    named ? &content.names : nullptr,
                                    named ? &content.percentages : nullptr,
                                    content.numData},
                                   "fuzz",
                                   "now");
}

void RequireOneARow(const Content& content) {
    const auto rows = static_cast<std::size_t>(content.rows.SizeRows());
    Require(rows > 0, "a set that is read has rows");
    Require(content.names.empty() || content.names.size() == rows, "names are one a row");
    Require(content.percentages.empty() || content.percentages.size() == rows,
            "percentages are one a row");
}

void RequireSurvival(const Content& content) {
    if (!std::all_of(content.names.begin(), content.names.end(), CandidateSetFile::IsLegalName)) {
        return;
    }
    const std::string text = Write(content);
    Content again;
    Require(CandidateSetFile::Read(text, {}, nullptr, again) == Status::Success,
            "what is written can be read");
    Require(again.names == content.names, "names survive");
    Require(again.numData == content.numData, "counts survive");
    Require(Write(again) == text, "the same set gives the same text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const std::array<Layers, 4> modes{
        Layers{}, Layers{{1, 2}, {1, 1}, -1}, Layers{{1, 2}, {1, 1}, 1}, Layers{{1, 2}, {1, 1}, 2}};
    for (const Layers& layers : modes) {
        Content content;
        if (CandidateSetFile::Read(text, layers, nullptr, content) == Status::Success) {
            RequireOneARow(content);
            Require(content.rows.Cells().size() <= 2 * size, "no more cells than text");
            RequireSurvival(content);
        } else {
            Require(content.rows.IsEmpty(), "a refused text leaves nothing behind");
        }
    }
    return 0;
}
