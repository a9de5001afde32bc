#include "designs/stability/StabilityOptions.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "designs/stability/UsedDesignText.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"

namespace {

constexpr const char* cSection = "DesignSpecificOptions";
constexpr const char* cBaseSection = "StabilityBaseOptions";
constexpr const char* cStabilitySection = "StabilityDesignOptions";
constexpr const char* cSubsetSection = "GeneralizedSubsetOptions";
constexpr const char* cUsedDesigns = "UsedDesigns";
constexpr char cSeparator = ';';

// The store's whole numbers are ints; larger ones mean the same as the largest int.
int ToStored(unsigned long long number) {
    constexpr unsigned long long cMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(number, cMost));
}

void ReadCount(const ConfigurationSection& section, const char* key, unsigned long long* count) {
    int value = 0;
    if (section.ReadInt(key, &value) && value >= 0) {
        *count = static_cast<unsigned long long>(value);
    }
}

std::unique_ptr<const ConfigurationSection> OpenOwn(const ConfigurationSection* section,
                                                    const char* name) {
    const auto options = section->OpenSection(cSection);
    return options ? options->OpenSection(name) : nullptr;
}

std::unique_ptr<ConfigurationSection> MakeOwn(ConfigurationSection* section, const char* name) {
    return section->OpenOrCreateSection(cSection)->OpenOrCreateSection(name);
}

json_value CountToJson(unsigned long long count) {
    constexpr unsigned long long cMost = std::numeric_limits<long long>::max();
    return static_cast<long long>(std::min(count, cMost));
}

std::optional<unsigned long long> CountOf(const json_value& value, const char* key) {
    if (!value.has_child(key) || !value.get_child(key).is_integer() ||
        value.get_child(key).get_integer() < 0) {
        return std::nullopt;
    }
    return static_cast<unsigned long long>(value.get_child(key).get_integer());
}

unsigned long long CountFromJson(const json_value& value,
                                 const char* key,
                                 unsigned long long present) {
    if (!value.has_child(key)) {
        return present;
    }
    if (const auto count = CountOf(value, key)) {
        return *count;
    }
    throw Exception(ExceptionMessage::translate(
                        "The member \"{1}\" of the design options must be a whole number from 0.")
                    << key);
}

bool FlagFromJson(const json_value& value, const char* key, bool present) {
    if (!value.has_child(key)) {
        return present;
    }
    if (!value.get_child(key).is_bool()) {
        throw Exception(ExceptionMessage::translate(
                            "The member \"{1}\" of the design options must be true or false.")
                        << key);
    }
    return value.get_child(key).get_bool();
}

StabilityDesignOptions::UsedReductions UsedFromJson(const json_value& list) {
    const auto fail = [] {
        throw Exception(ExceptionMessage::translate(
            "Json parse error. Stability design option 'usedDesigns' is not correctly saved."));
    };
    if (!list.is_array()) {
        fail();
    }
    StabilityDesignOptions::UsedReductions used;
    for (const json_value& element : list.get_array()) {
        const auto reduction = CountOf(element, "reduction");
        const auto index = CountOf(element, "index");
        if (!reduction || !index) {
            fail();
        }
        used.emplace_back(*reduction, *index);
    }
    return used;
}

}  // namespace

void StabilityBaseOptions::Save(ConfigurationSection* section) const {
    const auto own = MakeOwn(section, cBaseSection);
    own->WriteInt("SecondsToWait", ToStored(secondsToWait_));
    own->WriteBool("PreferBalance", preferBalanced_);
}

bool StabilityBaseOptions::Load(const ConfigurationSection* section) {
    const auto own = OpenOwn(section, cBaseSection);
    if (!own) {
        return false;
    }
    ReadCount(*own, "SecondsToWait", &secondsToWait_);
    own->ReadBool("PreferBalance", &preferBalanced_);
    return true;
}

void StabilityBaseOptions::FromJson(const json_value& value) {
    const unsigned long long seconds = CountFromJson(value, "secondsToWait", secondsToWait_);
    preferBalanced_ = FlagFromJson(value, "preferBalanced", preferBalanced_);
    secondsToWait_ = seconds;
}

json_value StabilityBaseOptions::ToJson() const {
    json_value value = json_value::make_object();
    value.put_child("secondsToWait") = CountToJson(secondsToWait_);
    value.put_child("preferBalanced") = preferBalanced_;
    return value;
}

StabilityDesignOptions::StabilityDesignOptions()
    : usedReduction_{{1, 1}, {3, 1}, {3, 2}, {3, 3}, {1, 1}} {}

void StabilityDesignOptions::Save(ConfigurationSection* section) const {
    StabilityBaseOptions::Save(section);
    std::vector<std::string> texts;
    for (const auto& pair : usedReduction_) {
        texts.push_back(UsedDesignText::Format(pair));
    }
    MakeOwn(section, cStabilitySection)->WriteStringList(cUsedDesigns, texts, cSeparator);
}

bool StabilityDesignOptions::Load(const ConfigurationSection* section) {
    const bool hasBase = StabilityBaseOptions::Load(section);
    const auto own = OpenOwn(section, cStabilitySection);
    if (!own) {
        return hasBase;
    }
    std::vector<std::string> texts;
    own->ReadStringList(cUsedDesigns, &texts, cSeparator);
    UsedReductions used;
    for (const std::string& text : texts) {
        if (const auto pair = UsedDesignText::Parse<unsigned long long>(text)) {
            used.push_back(*pair);
        }
    }
    // A list with a damaged entry is a damaged list: the points in time would move.
    if (!texts.empty() && used.size() == texts.size()) {
        usedReduction_ = std::move(used);
    }
    return true;
}

void StabilityDesignOptions::FromJson(const json_value& value) {
    UsedReductions used = usedReduction_;
    if (value.has_child("usedDesigns")) {
        used = UsedFromJson(value.get_child("usedDesigns"));
    }
    StabilityBaseOptions::FromJson(value);
    usedReduction_ = std::move(used);
}

json_value StabilityDesignOptions::ToJson() const {
    json_value value = StabilityBaseOptions::ToJson();
    json_value& list = value.put_child("usedDesigns");
    list = json_value::make_array();
    for (const auto& [reduction, index] : usedReduction_) {
        json_value& pair = list.append_child();
        pair.put_child("reduction") = CountToJson(reduction);
        pair.put_child("index") = CountToJson(index);
    }
    return value;
}

void GeneralizedSubsetDesignsDesignOptions::Save(ConfigurationSection* section) const {
    StabilityBaseOptions::Save(section);
    MakeOwn(section, cSubsetSection)->WriteInt("Reduction", ToStored(reduction_));
}

bool GeneralizedSubsetDesignsDesignOptions::Load(const ConfigurationSection* section) {
    const bool hasBase = StabilityBaseOptions::Load(section);
    const auto own = OpenOwn(section, cSubsetSection);
    if (own) {
        ReadCount(*own, "Reduction", &reduction_);
    }
    return hasBase || own != nullptr;
}

void GeneralizedSubsetDesignsDesignOptions::FromJson(const json_value& value) {
    const unsigned long long reduction = CountFromJson(value, "reduction", reduction_);
    StabilityBaseOptions::FromJson(value);
    reduction_ = reduction;
}

json_value GeneralizedSubsetDesignsDesignOptions::ToJson() const {
    json_value value = StabilityBaseOptions::ToJson();
    value.put_child("reduction") = CountToJson(reduction_);
    return value;
}
