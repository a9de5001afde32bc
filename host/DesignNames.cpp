#include "host/DesignNames.h"

#include <algorithm>

#include "host/HostError.h"

BuilderHandle FindBuilder(const std::string& name) {
    const auto& builders = AllDesigns::AllPossibleDesigns().GetAllDesigns();
    auto found = std::find_if(builders.begin(), builders.end(), [&](const BuilderHandle& builder) {
        return EqualsIgnoringCase(builder->GetShortString(), name);
    });
    if (found == builders.end()) {
        found = std::find_if(builders.begin(), builders.end(), [&](const BuilderHandle& builder) {
            return EqualsIgnoringCase(builder->GetDisplayName(), name);
        });
    }
    return found != builders.end() ? *found : nullptr;
}

std::vector<std::string> AllDesignNames() {
    std::vector<std::string> names;
    for (const BuilderHandle& builder : AllDesigns::AllPossibleDesigns().GetAllDesigns()) {
        const std::string name = builder->GetShortString();
        // The many rows for plates would hide the rest.
        if (builder->IsDesign() != EDesign::Plugin &&
            std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    return names;
}
