// Character sets, kinds of files, and texts that are shown.
#include <string>
#include <string_view>

#include "calendar/api/Calls.h"
#include "calendar/base/Text.h"
#include "calendar/charsets/CharacterSet.h"
#include "calendar/lines/FileKind.h"
#include "calendar/text/CharacterSets.h"

namespace {

namespace api = qel::calendar::api;

constexpr char kNullArgument[] = "the bytes, the name or the callback are null";

std::string_view textOf(const void* bytes, size_t size) {
    return size == 0 ? std::string_view() : std::string_view(static_cast<const char*>(bytes), size);
}

}  // namespace

int qelcal_charset_known(const char* name) {
    return api::guardedValue(
        0, [=] { return name != nullptr && qel::calendar::fromCharacterSet("", name) ? 1 : 0; });
}

int qelcal_text_to_utf8(const char* name, const void* bytes, size_t size, qelcal_write_fn text,
                        void* context, int* replaced) {
    if (name == nullptr || text == nullptr || (bytes == nullptr && size != 0))
        return api::fail(QELCAL_INVALID_ARGUMENT, kNullArgument);
    return api::guarded([=] {
        const auto converted = qel::calendar::fromCharacterSet(textOf(bytes, size), name);
        if (!converted)
            return api::fail(QELCAL_UNKNOWN_NAME,
                             "the character set \"" + std::string(name) + "\" is unknown");
        if (replaced != nullptr)
            *replaced = converted->find(qel::calendar::kReplacement) != std::string::npos ? 1 : 0;
        api::goOn(text(context, converted->data(), converted->size()));
        return int{QELCAL_OK};
    });
}

int qelcal_is_utf8(const void* bytes, size_t size) {
    return (bytes != nullptr || size == 0) && qel::calendar::isUtf8(textOf(bytes, size)) ? 1 : 0;
}

int qelcal_printable(const void* bytes, size_t size, size_t longest, qelcal_write_fn text,
                     void* context) {
    if (text == nullptr || (bytes == nullptr && size != 0))
        return api::fail(QELCAL_INVALID_ARGUMENT, kNullArgument);
    return api::guarded([=] {
        const std::string shown = qel::calendar::printable(
            textOf(bytes, size), longest == 0 ? std::string::npos : longest);
        api::goOn(text(context, shown.data(), shown.size()));
        return int{QELCAL_OK};
    });
}

int qelcal_recognise(const void* bytes, size_t size) {
    if (bytes == nullptr) size = 0;
    return api::guardedValue(int{QELCAL_KIND_TEXT}, [=] {
        return static_cast<int>(qel::calendar::recognise(textOf(bytes, size)));
    });
}

const char* qelcal_kind_text(int kind) {
    if (kind < QELCAL_KIND_TEXT || kind > QELCAL_KIND_BINARY) return "";
    return qel::calendar::kindText(static_cast<qel::calendar::FileKind>(kind));
}
