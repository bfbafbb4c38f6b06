#include "platform/Letters.h"

#include <locale.h>
#include <wctype.h>

#include <climits>
#include <cwchar>

namespace qel::cli::platform {

namespace {

// UTF-8 and its letters for the calling thread, whatever language the person has chosen.
class Utf8Locale {
  public:
    Utf8Locale()
        : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)),
          before_(locale_ != nullptr ? ::uselocale(locale_) : nullptr) {}
    ~Utf8Locale() {
        if (locale_ == nullptr) return;
        ::uselocale(before_);
        ::freelocale(locale_);
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

    [[nodiscard]] bool isThere() const { return locale_ != nullptr; }

  private:
    locale_t locale_;
    locale_t before_;
};

}  // namespace

std::string smallLetters(const std::string& text) {
    const Utf8Locale utf8;
    if (!utf8.isThere()) return text;
    std::string small;
    small.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        wchar_t letter = 0;
        std::mbstate_t state{};
        const std::size_t length =
            std::mbrtowc(&letter, text.data() + at, text.size() - at, &state);
        char bytes[MB_LEN_MAX];
        std::mbstate_t begin{};
        const bool isCharacter = length != 0 && length <= text.size() - at;
        const std::size_t made =
            isCharacter
                ? std::wcrtomb(bytes, static_cast<wchar_t>(::towlower(static_cast<wint_t>(letter))),
                               &begin)
                : 0;
        if (!isCharacter || made > sizeof bytes) {
            small += text[at++];
            continue;
        }
        small.append(bytes, made);
        at += length;
    }
    return small;
}

}  // namespace qel::cli::platform
