#include "platform/posix/regional/collation_internal.h"

#include <unicode/coll.h>

#include <cstring>
#include <map>
#include <memory>
#include <mutex>

#include "platform/house_text_internal.h"
#include "platform/posix/kernel/errors.h"
#include "platform/posix/regional/nls.h"
#include "platform/posix/text/text.h"

namespace orvik::detail {
namespace {

// One that is made lives as long as the process; null where the locale data have none. Comparing changes nothing of it.
const icu::Collator* TheCollator(const std::string& localeName, bool ignoreCase) {
    static std::mutex lock;
    static std::map<std::pair<std::string, bool>, std::unique_ptr<icu::Collator>> made;
    const std::lock_guard guard(lock);
    const auto [at, fresh] = made.try_emplace({localeName, ignoreCase});
    if (fresh) {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(localeName.c_str(), status));
        if (U_SUCCESS(status)) {
            if (ignoreCase) collator->setStrength(icu::Collator::SECONDARY);
            at->second = std::move(collator);
        }
    }
    return at->second.get();
}

std::string TextOf(LPCSTR text, int length) {
    return length < 0 ? std::string(text) : std::string(text, strnlen(text, static_cast<size_t>(length)));
}

}  // namespace

int CompareInOrder(const std::string& localeName, std::string_view first, std::string_view second, bool ignoreCase) {
    const icu::Collator* const collator = TheCollator(localeName, ignoreCase);
    UErrorCode status = U_ZERO_ERROR;
    const auto piece = [](std::string_view text) { return icu::StringPiece(text.data(), static_cast<int32_t>(text.size())); };
    return collator != nullptr ? collator->compareUTF8(piece(first), piece(second), status) : first.compare(second);
}

}  // namespace orvik::detail

using namespace orvik::detail;

int CompareStringA(LCID locale, DWORD flags, LPCSTR first, int firstLength, LPCSTR second, int secondLength) {
    const auto refuse = [](DWORD error) {
        SetLastError(error);
        return 0;
    };
    if (flags & ~NORM_IGNORECASE) return refuse(ERROR_INVALID_FLAGS);
    if (first == nullptr || second == nullptr) return refuse(ERROR_INVALID_PARAMETER);
    const std::string order = locale == LOCALE_INVARIANT ? "root" : OrderingLocale(locale);
    if (order.empty()) return refuse(ERROR_INVALID_PARAMETER);
    const bool ignoreCase = flags & NORM_IGNORECASE;
    const std::string a = TextOf(first, firstLength), b = TextOf(second, secondLength);
    if (HouseIsUtf8()) return CSTR_EQUAL + CompareInOrder(order, Utf8FromHouse(a), Utf8FromHouse(b), ignoreCase);
    const int compared = ignoreCase ? lstrcmpiA(a.c_str(), b.c_str()) : a.compare(b);
    return CSTR_EQUAL + (compared > 0) - (compared < 0);
}
