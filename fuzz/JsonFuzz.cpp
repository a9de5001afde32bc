// A JSON text is either refused with an Exception, or survives writing and reading.

#include <cstddef>
#include <cstdint>

#include "foundation/utl/Exceptions.h"
#include "foundation/utl/JsonValue.h"
#include "fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    json_value value;
    try {
        value = json_value::parse(text, "fuzz");
    } catch (const Exception&) {
        return 0;
    }
    Require(json_value::parse(value.to_text(), "line") == value, "one line reads back the same");
    Require(json_value::parse(value.to_text(2), "lines") == value, "many lines read back the same");
    return 0;
}
