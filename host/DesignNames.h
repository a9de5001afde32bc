#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QORVAncdoe.h"

using BuilderHandle = std::shared_ptr<const DesignBuilder>;

/// The family of that short or display name, whatever the case of its letters; short names come
/// first. An empty handle when there is none.
[[nodiscard]] BuilderHandle FindBuilder(const std::string& name);

/// The short names of all families but the rows made for plates, each once, in registry order.
[[nodiscard]] std::vector<std::string> AllDesignNames();
