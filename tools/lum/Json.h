#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace LumTool {

/// A JSON value. `Json{{"id", 3}, {"tags", Json::Array{}}}` is an object whose members keep their order.
class Json {
public:
    using Array = std::vector<Json>;
    using Member = std::pair<std::string, Json>;
    using Object = std::vector<Member>;
    using Value = std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string, Array, Object>;

    Json(std::nullptr_t = nullptr) {}
    Json(bool value) : value_(value) {}
    Json(std::signed_integral auto value) : value_(std::int64_t{value}) {}
    Json(std::unsigned_integral auto value) : value_(std::uint64_t{value}) {}
    Json(std::floating_point auto value) : value_(double{value}) {}
    Json(std::string text) : value_(std::move(text)) {}
    Json(std::string_view text) : value_(std::string(text)) {}
    Json(const char* text) : value_(std::string(text)) {}
    Json(Array values) : value_(std::move(values)) {}
    Json(Object members) : value_(std::move(members)) {}
    Json(std::initializer_list<Member> members) : value_(Object(members)) {}

    /// Adds a member to an object; a value of another type is replaced by an object first.
    void add(std::string name, Json member) {
        if (!std::holds_alternative<Object>(value_)) value_ = Object();
        std::get<Object>(value_).emplace_back(std::move(name), std::move(member));
    }
    const Value& get() const noexcept { return value_; }

    /// The value on one line, in UTF-8; bytes that are not UTF-8 become U+FFFD.
    std::string toString() const;

private:
    Value value_;
};

}  // namespace LumTool
