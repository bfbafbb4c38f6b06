/// @file
/// The catalogue of field identifiers: what each numeric identifier of an event's, to-do's,
/// contact's, note's or e-mail's field means. Constant tables; any thread may look up.
///
/// A field identifier is 32 bits: record type in bits 28-31, access type in bits 24-27, and in bits
/// 0-23 the index of the field among those of its record and access type. 0x11000000 is an event's
/// SUMMARY, 0x34000007 the post-office box of a contact's first work address.
#ifndef QELUTILITY_BXFIELDIDS_H
#define QELUTILITY_BXFIELDIDS_H

#include "QelUtility/QelTypes.h"

/// Bits 28-31 of a field identifier.
enum FieldRecordType {
    FIELD_EVENT = 1,
    FIELD_TODO = 2,
    FIELD_CONTACT = 3,
    FIELD_NOTE = 4,
    FIELD_EMAIL = 5
};

/// Bits 24-27 of a field identifier.
enum FieldAccessType {
    FIELD_BASIC_PROPERTY = 1,  ///< a property that occurs once
    FIELD_MULTI_PROPERTY = 2,  ///< a property that may occur several times
    FIELD_SUB_ITEM = 3,        ///< a typed occurrence of a multi property: the second home address
    FIELD_VALUE = 4            ///< a component of a property or a value derived from it
};

/// What a property's value is.
enum FieldDataType {
    FIELD_TYPE_TITLE = 1,  ///< the text that stands for the record, or names people or firms
    FIELD_TYPE_TEXT = 2,
    FIELD_TYPE_DATE = 0x12,
    FIELD_TYPE_START_TIME = 0x31,
    FIELD_TYPE_DATE_TIME = 0x32
};

/// What a look-up fills. "The property" is the one that holds the field's value: the field itself,
/// or the one that a sub item or a value belongs to.
struct FieldData {
    unsigned int accessType;     ///< FieldAccessType
    unsigned int recordType;     ///< FieldRecordType
    unsigned int fieldId;        ///< as given
    unsigned int propertyId;     ///< of the property
    unsigned int propertyIndex;  ///< its low 24 bits
    int dataType;                ///< FieldDataType, of the property
    unsigned int selector;       ///< the type bits that an occurrence must carry, or 0
    int occurrence;              ///< which of the occurrences with these bits, from 0
    int valueIndex;              ///< a component's position from 0; below 0 a derived value
    int componentCount;          ///< of the property; -1: never split; -5: a list
    int maxLength;               ///< of the property, in characters
    const char* name;            ///< of the field; belongs to the library
    const char* propertyName;    ///< of the property; belongs to the library
};

/// 0 with `*out` filled; a field that a path has no use for is 0 in it. -1 for an identifier that
/// names no field, logged with its reason: only accessType, recordType and fieldId are written
/// then. Of `fieldId` the low 32 bits count. A null `out` gives -1.
QELUTILITY_API int BxUtil_GetFieldDataByID(unsigned long fieldId, FieldData* out);

#endif
