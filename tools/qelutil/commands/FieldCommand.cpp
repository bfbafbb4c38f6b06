// qelutil field: what the connector's numeric field identifiers stand for.
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include "QelUtility/BxFieldIDs.h"
#include "base/Json.h"
#include "base/Text.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

struct Options {
    std::vector<std::string> wanted;
    std::string type;
    bool list = false;
    bool json = false;
};

struct RecordType {
    const char* name;
    // How many fields there are of each access type.
    std::array<unsigned, 4> counts;
};

// In the order of their numbers, from 1.
constexpr std::array<RecordType, 5> kRecords = {{{"event", {38, 2, 0, 14}},
                                                 {"todo", {38, 2, 0, 14}},
                                                 {"contact", {49, 3, 44, 57}},
                                                 {"note", {10, 0, 0, 2}},
                                                 {"email", {34, 2, 0, 3}}}};
constexpr std::array<const char*, 4> kAccess = {"property", "multi", "sub-item", "value"};

const char* dataTypeName(int type) {
    switch (type) {
        case FIELD_TYPE_TITLE:
            return "title";
        case FIELD_TYPE_TEXT:
            return "text";
        case FIELD_TYPE_DATE:
            return "date";
        case FIELD_TYPE_START_TIME:
            return "start-time";
        case FIELD_TYPE_DATE_TIME:
            return "date-time";
        default:
            return "unknown";
    }
}

std::string hex(unsigned value, int digits) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%0*X", digits, value);
    return text;
}

bool equalNoCase(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

// "0x34000007" or "34000007"; no name of a field is eight hexadecimal digits long.
std::optional<unsigned> idOf(const std::string& text) {
    const bool prefixed = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const std::string digits = prefixed ? text.substr(2) : text;
    const bool all = digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!all || digits.empty() || digits.size() > 8 || (!prefixed && digits.size() != 8)) return {};
    return static_cast<unsigned>(std::stoul(digits, nullptr, 16));
}

// Why an identifier names no field.
std::string whyNone(unsigned id) {
    const unsigned record = id >> 28U;
    const unsigned access = id >> 24U & 0xFU;
    const unsigned index = id & 0xFFFFFFU;
    if (record < 1 || record > kRecords.size())
        return "there is no record type " + std::to_string(record) + ", only 1 to 5";
    if (access < 1 || access > kAccess.size())
        return "there is no access type " + std::to_string(access) + ", only 1 to 4";
    const RecordType& type = kRecords[record - 1];
    const unsigned count = type.counts[access - 1];
    const std::string kind = std::string("of the record type ") + type.name +
                             " and the access type " + kAccess[access - 1];
    if (count == 0) return "there are none " + kind;
    return "those " + kind + " have the indexes 0 to " + std::to_string(count - 1) + ", and not " +
           std::to_string(index);
}

FieldData lookUp(unsigned id) {
    FieldData data{};
    if (BxUtil_GetFieldDataByID(id, &data) != 0)
        throw InputError(hex(id, 8) + " names no field: " + whyNone(id));
    return data;
}

std::vector<FieldData> fieldsOf(unsigned record) {
    std::vector<FieldData> fields;
    for (unsigned access = 1; access <= kAccess.size(); ++access)
        for (unsigned index = 0; index < kRecords[record - 1].counts[access - 1]; ++index)
            fields.push_back(lookUp(record << 28U | access << 24U | index));
    return fields;
}

Json jsonOf(const FieldData& field) {
    Json document;
    document["id"] = hex(field.fieldId, 8);
    document["name"] = field.name;
    document["record"] = kRecords[field.recordType - 1].name;
    document["access"] = kAccess[field.accessType - 1];
    document["property"] = field.propertyName;
    document["propertyId"] = hex(field.propertyId, 8);
    document["dataType"] = dataTypeName(field.dataType);
    document["components"] = field.componentCount;
    document["maxLength"] = field.maxLength;
    document["selector"] = hex(field.selector, 1);
    document["occurrence"] = field.occurrence;
    document["valueIndex"] = field.valueIndex;
    return document;
}

void writeRow(std::ostream& out, const FieldData& field) {
    char row[256];
    std::snprintf(row, sizeof(row), "0x%08X  %-7s  %-8s  %-30s", field.fieldId,
                  kRecords[field.recordType - 1].name, kAccess[field.accessType - 1], field.name);
    out << row << ' ' << dataTypeName(field.dataType) << ", up to " << field.maxLength;
    if (field.componentCount == -5) out << ", a list";
    if (field.componentCount > 1) out << ", " << field.componentCount << " parts";
    if (field.propertyId != field.fieldId) out << ", in " << field.propertyName;
    if (field.accessType == FIELD_SUB_ITEM || field.selector != 0)
        out << ", type bits " << hex(field.selector, 1) << ", occurrence " << field.occurrence;
    if (field.accessType == FIELD_VALUE)
        out << (field.valueIndex < 0 ? ", derived value " : ", part ") << field.valueIndex;
    out << '\n';
}

// The fields of the record types that --type leaves, all of them or those of one name.
std::vector<FieldData> select(const std::string& type, const std::string* name) {
    std::vector<FieldData> selected;
    for (unsigned record = 1; record <= kRecords.size(); ++record) {
        if (!type.empty() && type != kRecords[record - 1].name) continue;
        for (const FieldData& field : fieldsOf(record))
            if (name == nullptr || equalNoCase(field.name, *name)) selected.push_back(field);
    }
    return selected;
}

// The fields that one word of the command line names.
std::vector<FieldData> find(Context& context, const std::string& type, const std::string& wanted) {
    if (const auto id = idOf(wanted)) {
        try {
            return {lookUp(*id)};
        } catch (const InputError& problem) {
            context.error(problem.what());
            return {};
        }
    }
    std::vector<FieldData> named = select(type, &wanted);
    if (named.empty())
        context.error("no field is named \"" + wanted + "\"; see `qelutil field --list`");
    return named;
}

void run(Context& context, const Options& options) {
    if (options.list == !options.wanted.empty())
        throw UsageError(options.list ? "--list takes no field" : "name a field, or --list them");
    std::vector<FieldData> found;
    if (options.list) found = select(options.type, nullptr);
    for (const std::string& wanted : options.wanted) {
        const std::vector<FieldData> fields = find(context, options.type, wanted);
        found.insert(found.end(), fields.begin(), fields.end());
    }
    if (options.json) {
        Json document = Json::array();
        for (const FieldData& field : found) document.push_back(jsonOf(field));
        writeJson(context.out, "field", {{"fields", document}});
    } else {
        for (const FieldData& field : found) writeRow(context.out, field);
    }
}

}  // namespace

void addFieldCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("field", "The fields of calendars, contacts, notes, mail");
    command->add_option("FIELD", options->wanted, "an ID in hexadecimal, or a name")->type_name("");
    command->add_option("--type", options->type, "only this record type")
        ->check(CLI::IsMember({"event", "todo", "contact", "note", "email"}));
    command->add_flag("--list", options->list, "list all fields, or those of --type");
    command->add_flag("--json", options->json, "print the facts as JSON");
    command->footer(
        "An ID is the record type (1 event, 2 todo, 3 contact, 4 note, 5 email), the access type\n"
        "(1 property, 2 multi, 3 sub-item, 4 value) and six digits of index.\n"
        "Examples:\n"
        "  qelutil field 0x34000007\n"
        "  qelutil field --type contact Phone_Cell BDAY\n"
        "  qelutil field --list --type note --json");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
