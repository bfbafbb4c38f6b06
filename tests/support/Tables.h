// Tables of cases: files of this tree, tab-separated ones of the public data, and the count of what
// became of their rows. One thread.
#ifndef QEL_TESTS_SUPPORT_TABLES_H
#define QEL_TESTS_SUPPORT_TABLES_H

#include <map>
#include <string>
#include <vector>

namespace qel::test {

using Row = std::map<std::string, std::string>;

[[nodiscard]] std::vector<std::string> split(const std::string& text, char separator);

// The cases of a file below tests/, which are parted by empty lines:
//
//   # A remark.
//   every third day                      the sentence, field "case"
//     record: 1 from 20050615 every 3    fields, as their test names them
//     dates: 20050615 20050618
//
// A field that stands there again goes on with its next line. In a value \n, \r, \t, \s (a blank),
// \\ and \xNN are characters. Throws std::runtime_error where there is nothing to read.
[[nodiscard]] std::vector<Row> cases(const std::string& file);

// The rows of a file below tests/ that has a case on each line, with the fields' names first:
//
//   zone | local           | utc
//   11   | 20050615T083000 | 20050615T123000Z
//
// Remarks, escapes and failures as above.
[[nodiscard]] std::vector<Row> list(const std::string& file);

// A field as a number; `otherwise` where it is not there.
[[nodiscard]] int number(Row& row, const std::string& field, int otherwise = 0);

// The rows of tables/NAME by column name; empty when the table is not there.
[[nodiscard]] std::vector<Row> table(const std::string& name);

// The rows by what became of them and why.
struct Tally {
    std::map<std::string, int> counts;

    void add(const std::string& outcome, const std::string& reason);
    // Of the outcomes that begin so.
    [[nodiscard]] int total(const std::string& outcome) const;
    // Shows all counts; the result is the number of rows.
    int print(const std::string& name) const;
};

}  // namespace qel::test

#endif
