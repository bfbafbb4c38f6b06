// The shape of the field tables, and how they are made at compile time from rows as a person reads
// them: identifiers are counted from the rows' order, parents are named and looked up.
#ifndef QEL_CATALOGUE_FIELDTABLES_H
#define QEL_CATALOGUE_FIELDTABLES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "QelUtility/BxFieldIDs.h"

namespace qel::catalogue {

// Component counts beside the numbers of parts.
constexpr int kSingle = 1;
constexpr int kNeverSplit = -1;
constexpr int kList = -5;

constexpr std::uint32_t kIndexMask = 0x00FFFFFF;

// --- Rows as they are written --------------------------------------------------------------------

struct PropertyText {
    const char* name;
    FieldDataType dataType;
    int componentCount;
    int maxLength;  // in characters
};

struct SubItemText {
    const char* name;
    const char* property;    // the multi property's name
    std::uint32_t selector;  // the type bits that an occurrence must carry
    int occurrence;          // among the matching ones, from 0
};

struct ValueText {
    const char* name;
    const char* parent;  // the name of a basic property or of a sub item
    int valueIndex;
};

// --- Rows as they are looked up ------------------------------------------------------------------

struct PropertyRow {
    std::uint32_t id;
    const char* name;
    int dataType;
    int componentCount;
    int maxLength;
};

struct SubItemRow {
    std::uint32_t id;
    const char* name;
    std::uint32_t propertyId;
    std::uint32_t selector;
    int occurrence;
};

struct ValueRow {
    std::uint32_t id;
    const char* name;
    std::uint32_t parentId;
    int valueIndex;
};

// The four tables of one record type; a table may be empty.
struct FieldTables {
    std::span<const PropertyRow> basic;
    std::span<const PropertyRow> multi;
    std::span<const SubItemRow> subItems;
    std::span<const ValueRow> values;

    constexpr bool hasSizes(std::size_t basicSize, std::size_t multiSize, std::size_t subItemSize,
                            std::size_t valueSize) const {
        return basic.size() == basicSize && multi.size() == multiSize &&
               subItems.size() == subItemSize && values.size() == valueSize;
    }
};

// --- From the one to the other -------------------------------------------------------------------

constexpr std::uint32_t fieldId(FieldRecordType record, FieldAccessType access, std::size_t index) {
    return static_cast<std::uint32_t>(record) << 28 | static_cast<std::uint32_t>(access) << 24 |
           static_cast<std::uint32_t>(index);
}

// The identifier of the row with that name. A name without a row does not compile.
template <typename Row>
constexpr std::uint32_t idOf(std::span<const Row> rows, std::string_view name) {
    for (const Row& row : rows)
        if (row.name == name) return row.id;
    throw "no row has this name";
}

template <typename Row>
constexpr bool hasName(std::span<const Row> rows, std::string_view name) {
    for (const Row& row : rows)
        if (row.name == name) return true;
    return false;
}

template <std::size_t N>
constexpr auto propertyTable(FieldRecordType record, FieldAccessType access,
                             const std::array<PropertyText, N>& texts) {
    std::array<PropertyRow, N> rows{};
    for (std::size_t i = 0; i < N; ++i) {
        const PropertyText& text = texts[i];
        rows[i] = {fieldId(record, access, i), text.name, text.dataType, text.componentCount,
                   text.maxLength};
    }
    return rows;
}

template <std::size_t N>
constexpr auto subItemTable(FieldRecordType record, std::span<const PropertyRow> multi,
                            const std::array<SubItemText, N>& texts) {
    std::array<SubItemRow, N> rows{};
    for (std::size_t i = 0; i < N; ++i) {
        const SubItemText& text = texts[i];
        rows[i] = {fieldId(record, FIELD_SUB_ITEM, i), text.name, idOf(multi, text.property),
                   text.selector, text.occurrence};
    }
    return rows;
}

template <std::size_t N>
constexpr auto valueTable(FieldRecordType record, std::span<const PropertyRow> basic,
                          std::span<const SubItemRow> subItems,
                          const std::array<ValueText, N>& texts) {
    std::array<ValueRow, N> rows{};
    for (std::size_t i = 0; i < N; ++i) {
        const ValueText& text = texts[i];
        const std::uint32_t parent =
            hasName(basic, text.parent) ? idOf(basic, text.parent) : idOf(subItems, text.parent);
        rows[i] = {fieldId(record, FIELD_VALUE, i), text.name, parent, text.valueIndex};
    }
    return rows;
}

}  // namespace qel::catalogue

#endif
