#pragma once

#include <rapidjson/document.h>

#include <string>

/// Lenient access to JSON text that is not trusted. What is missing, of another type or out of range reads as
/// absent, so a null object may be handed on from one look-up to the next.
namespace zv::gltf::json {

using Value = rapidjson::Value;

/// False unless the text is one JSON object. Depth is bounded by memory alone, numbers do not depend on the
/// locale, and a byte order mark is skipped.
bool parse(const std::string& text, rapidjson::Document& out);

/// The member of that name; null when there is none or `object` is no object. Of equal names the first one.
const Value* find(const Value* object, const char* name);

/// Stores a whole number (3.0 is one); false, with `out` as it was, when there is none that fits.
bool toNumber(const Value* value, int& out);

/// The same for a member.
bool read(const Value* object, const char* name, int& out);
bool read(const Value* object, const char* name, unsigned& out);
bool read(const Value* object, const char* name, std::string& out);

}  // namespace zv::gltf::json
