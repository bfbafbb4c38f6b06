// The fields of events and to-dos: one set of tables, with two record types in their identifiers.
#ifndef QEL_CATALOGUE_CALENDARFIELDS_H
#define QEL_CATALOGUE_CALENDARFIELDS_H

#include "catalogue/FieldTables.h"

namespace qel::catalogue {

constexpr auto kCalendarBasic = std::to_array<PropertyText>({
    {"SUMMARY", FIELD_TYPE_TITLE, kSingle, 4001},
    {"DESCRIPTION", FIELD_TYPE_TEXT, kSingle, 32767},
    {"DTSTART", FIELD_TYPE_START_TIME, kNeverSplit, 28},
    {"DTEND", FIELD_TYPE_DATE_TIME, kNeverSplit, 28},
    {"DUE", FIELD_TYPE_DATE_TIME, kNeverSplit, 28},
    {"COMPLETED", FIELD_TYPE_DATE_TIME, kNeverSplit, 28},
    {"PRIORITY", FIELD_TYPE_TEXT, kNeverSplit, 28},
    {"CATEGORIES", FIELD_TYPE_TEXT, kList, 1008},
    {"VALARM", FIELD_TYPE_TEXT, kNeverSplit, 308},
    {"LOCATION", FIELD_TYPE_TEXT, kSingle, 208},
    {"RESOURCES", FIELD_TYPE_TEXT, kList, 508},
    {"RRULE", FIELD_TYPE_TEXT, kNeverSplit, 508},
    {"__RDATE", FIELD_TYPE_DATE_TIME, kNeverSplit, 508},
    {"__EXRULE", FIELD_TYPE_TEXT, kNeverSplit, 508},
    {"EXDATE", FIELD_TYPE_DATE_TIME, kNeverSplit, 508},
    {"TRANSP", FIELD_TYPE_TEXT, kSingle, 28},
    {"CLASS", FIELD_TYPE_TEXT, kSingle, 58},
    {"X-CONTACT_NAME", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-CONTACT_COMPANY", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-CONTACT_PHONE", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-PLANNED_EFFORT", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-PERCENT_DONE", FIELD_TYPE_TEXT, kSingle, 58},
    {"X-ACTUAL_EFFORT", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-MILEAGE", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-BILLING_INFO", FIELD_TYPE_TEXT, kSingle, 208},
    {"X-TZID", FIELD_TYPE_TEXT, kSingle, 108},
    {"X-CUSTOM1", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM2", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM3", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM4", FIELD_TYPE_TEXT, kSingle, 1008},
    {"X-CUSTOM5", FIELD_TYPE_TEXT, kSingle, 1008},
    {"STATUS", FIELD_TYPE_TEXT, kSingle, 40},
    {"__DCREATED", FIELD_TYPE_DATE_TIME, kNeverSplit, 28},
    {"__LAST_MODIFIED", FIELD_TYPE_DATE_TIME, kNeverSplit, 28},
    {"__RELATED_TO", FIELD_TYPE_TEXT, kSingle, 108},
    {"UID", FIELD_TYPE_TEXT, kSingle, 58},
    {"__SEQUENCE", FIELD_TYPE_TEXT, kSingle, 58},
    {"URL", FIELD_TYPE_TEXT, kSingle, 208},
});

constexpr auto kCalendarMulti = std::to_array<PropertyText>({
    {"__ATTACH", FIELD_TYPE_TEXT, kSingle, 4001},
    {"ATTENDEE", FIELD_TYPE_TEXT, kSingle, 4001},
});

// Below 0: values that the host derives from the parent.
constexpr auto kCalendarValues = std::to_array<ValueText>({
    {"Completed_Flag", "COMPLETED", -50},
    {"Confidential_Flag", "CLASS", -51},
    {"Alarm_Trigger", "VALARM", -52},
    {"Alarm_Date_Time", "VALARM", -53},
    {"Alarm_Offset", "VALARM", -54},
    {"Alarm_Flag", "VALARM", -55},
    {"Alarm_Action", "VALARM", 0},
    {"Alarm_Duration", "VALARM", 2},
    {"Alarm_Repeat", "VALARM", 3},
    {"Alarm_Attach", "VALARM", 4},
    {"Alarm_Description", "VALARM", 5},
    {"Alarm_Summary", "VALARM", 6},
    {"Alarm_Attendee", "VALARM", 7},
    {"NULL", "SUMMARY", -59},
});

template <FieldRecordType Record>
struct CalendarTables {
    static constexpr auto kBasic = propertyTable(Record, FIELD_BASIC_PROPERTY, kCalendarBasic);
    static constexpr auto kMulti = propertyTable(Record, FIELD_MULTI_PROPERTY, kCalendarMulti);
    static constexpr auto kValues = valueTable(Record, kBasic, {}, kCalendarValues);
    static constexpr FieldTables kTables{kBasic, kMulti, {}, kValues};
    static_assert(kTables.hasSizes(38, 2, 0, 14));
};

}  // namespace qel::catalogue

#endif
