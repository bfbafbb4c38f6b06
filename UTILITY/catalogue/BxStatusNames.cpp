#include "QelUtility/BxStatusNames.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "platform/AsciiText.h"

namespace qel::catalogue {
namespace {

constexpr auto kStatusNames = std::to_array<const char*>({
    "EOK",                            // 0
    "Bad",                            // 1
    "Unauth",                         // 2
    "Conflict",                       // 3
    "Unsupported",                    // 4
    "Unknown",                        // 5
    "Refused",                        // 6
    "Busy",                           // 7
    "RequiresUID",                    // 8
    "AllocateFail",                   // 9
    "DeviceFull",                     // 10
    "UIDNotFound",                    // 11
    "DatabaseError",                  // 12
    "DatabaseNotFound",               // 13
    "ItemNotPresent",                 // 14
    "IllegalData",                    // 15
    "RecurrenceChanged",              // 16
    "CategoryChanged",                // 17
    "PriorityChanged",                // 18
    "FieldsChanged",                  // 19
    "AttachmentDroppedOrChanged",     // 20
    "FieldsTruncated",                // 21
    "StorageQuotaExceeded",           // 22
    "ClientInstanceExists",           // 23
    "StorageQuotaLessThan1MbLeft",    // 24
    "StorageQuotaLessThan500KbLeft",  // 25
    "StorageQuotaLessThan200KbLeft",  // 26
    "StorageQuotaLessThan100KbLeft",  // 27
    "ClientMustReSync",               // 28
    "Cancel",                         // 29
    "UnableToProcessRequest",         // 30
    "InvalidInstance",                // 31
    "AlarmChanged",                   // 32
    "OneOrMorePhonesChanged",         // 33
    "InvalidUID",                     // 34
    "WriteFailed",                    // 35
    "UserAccountSuspended",           // 36
    "ServerBusy",                     // 37
    "ServerError",                    // 38
    "ClientError",                    // 39
    "InvalidOperation",               // 40
    "DummyOperation",                 // 41
    "CAPOPST_",                       // 42: the bare prefix is the table's last entry
});
static_assert(kStatusNames.size() == 43);

struct Operation {
    unsigned long code;
    const char* name;  // the tag is the name in angle brackets
};

// Status tags shorten the client instance to CLNT_INST, operation tags spell it out: both spellings
// are what the engine writes.
constexpr auto kOperations = std::to_array<Operation>({
    {10000, "RETURN_STATUS"},
    {10001, "ADD_STATUS"},
    {10002, "DELETE_STATUS"},
    {10003, "MODIFY_STATUS"},
    {10004, "GET_SERVER_DELTAS_STATUS"},
    {10005, "OFFER_CLIENT_DELTAS_STATUS"},
    {10006, "GET_SERVER_STATE_STATUS"},
    {10007, "RESET_SERVER_STATE_STATUS"},
    {10008, "DUPLICATE_ELIMINATION_STATUS"},
    {10009, "ASSIGN_CLNT_INST_ID_STATUS"},
    {10010, "REMOVE_CLNT_INST_ID_STATUS"},
    {10011, "RECOVER_CLNT_INST_ID_STATUS"},
    {20000, "ADD"},
    {20001, "DELETE"},
    {20002, "DELETE_ALL"},
    {20003, "MODIFY"},
    // 20004 is not assigned.
    {20005, "ADVERTISE_PROPERTIES"},
    {20006, "GET_SERVER_DELTAS"},
    {20007, "OFFER_CLIENT_DELTAS"},
    {20008, "GET_SERVER_STATE"},
    {20009, "RESET_SERVER_STATE"},
    {20010, "DUPLICATE_ELIMINATION"},
    {20011, "ASSIGN_CLIENT_INSTANCE_ID"},
    {20012, "REMOVE_CLIENT_INSTANCE_ID"},
    {20013, "RECOVER_CLIENT_INSTANCE_ID"},
});
static_assert(kOperations.size() == 12 + 13);

}  // namespace
}  // namespace qel::catalogue

VStr StatusText(int status) {
    VStr text;
    if (status >= 0 && static_cast<std::size_t>(status) < qel::catalogue::kStatusNames.size())
        text.Format("Status=%s", qel::catalogue::kStatusNames[static_cast<std::size_t>(status)]);
    else
        text.Format("Status=%i", status);
    return text;
}

int OperationFromTag(const char* tag, unsigned long& code) {
    std::string_view name(tag == nullptr ? "" : tag);
    if (name.size() < 2 || name.front() != '<' || name.back() != '>') return QEL_MALFORMED;
    name = name.substr(1, name.size() - 2);
    const auto found =
        std::find_if(qel::catalogue::kOperations.begin(), qel::catalogue::kOperations.end(),
                     [name](const qel::catalogue::Operation& operation) {
                         return qel::platform::equalNoCase(operation.name, name);
                     });
    if (found == qel::catalogue::kOperations.end()) return QEL_MALFORMED;
    code = found->code;
    return QEL_OK;
}

const char* OperationName(unsigned long code) {
    const auto found = std::find_if(
        qel::catalogue::kOperations.begin(), qel::catalogue::kOperations.end(),
        [code](const qel::catalogue::Operation& operation) { return operation.code == code; });
    return found == qel::catalogue::kOperations.end() ? nullptr : found->name;
}
