// A configuration file is either refused with an Exception, or every key it names can be read.

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/utl/Exceptions.h"
#include "foundation/utl/IniFileSection.h"
#include "fuzz/Require.h"

namespace {

void ReadEveryKey(const IniFileSection& section) {
    for (const std::string& key : section.GetKeyNames()) {
        std::string text;
        Require(section.ReadString(key, &text), "a named key has a text");
        int whole = 0;
        double number = 0;
        float narrow = 0;
        bool flag = false;
        const bool isWhole = section.ReadInt(key, &whole);
        const bool isNumber = section.ReadDouble(key, &number);
        const bool isNarrow = section.ReadFloat(key, &narrow);
        static_cast<void>(section.ReadBool(key, &flag));
        Require(!isWhole || (isNumber && number == whole), "an int is a double of its value");
        Require(!isNarrow || isNumber, "a float is a double");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    try {
        const IniFileSection file = IniFileSection::FromText(text, "fuzz");
        ReadEveryKey(file);
        // Any line may be a header; asking for a section that is none must give a null handle.
        for (std::size_t begin = text.find('['); begin != std::string::npos;
             begin = text.find('[', begin + 1)) {
            const std::string name = text.substr(begin + 1, text.find(']', begin) - begin - 1);
            if (const auto section = file.OpenSection(name)) {
                ReadEveryKey(*section);
            }
        }
    } catch (const Exception&) {
        return 0;
    }
    return 0;
}
