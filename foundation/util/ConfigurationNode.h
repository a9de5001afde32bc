#pragma once

#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/util/ConfigurationStore.h"

/// What a key can hold. Not part of what is installed.
using ConfigurationValue = std::variant<bool,
                                        int,
                                        double,
                                        std::string,
                                        std::vector<std::string>,
                                        std::vector<int>,
                                        std::vector<float>,
                                        NCDataMatrix<float>>;

/// A section of the tree. Handles share the nodes, so a section that was removed lives on, cut off
/// from the tree, until its last handle is gone.
struct ConfigurationStore::Node {
    /// Levels of sections below the root. Trees are walked by recursion, and what is saved must be
    /// readable by the text reader, which limits the nesting, too.
    static constexpr int cMaxDepth = 64;

    std::map<std::string, ConfigurationValue> keys;
    std::map<std::string, std::vector<std::shared_ptr<Node>>> sections;
    std::weak_ptr<Node> parent;
    int depth = 0;
};

/// A new section behind the others of that name.
std::shared_ptr<ConfigurationStore::Node> AppendSection(
    const std::shared_ptr<ConfigurationStore::Node>& parent, const std::string& name);
