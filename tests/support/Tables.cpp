#include "support/Tables.h"

#include <algorithm>
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

std::string trimmed(const std::string& text) {
    const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

// Without remarks and the blanks around each line.
std::vector<std::string> linesOf(const std::string& file) {
    std::ifstream in(std::string(QEL_TEST_SOURCE_DIR) + "/tests/" + file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        std::erase(line, '\r');
        line = trimmed(line);
        if (line[0] != '#') lines.push_back(line);
    }
    if (lines.empty()) throw std::runtime_error("no cases in " + file);
    return lines;
}

}  // namespace

std::vector<Row> cases(const std::string& file) {
    std::vector<Row> rows;
    bool inCase = false;
    for (const std::string& line : linesOf(file)) {
        if (line.empty()) {
            inCase = false;
        } else if (!inCase) {
            rows.push_back({{"case", unescaped(line)}});
            inCase = true;
        } else {
            const std::size_t colon = line.find(':');
            if (colon == std::string::npos) throw std::runtime_error(file + ": no field: " + line);
            const std::string value = unescaped(line.substr(std::min(colon + 2, line.size())));
            const auto [field, isNew] = rows.back().emplace(line.substr(0, colon), value);
            if (!isNew) field->second += "\n" + value;
        }
    }
    return rows;
}

std::vector<Row> list(const std::string& file) {
    std::vector<Row> rows;
    std::vector<std::string> names;
    for (const std::string& line : linesOf(file)) {
        if (line.empty()) continue;
        std::vector<std::string> fields = split(line, '|');
        for (std::string& field : fields) field = unescaped(trimmed(field));
        if (names.empty()) {
            names = fields;
            continue;
        }
        Row row;
        for (std::size_t i = 0; i < fields.size(); ++i) row[names.at(i)] = fields[i];
        rows.push_back(row);
    }
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
        for (std::size_t i = 0; i < columns.size(); ++i)
            row[columns[i]] = i < fields.size() ? fields[i] : "";
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
