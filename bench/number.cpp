// From numbers to the text of list and page numbers, beside ICU's rule-based number format on the same numbers.

#include <lumcommon/format/LumUtil.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

#include "peers/IcuNumber.h"

namespace LumBench {
namespace {

namespace lum = LumCommon;
using icu::UnicodeString;

/// Page and list numbers seldom go further; in every alphabet these take at most two letters.
constexpr int lastNumber = 500;

struct Row {
    const char* name;
    const char16_t* format;
    const char* language;
    const char16_t* icuRules;  ///< see IcuNumber
};

constexpr Row rows[] = {
    {"1", u"1", "", u"%zz-default"},
    {"i", u"i", "", u"%roman-lower"},
    {"a", u"a", "", u"abcdefghijklmnopqrstuvwxyz"},
    {"a-sv", u"a", "sv", u"abcdefghijklmnopqrstuvwxyz\u00E5\u00E4\u00F6"},
    {"kana", u"\u3042", "",
     u"\u3042\u3044\u3046\u3048\u304A\u304B\u304D\u304F\u3051\u3053\u3055\u3057\u3059\u305B\u305D\u305F\u3061\u3064"
     u"\u3066\u3068\u306A\u306B\u306C\u306D\u306E\u306F\u3072\u3075\u3078\u307B\u307E\u307F\u3080\u3081\u3082\u3084"
     u"\u3086\u3088\u3089\u308A\u308B\u308C\u308D\u308F\u3092\u3093"},
    {"hebrew", u"\u05D0", "", u"%hebrew"},
};

class LumNumber {
public:
    static constexpr const char* label = "lumcommon";

    explicit LumNumber(const Row& row) : format_(row.format), language_(row.language) {}

    UnicodeString write(int number) const {
        return language_.isEmpty() ? lum::LumUtil::formatNumber(number, format_)
                                   : lum::LumUtil::formatNumber(number, format_, UnicodeString(), 0, language_);
    }

private:
    UnicodeString format_;
    lum::LumLang language_;
};

/// What both must write, for comparison. ICU marks Hebrew numerals, ends some with a final form and reorders a few; the
/// letters are the same.
std::u16string comparable(UnicodeString text, const Row& row) {
    if (std::strcmp(row.name, "hebrew") == 0) {
        for (const char16_t* mark : {u"\u05F3", u"\u05F4"}) text.findAndReplace(mark, u"");
        text.findAndReplace(u"\u05E3", u"\u05E4");
    }
    std::u16string letters(text.getBuffer(), static_cast<std::size_t>(text.length()));
    if (std::strcmp(row.name, "hebrew") == 0) std::sort(letters.begin(), letters.end());
    return letters;
}

bool agree(const Row& row) {
    const LumNumber ours(row);
    const IcuNumber theirs(UnicodeString(row.icuRules));
    for (int number = 1; number <= lastNumber; ++number) {
        const UnicodeString a = ours.write(number), b = theirs.write(number);
        if (comparable(a, row) == comparable(b, row)) continue;
        std::string wrote, other;
        std::cerr << row.name << ", " << number << ": " << a.toUTF8String(wrote) << ", ICU " << b.toUTF8String(other)
                  << '\n';
        return false;
    }
    return true;
}

template <class Contender>
void enter(const Row& row, std::shared_ptr<const Contender> contender) {
    const std::string name = std::string("number/") + Contender::label + "/" + row.name;
    benchmark::RegisterBenchmark(name.c_str(), [contender](benchmark::State& state) {
        for (auto _ : state) {
            for (int number = 1; number <= lastNumber; ++number) benchmark::DoNotOptimize(contender->write(number));
        }
        state.SetItemsProcessed(state.iterations() * lastNumber);
    });
}

}  // namespace
}  // namespace LumBench

int main(int argc, char* argv[]) {
    using namespace LumBench;
    if (!std::all_of(std::begin(rows), std::end(rows), agree)) return 1;
    if (argc > 1 && std::strcmp(argv[1], "--check") == 0) {
        std::cout << "1 to " << lastNumber << ": equal text\n";
        return 0;
    }
    for (const Row& row : rows) {
        enter(row, std::make_shared<const LumNumber>(row));
        enter(row, std::make_shared<const IcuNumber>(UnicodeString(row.icuRules)));
        enter(row, std::make_shared<const IcuNumberByName>(UnicodeString(row.icuRules)));
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
