#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One record of comma-separated values.
struct CsvRecord {
    int line = 0;  // of the text, from 1, where it begins
    std::vector<std::string> fields;
};

/// Reads comma-separated values as RFC 4180 tells: fields in quotes may hold commas, line ends and
/// doubled quotes. Lines end by a line feed with or without a carriage return, a byte order mark is
/// passed over, and so are lines without anything in them. Blanks around unquoted fields are no
/// part of them.
/// @param file names the text in errors
/// @throws Exception naming the line: quotes that do not end, or text behind closing quotes
[[nodiscard]] std::vector<CsvRecord> ReadCsv(std::string_view text, const std::string& file);
