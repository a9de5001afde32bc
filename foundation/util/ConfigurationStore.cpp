#include "foundation/util/ConfigurationStore.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "foundation/util/ConfigurationNode.h"
#include "foundation/util/ConfigurationText.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/QvFile.h"
#include "foundation/utl/QvStdString.h"

using Node = ConfigurationStore::Node;

std::shared_ptr<Node> AppendSection(const std::shared_ptr<Node>& parent, const std::string& name) {
    auto section = std::make_shared<Node>();
    section->parent = parent;
    section->depth = parent->depth + 1;
    parent->sections[name].push_back(section);
    return section;
}

namespace {

/// No configuration has more sections of one name; a larger number is a mistake of the caller that
/// must not fill the memory.
constexpr int cMaxSections = 100000;

constexpr std::size_t cMaxFileBytes = std::size_t{1} << 30U;

/// Two figures that are the same after saving and loading: not-a-number equals itself, and the two
/// zeros differ.
template <class T>
bool SameNumber(T a, T b) {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

struct SameValue {
    template <class A, class B>
    bool operator()(const A&, const B&) const {
        return false;
    }
    template <class T>
    bool operator()(const T& a, const T& b) const {
        return a == b;
    }
    bool operator()(double a, double b) const { return SameNumber(a, b); }
    bool operator()(const std::vector<float>& a, const std::vector<float>& b) const {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameNumber<float>);
    }
    bool operator()(const NCDataMatrix<float>& a, const NCDataMatrix<float>& b) const {
        return a.SizeRows() == b.SizeRows() && a.SizeColumns() == b.SizeColumns() &&
               std::equal(a.Cells().begin(),
                          a.Cells().end(),
                          b.Cells().begin(),
                          b.Cells().end(),
                          SameNumber<float>);
    }
};

bool SameNode(const Node& a, const Node& b) {
    const auto sameKey = [](const auto& keyA, const auto& keyB) {
        return keyA.first == keyB.first && std::visit(SameValue(), keyA.second, keyB.second);
    };
    const auto sameChild = [](const auto& childA, const auto& childB) {
        return SameNode(*childA, *childB);
    };
    const auto sameList = [&](const auto& listA, const auto& listB) {
        return listA.first == listB.first && std::equal(listA.second.begin(),
                                                        listA.second.end(),
                                                        listB.second.begin(),
                                                        listB.second.end(),
                                                        sameChild);
    };
    return std::equal(a.keys.begin(), a.keys.end(), b.keys.begin(), b.keys.end(), sameKey) &&
           std::equal(a.sections.begin(),
                      a.sections.end(),
                      b.sections.begin(),
                      b.sections.end(),
                      sameList);
}

/// Handle of a section of a store.
class StoreSection final : public ConfigurationSection {
  public:
    explicit StoreSection(std::shared_ptr<Node> node) : node_(std::move(node)) {}

    void RemoveSection(const std::string& name) override { node_->sections.erase(name); }

    std::unique_ptr<const ConfigurationSection> OpenSection(const std::string& name,
                                                            int index) const override {
        if (index < 1 || index > SectionCount(name)) {
            return nullptr;
        }
        return std::make_unique<StoreSection>(Child(name, index));
    }
    std::unique_ptr<const ConfigurationSection> OpenSection(
        const std::string& name) const override {
        return OpenSection(name, 1);
    }

    std::unique_ptr<ConfigurationSection> OpenOrCreateSection(const std::string& name,
                                                              int index) override {
        const int count = SectionCount(name);
        if (index < 1 || (index > count && index > cMaxSections)) {
            throw InvalidOperationException("OpenOrCreateSection: no such section number");
        }
        if (index > count && node_->depth >= Node::cMaxDepth) {
            throw InvalidOperationException("OpenOrCreateSection: the sections nest too deeply");
        }
        for (int i = count; i < index; ++i) {
            AppendSection(node_, name);
        }
        return std::make_unique<StoreSection>(Child(name, index));
    }
    std::unique_ptr<ConfigurationSection> OpenOrCreateSection(const std::string& name) override {
        return OpenOrCreateSection(name, 1);
    }

    int SectionCount(const std::string& name) const override {
        const auto found = node_->sections.find(name);
        return found != node_->sections.end() ? static_cast<int>(found->second.size()) : 0;
    }

    void RemoveThis() override {
        if (const std::shared_ptr<Node> parent = node_->parent.lock()) {
            RemoveFrom(*parent);
        }
        node_->keys.clear();
        node_->sections.clear();
    }

