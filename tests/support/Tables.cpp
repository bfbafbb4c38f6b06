#include "support/Tables.h"

#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace qel::test {

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> items;
    std::istringstream in(text);
    for (std::string item; std::getline(in, item, separator);) items.push_back(item);
    return items;
}

namespace {

std::string unescaped(const std::string& text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            result += text[at];
            continue;
        }
        const char kind = text.at(++at);
        const std::size_t known = std::string_view("nrts\\").find(kind);
        if (known != std::string_view::npos) {
            result += "\n\r\t \\"[known];
        } else if (kind == 'x') {
            result += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            throw std::runtime_error("no such escape: " + text);
        }
    }
    return result;
}

}  // namespace

std::vector<Row> cases(const std::string& file) {
    std::ifstream in(std::string(QEL_TEST_SOURCE_DIR) + "/tests/" + file, std::ios::binary);
    std::vector<Row> rows;
    bool inCase = false;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string::npos) {
            inCase = false;
        } else if (line[start] == '#') {
            continue;
        } else if (!inCase) {
            rows.push_back({{"case", line.substr(start)}});
            inCase = true;
        } else {
            const std::size_t colon = line.find(':', start);
            if (colon == std::string::npos) throw std::runtime_error(file + ": no field: " + line);
            const std::size_t value = line.find_first_not_of(' ', colon + 1);
            rows.back()[line.substr(start, colon - start)] =
                value == std::string::npos ? "" : unescaped(line.substr(value));
        }
    }
    if (rows.empty()) throw std::runtime_error("no cases in " + file);
    return rows;
}

int number(Row& row, const std::string& field, int otherwise) {
    return row[field].empty() ? otherwise : std::stoi(row[field]);
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
