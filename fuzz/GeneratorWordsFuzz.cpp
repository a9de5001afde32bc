// Generator words from hostile text: parsing and writing agree, what is legal stays legal, and an
// array of any texts can be loaded, saved and validated.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/generators/Generators.h"
#include "fuzz/Require.h"
#include "tests/support/TestFactors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void CheckWord(const std::string& text) {
    const Generators generators(2048);
    const GeneratorWord word = generators.GetGeneratorWord(text.c_str());
    const std::string written = Generators::GetGeneratorString(word);
    Require(generators.GetGeneratorWord(written.c_str()) == word, "a word survives writing");
    Require((word & 0x001E) == 0, "no text sets a bit without a letter");

    std::string buffer = text;
    const bool legal = generators.IsLegal(buffer.data());
    const std::string seen = text.substr(0, text.find('\0'));
    for (std::size_t i = 0; i < seen.size(); ++i) {
        Require(buffer[i] < 'A' || buffer[i] > 'Z', "the text is in lower case");
        Require(buffer[i] == seen[i] || buffer[i] == seen[i] - 'A' + 'a', "only the case changes");
    }
    if (legal) {
        Require(written.size() == seen.size(), "a legal text says everything once");
        std::string again = written;
        Require(generators.IsLegal(again.data()), "a legal text is written as a legal one");
    }
}

void CheckArray(const json_value& value) {
    Generators first(16);
    first.FromJson(value);
    const json_value written = first.ToJson();
    Generators second(4);
    second.FromJson(written);
    Require(second.ToJson() == written, "the words survive writing and reading");
    Generators third(2048);
    third.FromJson(second.ToJson());
    Require(third == second, "what was written once is read back the same");

    for (const int factors : {0, 1, 3, 51, 60}) {
        for (const unsigned blocks : {0U, 1U, 2U, 9U}) {
            DesignOptions options;
            options.SetBlocks(blocks);
            std::string message = "before";
            const bool valid =
                first.IsValid(TestFactors().Quantitatives(factors), options, blocks == 9, message);
            Require(valid == message.empty(), "an invalid set comes with a reason");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    CheckWord(text);

    // The lines of the text as an array, and the text as JSON if it is some.
    json_value lines = json_value::make_array();
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    CheckArray(lines);
    try {
        CheckArray(json_value::parse(text, "fuzz"));
    } catch (const Exception&) {
        return 0;
    }
    return 0;
}