    bool ReadBool(const char* key, bool* value) const override { return Read(key, value); }
    bool ReadInt(const char* key, int* value) const override { return Read(key, value); }
    bool ReadString(const char* key, std::string* value) const override { return Read(key, value); }
    bool ReadMatrix(const char* key, NCDataMatrix<float>* value) const override {
        return Read(key, value);
    }
    bool ReadIntVector(const char* key, std::vector<int>* value) const override {
        return Read(key, value);
    }
    bool ReadFloatVector(const char* key, std::vector<float>* value) const override {
        return Read(key, value);
    }
    bool ReadDouble(const char* key, double* value) const override {
        int whole = 0;
        if (Read(key, &whole)) {
            *value = whole;
            return true;
        }
        return Read(key, value);
    }
    bool ReadFloat(const char* key, float* value) const override {
        double wide = 0;
        if (!ReadDouble(key, &wide)) {
            return false;
        }
        // A double setting may lie outside what a float can hold; that is another kind of value.
        if (std::isfinite(wide) && std::fabs(wide) > std::numeric_limits<float>::max()) {
            return false;
        }
        *value = static_cast<float>(wide);
        return true;
    }
    int ReadStringList(const char* key,
                       std::vector<std::string>* value,
                       char separator) const override {
        if (std::string text; Read(key, &text)) {
            *value = QvStdString::Split(text, std::string_view(&separator, 1));
        } else if (!Read(key, value)) {
            return 0;
        }
        return static_cast<int>(value->size());
    }

    void WriteBool(const char* key, bool value) override { Write(key, value); }
    void WriteDouble(const char* key, double value) override { Write(key, value); }
    void WriteInt(const char* key, int value) override { Write(key, value); }
    void WriteMatrix(const char* key, const NCDataMatrix<float>& value) override {
        Write(key, value);
    }
    void WriteIntVector(const char* key, const std::vector<int>& value) override {
        Write(key, value);
    }
    void WriteFloatVector(const char* key, const std::vector<float>& value) override {
        Write(key, value);
    }
    // The items are kept one by one, so no item can be torn apart at the separator.
    void WriteStringList(const char* key,
                         const std::vector<std::string>& value,
                         char /*separator*/) override {
        Write(key, value);
    }
    void Flush() override {}

  private:
    void WriteString(const char* key, const std::string& value) override { Write(key, value); }

    [[nodiscard]] const std::shared_ptr<Node>& Child(const std::string& name, int index) const {
        return node_->sections.at(name)[static_cast<std::size_t>(index - 1)];
    }

    void RemoveFrom(Node& parent) {
        for (auto list = parent.sections.begin(); list != parent.sections.end(); ++list) {
            auto& children = list->second;
            const auto found = std::find(children.begin(), children.end(), node_);
            if (found != children.end()) {
                children.erase(found);
                if (children.empty()) {
                    parent.sections.erase(list);
                }
                return;
            }
        }
    }

    template <class T>
    bool Read(const char* key, T* value) const {
        const auto found = node_->keys.find(key);
        const T* const held = found != node_->keys.end() ? std::get_if<T>(&found->second) : nullptr;
        if (held == nullptr) {
            return false;
        }
        *value = *held;
        return true;
    }

    template <class T>
    void Write(const char* key, const T& value) {
        node_->keys.insert_or_assign(key, ConfigurationValue(std::in_place_type<T>, value));
    }

    std::shared_ptr<Node> node_;
};

}  // namespace

ConfigurationStore::ConfigurationStore() : root_(std::make_shared<Node>()) {}
ConfigurationStore::ConfigurationStore(ConfigurationStore&&) noexcept = default;
ConfigurationStore& ConfigurationStore::operator=(ConfigurationStore&&) noexcept = default;
ConfigurationStore::~ConfigurationStore() = default;

std::unique_ptr<ConfigurationSection> ConfigurationStore::OpenRoot() {
    return std::make_unique<StoreSection>(root_);
}

std::unique_ptr<const ConfigurationSection> ConfigurationStore::OpenRoot() const {
    return std::make_unique<StoreSection>(root_);
}

void ConfigurationStore::SaveToFile(const std::string& path) const {
    std::string text;
    try {
        text = ToText();
    } catch (const InvalidOperationException& error) {
        throw Exception(ExceptionMessage::translate("The file {1} cannot be written: {2}")
                        << path << error.what());
    }
    QvFile::ReplaceAll(path, text);
}

ConfigurationStore ConfigurationStore::LoadFromFile(const std::string& path) {
    return FromText(QvFile::ReadAll(path, cMaxFileBytes), path);
}

std::string ConfigurationStore::ToText() const {
    return WriteConfigurationText(*root_);
}

ConfigurationStore ConfigurationStore::FromText(const std::string& text,
                                                const std::string& source) {
    ConfigurationStore store;
    ReadConfigurationText(text, source, store.root_);
    return store;
}

bool operator==(const ConfigurationStore& a, const ConfigurationStore& b) {
    return SameNode(*a.root_, *b.root_);
}
