/// What tools print for people.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ZUNO::Tools {

/// A number with six digits at most, as much as people compare by eye.
std::string numberText(double number);

/// A number of bytes with its unit: "106.6 KiB".
std::string bytesText(std::uint64_t bytes);

/// Rows under headings: numbers stand with their decimal points under each other, words to the
/// left.
class Table {
public:
    using Row = std::vector<std::string>;

    explicit Table(const Row& headings) : mRows{headings} {}
    /// Adds a row with a cell for each heading.
    void add(const Row& row) { mRows.push_back(row); }
    /// Returns a line for each row, without the last line's end.
    std::string text() const;

private:
    std::vector<Row> mRows;
};

} // namespace ZUNO::Tools
