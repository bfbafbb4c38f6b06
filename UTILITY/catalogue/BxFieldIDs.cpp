#include "QelUtility/BxFieldIDs.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "QelUtility/BxTrace.h"
#include "catalogue/CalendarFields.h"
#include "catalogue/ContactFields.h"
#include "catalogue/FieldTables.h"
#include "catalogue/MessageFields.h"

namespace qel::catalogue {
namespace {

constexpr char kSourceName[] = "BxFieldIDs";

// Thirteen fields of 32 bits each where pointers have 32.
static_assert(offsetof(FieldData, name) == 11 * 4 + (sizeof(void*) - 4) &&
              sizeof(FieldData) == offsetof(FieldData, name) + 2 * sizeof(void*));

// By record type less 1.
constexpr std::array<FieldTables, 5> kTables{
    CalendarTables<FIELD_EVENT>::kTables, CalendarTables<FIELD_TODO>::kTables,
    ContactTables::kTables, NoteTables::kTables, EmailTables::kTables};

// A copy, because g++ 12 under its sanitizers takes no row's address in a constant expression.
template <typename Row>
constexpr std::optional<Row> rowAt(std::span<const Row> rows, std::uint32_t id) {
    const std::uint32_t index = id & kIndexMask;
    return index < rows.size() ? std::optional<Row>(rows[index]) : std::nullopt;
}

constexpr FieldAccessType accessOf(std::uint32_t id) {
    return static_cast<FieldAccessType>(id >> 24 & 0x0F);
}

constexpr void takeProperty(const PropertyRow& row, FieldData& data) {
    data.dataType = row.dataType;
    data.componentCount = row.componentCount;
    data.maxLength = row.maxLength;
    data.propertyName = row.name;
}

constexpr void takeSubItem(const SubItemRow& row, FieldData& data) {
    data.propertyId = row.propertyId;
    data.selector = row.selector;
    data.occurrence = row.occurrence;
}

// The functions below complete `data` and give null, or the reason why they cannot.

constexpr const char* describeProperty(const std::optional<PropertyRow>& row, const char* missing,
                                       FieldData& data) {
    if (!row) return missing;
    data.propertyId = data.fieldId;
    data.name = row->name;
    takeProperty(*row, data);
    return nullptr;
}

constexpr const char* describeSubItem(const FieldTables& tables, FieldData& data) {
    const auto row = rowAt(tables.subItems, data.fieldId);
    if (!row) return "Invalid table pointer (sub item)";
    data.name = row->name;
    takeSubItem(*row, data);
    const auto property = rowAt(tables.multi, row->propertyId);
    if (!property) return "Invalid pointer (remaining attributes)";
    takeProperty(*property, data);
    return nullptr;
}

constexpr const char* describeValue(const FieldTables& tables, FieldData& data) {
    const auto row = rowAt(tables.values, data.fieldId);
    if (!row) return "Invalid table pointer (field value)";
    data.name = row->name;
    data.valueIndex = row->valueIndex;
    switch (accessOf(row->parentId)) {
        case FIELD_BASIC_PROPERTY: {
            const auto parent = rowAt(tables.basic, row->parentId);
            if (!parent) return "Invalid parent basic prop";
            data.propertyId = row->parentId;
            takeProperty(*parent, data);
            return nullptr;
        }
        case FIELD_SUB_ITEM: {
            const auto parent = rowAt(tables.subItems, row->parentId);
            if (!parent) return "Invalid parent sub-item prop";
            takeSubItem(*parent, data);
            const auto property = rowAt(tables.multi, parent->propertyId);
            if (!property) return "Invalid parent basic prop (remaining)";
            takeProperty(*property, data);
            return nullptr;
        }
        default:
            return "Unknown sub item access type";
    }
}

// `data` holds the three parts of the identifier and zeros.
constexpr const char* describe(FieldData& data) {
    if (data.recordType < 1 || data.recordType > kTables.size()) return "Unknown record type";
    const FieldTables& tables = kTables[data.recordType - 1];
    const char* problem = nullptr;
    switch (data.accessType) {
        case FIELD_BASIC_PROPERTY:
            problem = describeProperty(rowAt(tables.basic, data.fieldId),
                                       "Invalid table pointer (basic prop)", data);
            break;
        case FIELD_MULTI_PROPERTY:
            problem = describeProperty(rowAt(tables.multi, data.fieldId),
                                       "Invalid table pointer (multi prop)", data);
            break;
        case FIELD_SUB_ITEM:
            problem = describeSubItem(tables, data);
            break;
        case FIELD_VALUE:
            problem = describeValue(tables, data);
            break;
        default:
            problem = "Unknown field access type";
            break;
    }
    if (problem != nullptr) return problem;
    data.propertyIndex = data.propertyId & kIndexMask;
    // Deliberately loose: a multi property's index is held against both tables together too.
    if (data.propertyIndex >= tables.basic.size() + tables.multi.size())
        return "Invalid parent property index";
    return nullptr;
}

constexpr FieldData split(std::uint32_t id) {
    FieldData data{};
    data.accessType = accessOf(id);
    data.recordType = id >> 28;
    data.fieldId = id;
    return data;
}

// --- Every field, described at compile time ------------------------------------------------------

constexpr std::size_t kAccessTypes = 4;

constexpr std::size_t fieldsOf(const FieldTables& tables, std::size_t access) {
    switch (access) {
        case FIELD_BASIC_PROPERTY:
            return tables.basic.size();
        case FIELD_MULTI_PROPERTY:
            return tables.multi.size();
        case FIELD_SUB_ITEM:
            return tables.subItems.size();
        default:
            return tables.values.size();
    }
}

// Where the fields of a record and access type begin in kFields, each type less 1; one more entry
// for the end of the last.
constexpr auto kFirstFields = [] {
    std::array<std::uint16_t, kTables.size() * kAccessTypes + 1> first{};
    for (std::size_t i = 0; i + 1 < first.size(); ++i) {
        const std::size_t count = fieldsOf(kTables[i / kAccessTypes], i % kAccessTypes + 1);
        first[i + 1] = static_cast<std::uint16_t>(first[i] + count);
    }
    return first;
}();

constexpr auto kFields = [] {
    std::array<FieldData, kFirstFields.back()> fields{};
    for (std::size_t i = 0; i + 1 < kFirstFields.size(); ++i) {
        for (std::size_t at = kFirstFields[i]; at < kFirstFields[i + 1]; ++at) {
            fields[at] = split(fieldId(static_cast<FieldRecordType>(i / kAccessTypes + 1),
                                       static_cast<FieldAccessType>(i % kAccessTypes + 1),
                                       at - kFirstFields[i]));
            if (describe(fields[at]) != nullptr) throw "a field cannot be described";
        }
    }
    return fields;
}();

// Null for an identifier that names no field.
const FieldData* findField(std::uint32_t id) {
    const std::uint32_t record = (id >> 28) - 1;
    const std::uint32_t access = accessOf(id) - 1U;
    if (record >= kTables.size() || access >= kAccessTypes) return nullptr;
    const std::size_t type = record * kAccessTypes + access;
    const std::size_t at = kFirstFields[type] + (id & kIndexMask);
    return at < kFirstFields[type + 1] ? &kFields[at] : nullptr;
}

}  // namespace
}  // namespace qel::catalogue

int BxUtil_GetFieldDataByID(unsigned long fieldId, FieldData* out) {
    if (out == nullptr)
        return BxTrace_Error_S(qel::catalogue::kSourceName, __LINE__, "No field data", QEL_FAILED);
    const auto id = static_cast<std::uint32_t>(fieldId & 0xFFFFFFFF);
    if (const FieldData* field = qel::catalogue::findField(id); field != nullptr) {
        *out = *field;
        return QEL_OK;
    }
    FieldData data = qel::catalogue::split(id);
    out->accessType = data.accessType;
    out->recordType = data.recordType;
    out->fieldId = data.fieldId;
    return BxTrace_Error_S(qel::catalogue::kSourceName, __LINE__, qel::catalogue::describe(data),
                           QEL_FAILED);
}
