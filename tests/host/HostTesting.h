#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "QORVAncdoe.h"
#include "host/StudyFile.h"

/// Shared by the host's tests.
namespace HostTesting {

/// A study of quantitative factors A, B, C and so on from 10 to 20, with more members behind.
inline std::string Quantitatives(int count, const std::string& more = "") {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i > 0 ? "," : "") + std::string(R"({"name":")") + static_cast<char>('A' + i) +
                R"(","type":"Quantitative","low":10,"high":20})";
    }
    return R"({"factors":[)" + text + "]" + (more.empty() ? "" : "," + more) + "}";
}

/// A study whose only factor is the given JSON.
inline std::string OneFactor(const std::string& factor) {
    return R"({"factors":[)" + factor + "]}";
}

/// The text of the Exception that reading the study raises, or an empty text.
inline std::string ReadingError(const std::string& text) {
    try {
        static_cast<void>(ReadStudy(text, "s.json"));
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

inline void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string ReadFile(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace HostTesting
