#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace lum {

/// Lines of JSON for standard output, written piece by piece, where a Json for each line would cost too much. What is
/// written is what printJson() writes.
///
/// Lines are handed over in blocks, and the rest on destruction, quietly.
class JsonLines {
public:
    JsonLines() = default;
    JsonLines(const JsonLines&) = delete;
    JsonLines& operator=(const JsonLines&) = delete;
    ~JsonLines();

    /// JSON as it stands.
    template <std::size_t size>
    void add(const char (&json)[size]) {
        std::memcpy(room(size), json, size);  // a constant size takes no call
        used_ += size - 1;
    }
    void add(const std::string& json) { used_ += json.copy(room(json.size()), json.size()); }
    void add(int number);
    /// As a quoted string.
    void quote(const LumCommon::UnicodeString& text);
    /// The members "prefix", "name" and "namespace" of an object.
    void addNames(LumCommon::LumName prefix, LumCommon::LumName name, LumCommon::LumName namespaceUri) {
        NamesSlot& slot = names_[(name.getEnum() + 31 * prefix.getEnum()) % names_.size()];
        const Names names{prefix, name, namespaceUri};
        if (slot.names != names || slot.length == 0) return addNewNames(slot, names);
        std::memcpy(room(sizeof(slot.json)), slot.json, sizeof(slot.json));
        used_ += slot.length;
    }
    /// Ends the line.   Failure: LumError 0x1007 if it cannot be written.
    void endLine() {
        add("\n");
        if (used_ >= blockBytes) flush();
    }
    /// Hands over what there is.   Failure: as above.
    void flush();

private:
    static constexpr std::size_t blockBytes = 64 * 1024;

    struct Names {
        LumCommon::LumName prefix, name, namespaceUri;
        bool operator==(const Names&) const = default;
    };
    /// The members of names met before, if their JSON fits: a constant size is copied without a call.
    struct NamesSlot {
        Names names;
        std::uint32_t length = 0;  // 0: none
        char json[112];
    };

    char* room(std::size_t byteCount) {
        if (buffer_.size() - used_ < byteCount) buffer_.resize(2 * buffer_.size() + byteCount);
        return buffer_.data() + used_;
    }
    void addNewNames(NamesSlot& slot, const Names& names);

    std::vector<char> buffer_;
    std::size_t used_ = 0;
    std::array<NamesSlot, 256> names_;
};

}  // namespace lum
