// The fields of contacts. The order of rows is binding, out of family order at the sub items' end
// included: identifiers are counted from it.
#ifndef QEL_CATALOGUE_CONTACTFIELDS_H
#define QEL_CATALOGUE_CONTACTFIELDS_H

#include "catalogue/FieldTables.h"

namespace qel::catalogue {

constexpr auto kContactBasic = std::to_array<PropertyText>({
    {"N", FIELD_TYPE_TITLE, 5, 528},
    {"ORG", FIELD_TYPE_TITLE, 2, 264},
    {"TITLE", FIELD_TYPE_TEXT, kSingle, 264},
    {"ROLE", FIELD_TYPE_TEXT, kSingle, 264},
    {"NOTE", FIELD_TYPE_TEXT, kSingle, 32767},
    {"CATEGORIES", FIELD_TYPE_TEXT, kList, 1008},
    {"NICKNAME", FIELD_TYPE_TEXT, kSingle, 108},
    {"SORT_STRING", FIELD_TYPE_TEXT, kSingle, 208},
    {"FN", FIELD_TYPE_TEXT, kSingle, 208},
    {"BDAY", FIELD_TYPE_DATE, kNeverSplit, 28},
    {"PHOTO", FIELD_TYPE_TEXT, kSingle, 4001},
    {"__MAILER", FIELD_TYPE_TEXT, kSingle, 208},
    {"__LABEL", FIELD_TYPE_TEXT, kSingle, 208},
    {"TZ", FIELD_TYPE_TEXT, kSingle, 108},
    {"__GEO", FIELD_TYPE_TEXT, kSingle, 58},
    {"LOGO", FIELD_TYPE_TEXT, kSingle, 4001},
    {"__REV", FIELD_TYPE_TEXT, kSingle, 1008},
    {"__SOUND", FIELD_TYPE_TEXT, kSingle, 4001},
    {"__URL", FIELD_TYPE_TEXT, kSingle, 208},
    {"__UID", FIELD_TYPE_TEXT, kSingle, 58},
    {"__VERSION", FIELD_TYPE_TEXT, kSingle, 108},
    {"__KEY", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-MANAGER_NAME", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-REFERRED_BY", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-ASSISTANT_NAME", FIELD_TYPE_TEXT, kSingle, 508},
    {"X-ASSISTANT_PHONE", FIELD_TYPE_TEXT, kSingle, 508},
    {"X-CONFIDENTIAL_FLAG", FIELD_TYPE_TEXT, kSingle, 28},
    {"X-OFFICE_LOCATION", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-MILEAGE", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-BILLING_INFO", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-ACCOUNT_ID", FIELD_TYPE_TEXT, kSingle, 58},
    {"X-RADIO_PHONE", FIELD_TYPE_TEXT, kSingle, 58},
    {"X-TELEX_PHONE", FIELD_TYPE_TEXT, kSingle, 58},
    {"X-PROFESSION", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-LANGUAGE", FIELD_TYPE_TEXT, kSingle, 58},
    {"X-BUSINESS_WEB_PAGE", FIELD_TYPE_TEXT, kSingle, 308},
    {"X-PERSONAL_WEB_PAGE", FIELD_TYPE_TEXT, kSingle, 308},
    {"X-INITIALS", FIELD_TYPE_TEXT, kSingle, 28},
    {"X-SPOUSE_NAME", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-ANNIVERSARY_DATE", FIELD_TYPE_DATE, kNeverSplit, 28},
    {"X-CHILDREN", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-YOMI_COMPANY_NAME", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-YOMI_FIRST_NAME", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-YOMI_LAST_NAME", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-CUSTOM1", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM2", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM3", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM4", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM5", FIELD_TYPE_TEXT, kSingle, 1008},
});

constexpr auto kContactMulti = std::to_array<PropertyText>({
    {"__ADR", FIELD_TYPE_TEXT, 7, 4001},
    {"__TEL", FIELD_TYPE_TEXT, kSingle, 4001},
    {"__EMAIL", FIELD_TYPE_TEXT, kSingle, 4001},
});

constexpr auto kContactSubItems = std::to_array<SubItemText>({
    {"Adr_Work_1", "__ADR", 0x1, 0},
    {"__Adr_Work_2", "__ADR", 0x1, 1},
    {"Adr_Home_1", "__ADR", 0x2, 0},
    {"__Adr_Home_2", "__ADR", 0x2, 1},
    {"Adr_Other_1", "__ADR", 0x8, 0},
    {"__Adr_Any_1", "__ADR", 0, 0},
    {"__Adr_Any_2", "__ADR", 0, 1},
    {"Phone_Work_1", "__TEL", 0x40201, 0},
    {"Phone_Work_2", "__TEL", 0x40201, 1},
    {"Phone_Home_1", "__TEL", 0x40202, 0},
    {"Phone_Home_2", "__TEL", 0x40202, 1},
    {"__Phone_FAX_1", "__TEL", 0x10004, 0},
    {"__Phone_FAX_2", "__TEL", 0x10004, 1},
    {"Phone_Work_FAX", "__TEL", 0x10005, 0},
    {"Phone_Other_FAX", "__TEL", 0x1000C, 0},
    {"Phone_Cell", "__TEL", 0x40210, 0},
    {"Phone_Car", "__TEL", 0x40220, 0},
    {"Phone_Work_Pager", "__TEL", 0x50041, 0},
    {"Phone_Other_Pager", "__TEL", 0x50048, 0},
    {"Phone_Modem", "__TEL", 0x50080, 0},
    {"Phone_Message", "__TEL", 0x40300, 0},
    {"Phone_Other_1", "__TEL", 0x40208, 0},
    {"Phone_Other_2", "__TEL", 0x40208, 1},
    {"__Phone_Any_1", "__TEL", 0, 0},
    {"__Phone_Any_2", "__TEL", 0, 1},
    {"__Phone_Any_3", "__TEL", 0, 2},
    {"__Phone_Any_4", "__TEL", 0, 3},
    {"__Phone_Any_Voice_1", "__TEL", 0x40200, 0},
    {"__Phone_Any_Voice_2", "__TEL", 0x40200, 1},
    {"__Phone_Any_Voice_3", "__TEL", 0x40200, 2},
    {"__Phone_Any_Voice_4", "__TEL", 0x40200, 3},
    {"__Phone_NotVoice_1", "__TEL", 0x10000, 0},
    {"__Phone_NotVoice_2", "__TEL", 0x10000, 1},
    {"__Phone_NotVoiceNotFax_1", "__TEL", 0x50000, 0},
    {"__Phone_NotVoiceNotFax_2", "__TEL", 0x50000, 1},
    {"__Phone_VoiceNotWorkNotHome_1", "__TEL", 0x60200, 0},
    {"__Phone_VoiceNotWorkNotHome_2", "__TEL", 0x60200, 1},
    {"EMail_Work_1", "__EMAIL", 0x1, 0},
    {"EMail_Home_1", "__EMAIL", 0x2, 0},
    {"EMail_Other_1", "__EMAIL", 0x8, 0},
    {"EMail_Other_2", "__EMAIL", 0x8, 1},
    {"EMail_Work_2", "__EMAIL", 0x1, 1},
    {"Phone_Home_FAX", "__TEL", 0x10006, 0},
    {"EMail_Home_2", "__EMAIL", 0x2, 1},
});

// The seven parts of one address, in the order of the ADR property's value.
// clang-format off
#define QEL_ADDRESS_PARTS(address)     \
    {address "_PO", address, 0},       \
    {address "_Ext", address, 1},      \
    {address "_Street", address, 2},   \
    {address "_City", address, 3},     \
    {address "_State", address, 4},    \
    {address "_Zip", address, 5},      \
    {address "_Country", address, 6}

constexpr auto kContactValues = std::to_array<ValueText>({
    {"Family_Name", "N", 0},
    {"Given_Name", "N", 1},
    {"Additional_Names", "N", 2},
    {"Name_Prefix", "N", 3},
    {"Name_Suffix", "N", 4},
    {"Org_Name", "ORG", 0},
    {"Org_Unit", "ORG", 1},
    QEL_ADDRESS_PARTS("Adr_Work_1"),
    QEL_ADDRESS_PARTS("__Adr_Work_2"),
    QEL_ADDRESS_PARTS("Adr_Home_1"),
    QEL_ADDRESS_PARTS("__Adr_Home_2"),
    QEL_ADDRESS_PARTS("Adr_Other_1"),
    QEL_ADDRESS_PARTS("__Adr_Any_1"),
    QEL_ADDRESS_PARTS("__Adr_Any_2"),
    {"NULL", "N", -59},
});
// clang-format on

#undef QEL_ADDRESS_PARTS

struct ContactTables {
    static constexpr auto kBasic =
        propertyTable(FIELD_CONTACT, FIELD_BASIC_PROPERTY, kContactBasic);
    static constexpr auto kMulti =
        propertyTable(FIELD_CONTACT, FIELD_MULTI_PROPERTY, kContactMulti);
    static constexpr auto kSubItems = subItemTable(FIELD_CONTACT, kMulti, kContactSubItems);
    static constexpr auto kValues = valueTable(FIELD_CONTACT, kBasic, kSubItems, kContactValues);
    static constexpr FieldTables kTables{kBasic, kMulti, kSubItems, kValues};
    static_assert(kTables.hasSizes(49, 3, 44, 57));
};

}  // namespace qel::catalogue

#endif
