#include "tools/output/table.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace ZUNO::Tools {

namespace {

constexpr std::size_t gap = 3; // between columns

bool isNumber(const std::string& cell) {
    const std::size_t first = cell.starts_with('-') ? 1 : 0;
    return first < cell.size() && std::isdigit(static_cast<unsigned char>(cell[first])) != 0;
}

/// How much of a cell stands before its decimal point.
std::size_t headOf(const std::string& cell) {
    return std::min(cell.find('.'), cell.size());
}

/// The cells of a column, made equally wide.
std::vector<std::string> alignedColumn(const std::vector<Table::Row>& rows, std::size_t column) {
    std::size_t head = 0; // of the longest number
    std::size_t tail = 0;
    std::size_t width = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::string& cell = rows[i][column];
        if (i > 0 && isNumber(cell)) {
            head = std::max(head, headOf(cell));
            tail = std::max(tail, cell.size() - headOf(cell));
        }
        width = std::max(width, cell.size());
    }
    width = std::max(width, head + tail);
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::string cell = rows[i][column];
        if (i > 0 && isNumber(cell)) {
            cell.append(tail - (cell.size() - headOf(cell)), ' ');
            cell.insert(0, width - cell.size(), ' ');
        } else if (i == 0 && head > 0) {
            cell.insert(0, width - cell.size(), ' '); // a heading over numbers
        }
        cell.resize(width, ' ');
        cells.push_back(cell);
    }
    return cells;
}

} // namespace

std::string numberText(double number) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.6g", number);
    return text;
}

std::string bytesText(std::uint64_t bytes) {
    static constexpr const char* units[] = {"bytes", "KiB", "MiB", "GiB"};
    auto number = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; number >= 1024 && unit + 1 < std::size(units); ++unit)
        number /= 1024;
    char text[48];
    std::snprintf(text, sizeof(text), unit == 0 ? "%.0f %s" : "%.1f %s", number, units[unit]);
    return text;
}

std::string Table::text() const {
    std::vector<std::string> lines(mRows.size());
    for (std::size_t column = 0; column < mRows.front().size(); ++column) {
        const std::vector<std::string> cells = alignedColumn(mRows, column);
        for (std::size_t i = 0; i < lines.size(); ++i)
            lines[i] += (column > 0 ? std::string(gap, ' ') : "") + cells[i];
    }
    std::string text;
    for (std::string& line : lines) {
        line.erase(line.find_last_not_of(' ') + 1);
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

} // namespace ZUNO::Tools
