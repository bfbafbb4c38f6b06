#include "support/Tables.h"

#include <fstream>
#include <iostream>
#include <sstream>

namespace qel::test {

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> items;
    std::istringstream in(text);
    for (std::string item; std::getline(in, item, separator);) items.push_back(item);
    return items;
}

std::vector<Row> table(const std::string& name) {
    std::ifstream in(std::string(QEL_TEST_SHARED_DATA) + "/tables/" + name);
    std::vector<Row> rows;
    std::string line;
    std::getline(in, line);
    const std::vector<std::string> columns = split(line, '\t');
    while (std::getline(in, line)) {
        const std::vector<std::string> fields = split(line, '\t');
        Row row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            row[columns[i]] = i < fields.size() ? fields[i] : "";
        }
        rows.push_back(row);
    }
    return rows;
}

void Tally::add(const std::string& outcome, const std::string& reason) {
    ++counts[outcome + ": " + reason];
}

int Tally::total(const std::string& outcome) const {
    int sum = 0;
    for (const auto& [key, count] : counts) sum += key.starts_with(outcome) ? count : 0;
    return sum;
}

int Tally::print(const std::string& name) const {
    std::cout << name << ": " << total("") << " rows, " << total("agree") << " agree\n";
    for (const auto& [key, count] : counts) std::cout << "  " << count << " " << key << "\n";
    return total("");
}

}  // namespace qel::test
