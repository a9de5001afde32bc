// How D-optimal designs are kept, now and formerly.

#include <charconv>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "designs/optimal/D_Optimal.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/IniFileSection.h"
#include "foundation/utl/NumberText.h"
#include "foundation/utl/QvStdString.h"

namespace {

constexpr const char* cDesignSection = "Design";
constexpr const char* cSection = "DOptimal";
constexpr const char* cResultSection = "Result";
constexpr const char* cBalancedKey = "Balanced";
constexpr const char* cRowsKey = "CandidateSetRows";
constexpr const char* cVerticesKey = "ExtVert";
constexpr const char* cEdgesKey = "NumEdges";
constexpr const char* cCentroidsKey = "NumHiDimCent";
constexpr const char* cSelectedKey = "SelectedDesign";
constexpr const char* cReplicateRowKey = "ReplicatesVec";
constexpr const char* cInclusionRowsKey = "InclusionRows";

constexpr const char* cOldVerticesKey = "ExtremeVertices";
constexpr const char* cOldEdgesKey = "Edges";
constexpr const char* cOldCentroidsKey = "HighDimensionalCentroids";
constexpr const char* cOldSelectedKey = "OptionIndex";
constexpr std::string_view cOldResultKey = "DOpt";

int ToInt(std::string_view text) {
    text = QvNumberText::Trim(text);
    int value = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        throw std::out_of_range("stoi argument out of range");
    }
    if (error != std::errc() || rest != text.data() + text.size()) {
        throw std::invalid_argument("invalid stoi argument");
    }
    return value;
}

std::vector<int> ToRows(std::string_view text) {
    std::vector<int> rows;
    for (const std::string& item : QvStdString::Split(text, ",")) {
        rows.push_back(ToInt(item));
    }
    return rows;
}

// "CondNo:1.5 LogDet:3.2 LogDetNorm:0.4 GEff:88.1 DesignIndex:1,4,5", in any order.
DOptResults ReadOldResult(std::string_view text) {
    DOptResults result;
    const std::map<std::string, double*, std::less<>> figures{{"CondNo", &result.CondNo},
                                                              {"LogDet", &result.LogDet},
                                                              {"LogDetNorm", &result.NormLogDet},
                                                              {"GEff", &result.GEff}};
    for (const std::string& field : QvStdString::Split(text, " \t")) {
        const std::size_t colon = field.find(':');
        if (colon == std::string::npos) {
            continue;
        }
        const std::string_view name = std::string_view(field).substr(0, colon);
        const std::string_view value = std::string_view(field).substr(colon + 1);
        const auto figure = figures.find(name);
        if (figure != figures.end()) {
            (void)QvNumberText::Parse(value, *figure->second);
        } else if (name == "DesignIndex") {
            result.rows = ToRows(value);
        }
    }
    return result;
}

void LoadResult(const ConfigurationSection& section, DOptResults& result) {
    result.Load(section);
    section.ReadBool(cBalancedKey, &result.balanced);
    section.ReadIntVector(cRowsKey, &result.rows);
}

}  // namespace

void D_Optimal::Save(ConfigurationSection* section) const {
    NCDesign::Save(section);
    const auto design = section->OpenOrCreateSection(cDesignSection);
    // Results of an earlier, longer list must not come back.
    design->RemoveSection(cSection);
    const auto own = design->OpenOrCreateSection(cSection);
    int index = 0;
    for (const Results& result : results_) {
        const auto child = own->OpenOrCreateSection(cResultSection, ++index);
        result.Save(*child);
        child->WriteBool(cBalancedKey, result.balanced);
        child->WriteIntVector(cRowsKey, result.rows);
    }
    own->WriteInt(cVerticesKey, numData_.ExtVert);
    own->WriteInt(cEdgesKey, numData_.NumEdges);
    own->WriteInt(cCentroidsKey, numData_.NumHiDimCent);
    own->WriteInt(cSelectedKey, selected_);
    own->WriteFloatVector(cReplicateRowKey, replicateRow_);
    if (inclusionRows_ > 0) {
        own->WriteInt(cInclusionRowsKey, inclusionRows_);
    }
}

bool D_Optimal::Load(const ConfigurationSection* section) {
    if (!NCDesign::Load(section)) {
        return false;
    }
    const auto own = section->OpenSection(cDesignSection)->OpenSection(cSection);
    if (!own) {
        return false;
    }
    results_.clear();
    const int count = own->SectionCount(cResultSection);
    for (int index = 1; index <= count; ++index) {
        LoadResult(*own->OpenSection(cResultSection, index), results_.emplace_back());
    }
    own->ReadInt(cVerticesKey, &numData_.ExtVert);
    own->ReadInt(cEdgesKey, &numData_.NumEdges);
    own->ReadInt(cCentroidsKey, &numData_.NumHiDimCent);
    own->ReadInt(cSelectedKey, &selected_);
    own->ReadFloatVector(cReplicateRowKey, &replicateRow_);
    inclusionRows_ = 0;
    own->ReadInt(cInclusionRowsKey, &inclusionRows_);
    return true;
}

void D_Optimal::LoadOld(const IniFileSection* section) {
    std::map<int, Results> results;
    for (const std::string& key : section->GetKeyNames()) {
        if (key.starts_with(cOldResultKey)) {
            std::string text;
            section->ReadString(key, &text);
            const int number = ToInt(std::string_view(key).substr(cOldResultKey.size()));
            results[number] = ReadOldResult(text);
        }
    }
    results_.clear();
    for (auto& [number, result] : results) {
        results_.push_back(std::move(result));
    }
    section->ReadInt(cOldVerticesKey, &numData_.ExtVert);
    section->ReadInt(cOldEdgesKey, &numData_.NumEdges);
    section->ReadInt(cOldCentroidsKey, &numData_.NumHiDimCent);
    section->ReadInt(cOldSelectedKey, &selected_);
}
