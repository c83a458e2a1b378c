// Ten common number format codes: the time to parse one, and to show one cell with a parsed one. ICU shows the same
// cells with its own patterns where it has one that means the same.

#include <benchmark/benchmark.h>
#include <lumcommon/format/xls/XlsFormat.h>
#include <unicode/calendar.h>
#include <unicode/decimfmt.h>
#include <unicode/smpdtfmt.h>

#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

using icu::UnicodeString;
using LumCommon::XlsFormat;

struct Code {
    const char* name;
    const char16_t* code;
    const char16_t* pattern;  ///< ICU's; null where it has none
    bool isDate;
};
constexpr Code codes[] = {
    {"general", u"General", nullptr, false},
    {"integer", u"0", u"0", false},
    {"decimals", u"0.00", u"0.00", false},
    {"thousands", u"#,##0.00", u"#,##0.00", false},
    {"percent", u"0%", u"0%", false},
    {"scientific", u"0.00E+00", u"0.00E+00", false},
    {"accounting", u"_($* #,##0.00_);[Red]_($* (#,##0.00);_($* \"-\"??_);_(@_)", nullptr, false},
    {"fraction", u"# ?\?/??", nullptr, false},
    {"date", u"yyyy-mm-dd", u"yyyy-MM-dd", true},
    {"time", u"h:mm:ss AM/PM", u"h:mm:ss a", true},
};

/// Numbers as in a ledger, and dates and times over some sixty years.
const std::vector<double>& values(bool areDates) {
    static const auto make = [](bool dates) {
        std::vector<double> result;
        unsigned state = 1;
        for (int i = 0; i < 1000; ++i) {
            state = state * 1664525u + 1013904223u;
            const double random = state >> 8;  // below 2^24
            result.push_back(dates ? 25569 + random / 768 : (random - 2e6) / 100);
        }
        return result;
    };
    static const std::vector<double> numbers = make(false);
    static const std::vector<double> dates = make(true);
    return areDates ? dates : numbers;
}

/// ICU's formatter for one code.
class IcuFormat {
public:
    explicit IcuFormat(const Code& code) {
        UErrorCode status = U_ZERO_ERROR;
        if (code.isDate) {
            date_ = std::make_unique<icu::SimpleDateFormat>(UnicodeString(code.pattern), icu::Locale::getUS(), status);
            date_->adoptTimeZone(icu::TimeZone::createTimeZone(u"UTC"));
        } else {
            number_ = std::make_unique<icu::DecimalFormat>(
                code.pattern, new icu::DecimalFormatSymbols(icu::Locale::getUS(), status), status);
            number_->setRoundingMode(icu::DecimalFormat::kRoundHalfUp);
        }
    }
    void format(double value, UnicodeString& text) const {
        text.remove();
        if (date_) {
            date_->format((value - 25569) * 86400000 + 0.5, text);
        } else {
            number_->format(value, text);
        }
    }

private:
    std::unique_ptr<icu::DecimalFormat> number_;
    std::unique_ptr<icu::SimpleDateFormat> date_;
};

bool agrees(const Code& code) {
    if (!code.pattern) return true;
    const XlsFormat ours{UnicodeString(code.code)};
    const IcuFormat theirs(code);
    UnicodeString expected;
    for (const double value : values(code.isDate)) {
        // We round seconds and ICU truncates them, so both get a time that is a quarter into a second.
        const double cell =
            code.isDate ? (static_cast<double>(static_cast<long long>(value * 86400)) + 0.25) / 86400 : value;
        theirs.format(cell, expected);
        if (ours.format(cell).text == expected) continue;
        std::string a, b;
        std::cerr << code.name << ' ' << cell << ": " << ours.format(cell).text.toUTF8String(a) << ", ICU "
                  << expected.toUTF8String(b) << '\n';
        return false;
    }
    return true;
}

void parse(benchmark::State& state, const Code& code) {
    const UnicodeString text(code.code);
    for (auto _ : state) {
        XlsFormat format(text);
        benchmark::DoNotOptimize(format.getSections().count);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

template <class Show>
void show(benchmark::State& state, const Code& code, Show one) {
    const std::vector<double>& cells = values(code.isDate);
    std::size_t next = 0;
    for (auto _ : state) {
        one(cells[next]);
        next = next + 1 == cells.size() ? 0 : next + 1;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void enter(const Code& code) {
    const std::string name = code.name;
    benchmark::RegisterBenchmark(("xlsformat/lumcommon/parse " + name).c_str(),
                                 [&code](benchmark::State& state) { parse(state, code); });
    benchmark::RegisterBenchmark(("xlsformat/lumcommon/cell " + name).c_str(), [&code](benchmark::State& state) {
        const XlsFormat format{UnicodeString(code.code)};
        XlsFormat::Result result;
        show(state, code, [&](double value) {
            format.format(value, result);
            benchmark::DoNotOptimize(result.text.length());
        });
    });
    if (!code.pattern) return;
    benchmark::RegisterBenchmark(("xlsformat/icu/cell " + name).c_str(), [&code](benchmark::State& state) {
        const IcuFormat format(code);
        UnicodeString text;
        show(state, code, [&](double value) {
            format.format(value, text);
            benchmark::DoNotOptimize(text.length());
        });
    });
}

}  // namespace

int main(int argc, char* argv[]) {
    bool isFair = true;
    for (const Code& code : codes) isFair = agrees(code) && isFair;
    if (!isFair) return 1;
    if (argc > 1 && std::strcmp(argv[1], "--check") == 0) {
        std::cout << std::size(codes) << " codes, as ICU shows them where it has them\n";
        return 0;
    }
    for (const Code& code : codes) enter(code);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
