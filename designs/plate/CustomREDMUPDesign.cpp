#include "designs/plate/CustomREDMUPDesign.h"

#include <algorithm>
#include <limits>
#include <utility>

CustomREDMUPDesign::CustomREDMUPDesign(const char* shortString,
                                       const char* displayName,
                                       const char* description,
                                       std::string data,
                                       unsigned int strength)
    : DesignBuilder(shortString, displayName, description),
      data_(std::move(data)),
      priority_(strength) {}

std::string CustomREDMUPDesign::GetDesignData() const {
    return data_;
}

unsigned char CustomREDMUPDesign::GetPriority(const Factors& /*factors*/) const {
    constexpr unsigned int cWeakest = std::numeric_limits<unsigned char>::max();
    // 0 would mean no opinion, and a row is always meant to be proposed.
    return static_cast<unsigned char>(std::clamp(priority_, 1U, cWeakest));
}
