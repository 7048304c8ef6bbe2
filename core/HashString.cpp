#include "core/HashString.h"

#include <utility>

namespace zv {

HashString::HashString(const char* text) : mText(text != nullptr ? text : "") {
    updateHash();
}

HashString::HashString(std::string text) : mText(std::move(text)) {
    updateHash();
}

void HashString::updateHash() {
    // 64-bit FNV-1a.
    constexpr std::uint64_t offsetBasis = 0xCBF29CE484222325u;
    constexpr std::uint64_t prime = 0x100000001B3u;
    mHash = offsetBasis;
    for (const char c : mText)
        mHash = (mHash ^ static_cast<unsigned char>(c)) * prime;
}

bool HashString::compare(const HashString& other) const {
    return mHash == other.mHash && mText == other.mText;
}

bool HashString::compare(const std::string& text) const {
    return compare(HashString(text));
}

}  // namespace zv
