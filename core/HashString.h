#pragma once

#include <cstdint>
#include <string>

#include "core/ZVExport.h"

namespace zv {

/// A byte string with its 64-bit FNV-1a hash, for node names and cache keys. Not synchronised.
class ZV_API HashString {
public:
    /// Empty text with hash 0, not the hash of the empty text: a default HashString differs from one made
    /// from "". It stands for "no name".
    HashString() = default;
    /// Null counts as "".
    HashString(const char* text);
    HashString(std::string text);
    /// Copies and moves take the hash over as it is.
    HashString(const HashString&) = default;
    HashString(HashString&&) = default;
    HashString& operator=(const HashString&) = default;
    HashString& operator=(HashString&&) = default;

    std::string str() const { return mText; }
    std::uint64_t hash() const { return mHash; }
    /// Brings the hash in step with a text that a derived class has changed.
    void updateHash();

    /// True when the hashes are equal and then the bytes are equal too.
    bool compare(const HashString& other) const;
    /// Hashes the text first.
    bool compare(const std::string& text) const;

    bool operator==(const HashString& other) const { return compare(other); }
    bool operator!=(const HashString& other) const { return !compare(other); }
    bool operator==(const std::string& text) const { return compare(text); }
    bool operator!=(const std::string& text) const { return !compare(text); }
    bool operator==(const char* text) const { return compare(HashString(text)); }
    bool operator!=(const char* text) const { return !compare(HashString(text)); }

protected:
    std::string mText;
    std::uint64_t mHash = 0;
};

}  // namespace zv
