#pragma once

#include <lumcommon/lumcommon.h>

#include <string_view>
#include <vector>

#include "contest/Contender.h"

namespace LumBench {

namespace lum = LumCommon;

/// Names, a line each, that were interned before.
class NamesTrial : public Trial {
public:
    explicit NamesTrial(const Input& input) {
        lum::LumNameTable::addRefSharedNameTable();
        std::string_view rest = input.bytes;
        for (std::size_t end; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1)) {
            texts_.push_back(lum::UnicodeString::fromUTF8(std::string(rest.substr(0, end))));
        }
        NamesTrial::turn();
    }
    ~NamesTrial() override { lum::LumNameTable::releaseSharedNameTable(); }
    NamesTrial(const NamesTrial&) = delete;
    NamesTrial& operator=(const NamesTrial&) = delete;

    /// The names, and their length when their strings are read by what interning gave.
    std::vector<std::size_t> answer() override {
        std::size_t units = 0;
        for (const lum::UnicodeString& text : texts_) {
            units += static_cast<std::size_t>(lum::LumName(text).getString().length());
        }
        return {texts_.size(), units};
    }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        std::size_t seen = 0;
        for (const lum::UnicodeString& text : texts_) seen += lum::LumName(text).getEnum();
        use(seen);
        return {{"", watch.lap()}};
    }
    std::size_t units() const override { return texts_.size(); }

private:
    std::vector<lum::UnicodeString> texts_;
};

}  // namespace LumBench
