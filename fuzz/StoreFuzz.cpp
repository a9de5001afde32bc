// A configuration text is either refused with an Exception, or survives writing and reading.

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    ConfigurationStore store;
    try {
        store = ConfigurationStore::FromText(text, "fuzz");
    } catch (const Exception&) {
        return 0;
    }
    const std::string saved = store.ToText();
    const ConfigurationStore loaded = ConfigurationStore::FromText(saved, "saved");
    Require(loaded == store, "the saved text gives the same store");
    Require(loaded.ToText() == saved, "the same store gives the same text");
    return 0;
}
