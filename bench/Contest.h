#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "Answer.h"
#include "Inputs.h"

namespace LumBench {

/// The answers of the first contender, by input; the others must agree.
inline std::vector<Answer>& references() {
    static std::vector<Answer> all;
    return all;
}

inline bool& contestIsFair() {
    static bool fair = true;
    return fair;
}

/// Compares the contender's answers with those of the first one and registers it as "question/label/input".
///
/// A contender has a `label`, `static Answer answer(const Input&)`, a type `Prepared` that is made from an input
/// outside the timed loop, and `static std::size_t run(Prepared&)`, which does the work and returns a checksum.
template <class Contender>
void enter(const char* question) {
    std::size_t index = 0;
    for (const Input& input : inputs()) {
        const Answer answer = Contender::answer(input);
        if (references().size() == index) references().push_back(answer);
        if (answer != references()[index]) {
            std::cerr << question << ", " << input.name << ": " << Contender::label << " finds " << answer
                      << "; the first contender found " << references()[index] << '\n';
            contestIsFair() = false;
        }
        ++index;
        const std::string name = std::string(question) + "/" + Contender::label + "/" + input.name;
        benchmark::RegisterBenchmark(name.c_str(), [&input](benchmark::State& state) {
            typename Contender::Prepared prepared(input);
            std::size_t seen = 0;
            for (auto _ : state) benchmark::DoNotOptimize(seen += Contender::run(prepared));
            state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.bytes.size()));
        });
    }
}

/// Runs the benchmarks; with --check it only compares the answers.
inline int runContest(int argc, char** argv) {
    if (!contestIsFair()) return 1;
    if (argc > 1 && std::strcmp(argv[1], "--check") == 0) {
        for (std::size_t i = 0; i < references().size(); ++i) {
            std::cout << inputs()[i].name << ": " << references()[i] << '\n';
        }
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace LumBench
