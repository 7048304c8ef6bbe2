#include "gltf/GtJson.h"

#include <cstdint>
#include <limits>

namespace zv::gltf::json {

namespace {

template <class T>
bool toNumberOf(const Value* value, T& out) {
    if (value == nullptr || !value->IsNumber())
        return false;
    // Both types are exact in a double, and so is each comparison: larger numbers round to larger ones.
    const double number = value->GetDouble();
    if (!(number >= static_cast<double>(std::numeric_limits<T>::min()) &&
          number <= static_cast<double>(std::numeric_limits<T>::max())))
        return false;
    const T whole = static_cast<T>(number);
    if (static_cast<double>(whole) != number)
        return false;
    out = whole;
    return true;
}

}  // namespace

bool parse(const std::string& text, rapidjson::Document& out) {
    // Iteratively: a recursive parser lets a file of brackets overflow the stack.
    out.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
    return !out.HasParseError() && out.IsObject();
}

const Value* find(const Value* object, const char* name) {
    if (object == nullptr || !object->IsObject())
        return nullptr;
    const Value::ConstMemberIterator member = object->FindMember(name);
    return member != object->MemberEnd() ? &member->value : nullptr;
}

bool toNumber(const Value* value, int& out) {
    return toNumberOf(value, out);
}

bool read(const Value* object, const char* name, int& out) {
    return toNumberOf(find(object, name), out);
}

bool read(const Value* object, const char* name, unsigned& out) {
    return toNumberOf(find(object, name), out);
}

bool read(const Value* object, const char* name, std::string& out) {
    const Value* value = find(object, name);
    if (value == nullptr || !value->IsString())
        return false;
    out.assign(value->GetString(), value->GetStringLength());
    return true;
}

}  // namespace zv::gltf::json
