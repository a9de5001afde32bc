#include "host/TextTable.h"

#include <algorithm>

namespace {

std::size_t WidthOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

bool LooksLikeNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789.+-e") == std::string::npos &&
           text.find_first_of("0123456789") != std::string::npos;
}

struct Column {
    std::size_t width = 0;
    bool right = true;
};

std::vector<Column> Measure(const std::vector<std::string>& header,
                            const std::vector<std::vector<std::string>>& lines) {
    std::vector<Column> columns(header.size());
    for (std::size_t i = 0; i < header.size(); ++i) {
        columns[i].width = WidthOf(header[i]);
        for (const auto& line : lines) {
            columns[i].width = std::max(columns[i].width, WidthOf(line.at(i)));
            columns[i].right = columns[i].right && LooksLikeNumber(line.at(i));
        }
    }
    return columns;
}

void AppendLine(std::string& text,
                const std::vector<std::string>& cells,
                const std::vector<Column>& columns) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::string padding(columns[i].width - WidthOf(cells[i]), ' ');
        line += (i > 0 ? "  " : "") + (columns[i].right ? padding + cells[i] : cells[i] + padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
}

}  // namespace

std::string FormatTable(const std::vector<std::string>& header,
                        const std::vector<std::vector<std::string>>& lines) {
    const std::vector<Column> columns = Measure(header, lines);
    std::vector<std::string> rule;
    rule.reserve(columns.size());
    for (const Column& column : columns) {
        rule.emplace_back(column.width, '-');
    }
    std::string text;
    AppendLine(text, header, columns);
    AppendLine(text, rule, columns);
    for (const auto& line : lines) {
        AppendLine(text, line, columns);
    }
    return text;
}
