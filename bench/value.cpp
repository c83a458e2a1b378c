// Property texts of real documents to values: values per second, and allocations, which are counted, not assumed.
//
// All names are built in or already interned: the shared name table is held, so that a document's own names are
// interned once.

#include <benchmark/benchmark.h>
#include <lumcommon/lumcommon.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <support/CountedMemory.h>

namespace {

using namespace LumCommon;

/// The kinds of texts that are measured separately.
enum Group { numbers, names, colors, texts, all, groupCount };
constexpr const char* groupNames[groupCount] = {"numbers", "names", "colours", "other texts", "all"};

std::vector<UnicodeString> groups[groupCount];

Group groupOf(const UnicodeString& text) {
    const LumValue value = LumValue::parse(text);
    if (LumValue::parseColor(text, true).getUnit() == UNIT_COLOR) return colors;
    if (value.isNumeric()) return numbers;
    return value.getKind() == KIND_NAME ? names : texts;
}

bool readGroups() {
    std::ifstream in(LUM_BENCH_DATA "/values/properties.txt");
    for (std::string row; std::getline(in, row);) {
        const UnicodeString text = UnicodeString::fromUTF8(row.substr(0, row.find('|'))).trim().unescape();
        groups[groupOf(text)].push_back(text);
        groups[all].push_back(text);
    }
    for (const std::vector<UnicodeString>& group : groups) {
        if (group.empty()) return false;
    }
    return true;
}

LumValue parse(const UnicodeString& text) { return LumValue::parse(text); }
LumValue parseColor(const UnicodeString& text) { return LumValue::parseColor(text, true); }
std::uint32_t readColor(const UnicodeString& text) { return LumColor(LumValue::parseColor(text, true)).getRGB(); }
int splitTokens(const UnicodeString& text) {
    LumTokenizer tokenizer(text);
    int count = 0;
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) ++count;
    return count;
}

template <class Operation>
void enter(const char* name, Operation operation, Group group) {
    const std::string title = std::string("value/") + name + "/" + groupNames[group];
    benchmark::RegisterBenchmark(title.c_str(), [operation, group](benchmark::State& state) {
        const std::size_t before = LumTest::allocations;
        for (auto _ : state) {
            for (const UnicodeString& text : groups[group]) benchmark::DoNotOptimize(operation(text));
        }
        const auto values = static_cast<double>(state.iterations()) * static_cast<double>(groups[group].size());
        state.SetItemsProcessed(static_cast<std::int64_t>(values));
        state.counters["allocations"] = static_cast<double>(LumTest::allocations - before) / values;
    });
}

/// Whether numbers, names and RGB colours are parsed without allocating.
bool needsNoMemory() {
    bool isTrue = true;
    for (const Group group : {numbers, names, colors}) {
        const std::size_t before = LumTest::allocations;
        for (const UnicodeString& text : groups[group]) {
            if (group != colors || text.charAt(0) == u'#') benchmark::DoNotOptimize(parse(text));
            benchmark::DoNotOptimize(parseColor(text));
        }
        const std::size_t counted = LumTest::allocations - before;
        std::printf("%s: %zu texts, %zu allocations\n", groupNames[group], groups[group].size(), counted);
        isTrue &= counted == 0;
    }
    const std::size_t before = LumTest::allocations;
    benchmark::DoNotOptimize(parse(UnicodeString(1000, u'x', 1000)));
    if (LumTest::allocations == before) std::puts("the counter does not count");
    return isTrue && LumTest::allocations > before;
}

}  // namespace

// With --check, only counts the allocations.
int main(int argc, char* argv[]) {
    if (!LumTest::countMemoryOfIcu() || !readGroups()) {
        std::fputs("bench_value: no property texts\n", stderr);
        return 1;
    }
    LumNameTable::addRefSharedNameTable();
    for (const UnicodeString& text : groups[all]) parse(text);  // interns the names
    bool isGood = true;
    if (argc > 1 && std::strcmp(argv[1], "--check") == 0) {
        isGood = needsNoMemory();
    } else {
        for (int group = 0; group < groupCount; ++group) {
            enter("parse", parse, static_cast<Group>(group));
            enter("parseColor", parseColor, static_cast<Group>(group));
            enter("to a colour", readColor, static_cast<Group>(group));
            enter("tokens", splitTokens, static_cast<Group>(group));
        }
        benchmark::Initialize(&argc, argv);
        benchmark::RunSpecifiedBenchmarks();
    }
    LumNameTable::releaseSharedNameTable();
    return isGood ? 0 : 1;
}
