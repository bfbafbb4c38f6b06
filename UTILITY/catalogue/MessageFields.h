// The fields of notes and e-mails.
#ifndef QEL_CATALOGUE_MESSAGEFIELDS_H
#define QEL_CATALOGUE_MESSAGEFIELDS_H

#include "catalogue/FieldTables.h"

namespace qel::catalogue {

constexpr auto kNoteBasic = std::to_array<PropertyText>({
    {"SUMMARY", FIELD_TYPE_TITLE, kSingle, 4001},
    {"BODY", FIELD_TYPE_TEXT, kSingle, 32767},
    {"CATEGORIES", FIELD_TYPE_TEXT, kList, 1008},
    {"CLASS", FIELD_TYPE_TEXT, kSingle, 58},
    {"DCREATED", FIELD_TYPE_TEXT, kSingle, 28},
    {"X-CUSTOM1", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM2", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM3", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM4", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM5", FIELD_TYPE_TEXT, kSingle, 1008},
});

constexpr auto kNoteValues = std::to_array<ValueText>({
    {"Confidential_Flag", "CLASS", -56},
    {"NULL", "SUMMARY", -59},
});

constexpr auto kEmailBasic = std::to_array<PropertyText>({
    {"__ID", FIELD_TYPE_TEXT, kSingle, 208},
    {"TO", FIELD_TYPE_TITLE, kSingle, 4001},
    {"CC", FIELD_TYPE_TEXT, kSingle, 4001},
    {"BCC", FIELD_TYPE_TEXT, kSingle, 4001},
    {"FROM", FIELD_TYPE_TITLE, kSingle, 208},
    {"SUBJECT", FIELD_TYPE_TITLE, kSingle, 1008},
    {"DATE", FIELD_TYPE_TEXT, kSingle, 58},
    {"X-READ-FLAG", FIELD_TYPE_TEXT, kSingle, 28},
    {"X-CONFIDENTIAL_FLAG", FIELD_TYPE_TEXT, kSingle, 28},
    {"X-READ-RECEIPT", FIELD_TYPE_TEXT, kSingle, 28},
    {"X-DELIVERY-RECEIPT", FIELD_TYPE_TEXT, kSingle, 28},
    {"__ENCRYPTED", FIELD_TYPE_TEXT, kSingle, 208},
    {"__SENDER", FIELD_TYPE_TEXT, kSingle, 208},
    {"REPLY-TO", FIELD_TYPE_TEXT, kSingle, 208},
    {"__RESENT-TO", FIELD_TYPE_TEXT, kSingle, 208},
    {"__RESENT-CC", FIELD_TYPE_TEXT, kSingle, 208},
    {"__RESENT-BCC", FIELD_TYPE_TEXT, kSingle, 208},
    {"__MESSAGE-ID", FIELD_TYPE_TEXT, kSingle, 208},
    {"__RESENT-MESSAGE-ID", FIELD_TYPE_TEXT, kSingle, 308},
    {"__IN-REPLY-TO", FIELD_TYPE_TEXT, kSingle, 208},
    {"__REFERENCES", FIELD_TYPE_TEXT, kSingle, 1008},
    {"__KEYWORDS", FIELD_TYPE_TEXT, kSingle, 2008},
    {"__COMMENTS", FIELD_TYPE_TEXT, kSingle, 2008},
    {"X-PRIORITY", FIELD_TYPE_TEXT, kNeverSplit, 28},
    {"X-MAILER", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-UIDL", FIELD_TYPE_TEXT, kSingle, 58},
    {"__MIME-VERSION", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-BODY", FIELD_TYPE_TEXT, kNeverSplit, 32767},
    {"X-CUSTOM1", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM2", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM3", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM4", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM5", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CATEGORIES", FIELD_TYPE_TEXT, kList, 1008},
});

constexpr auto kEmailMulti = std::to_array<PropertyText>({
    {"__ATTACH", FIELD_TYPE_TEXT, kSingle, 4001},
    {"__RECEIVED", FIELD_TYPE_TEXT, 2, 4001},
});

constexpr auto kEmailValues = std::to_array<ValueText>({
    {"Message-Body", "X-BODY", -57},
    {"X-Date", "DATE", -58},
    {"NULL", "SUBJECT", -59},
});

struct NoteTables {
    static constexpr auto kBasic = propertyTable(FIELD_NOTE, FIELD_BASIC_PROPERTY, kNoteBasic);
    static constexpr auto kValues = valueTable(FIELD_NOTE, kBasic, {}, kNoteValues);
    static constexpr FieldTables kTables{kBasic, {}, {}, kValues};
    static_assert(kTables.hasSizes(10, 0, 0, 2));
};

struct EmailTables {
    static constexpr auto kBasic = propertyTable(FIELD_EMAIL, FIELD_BASIC_PROPERTY, kEmailBasic);
    static constexpr auto kMulti = propertyTable(FIELD_EMAIL, FIELD_MULTI_PROPERTY, kEmailMulti);
    static constexpr auto kValues = valueTable(FIELD_EMAIL, kBasic, {}, kEmailValues);
    static constexpr FieldTables kTables{kBasic, kMulti, {}, kValues};
    static_assert(kTables.hasSizes(34, 2, 0, 3));
};

}  // namespace qel::catalogue

#endif
