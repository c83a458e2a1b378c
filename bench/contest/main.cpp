// The frame of every contender's program. Several such programs are asked in turns by bench/judge/, which so mixes them
// as finely as it likes, while each has its own heap.
//
//   PROGRAM                            the questions and labels that it has, a line each
//   PROGRAM QUESTION LABEL FILE        prints "answer N..." and then obeys the lines that it reads:
//                                        go    turns for a while; prints "PART NANOSECONDS..." a byte (or unit of work)
//                                        pair  two threads, each with its own trial; prints how much more two do
//   PROGRAM memory LABEL FILE          prints "memory N", the bytes of memory that a tree takes, a byte of input

#include <malloc.h>
#include <unistd.h>

#include <barrier>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <thread>

#include "Contender.h"

namespace LumBench {
namespace {

constexpr double secondsAtLeast = 0.03;

const Entry& find(std::string_view question, std::string_view label) {
    static const std::vector<Entry> all = entries();
    for (const Entry& entry : all) {
        if (question == entry.question && label == entry.label) return entry;
    }
    throw std::runtime_error("no such question");
}

double unitsOf(const Trial& trial, const Input& input) {
    return static_cast<double>(trial.units() != 0 ? trial.units() : input.bytes.size());
}

void go(Trial& trial, const Input& input) {
    std::map<std::string, double> sums;
    int turns = 0;
    Stopwatch watch;
    double spent = 0;
    do {
        for (const Lap& lap : trial.turn()) sums[lap.part] += lap.seconds;
        ++turns;
        spent += watch.lap();
    } while (spent < secondsAtLeast);
    for (const auto& [part, seconds] : sums) {
        std::printf("%s %.6g ", part.empty() ? "-" : part.c_str(), 1e9 * seconds / turns / unitsOf(trial, input));
    }
    std::puts("");
}

/// The wall time that it takes until every thread has done its turns.
double together(const Entry& entry, const Input& input, int threads, int turns) {
    std::vector<std::unique_ptr<Trial>> trials;
    for (int i = 0; i < threads; ++i) {
        trials.push_back(entry.make(input));
        trials.back()->turn();
    }
    double began = 0;
    std::barrier start(threads, [&]() noexcept { began = secondsOf(CLOCK_MONOTONIC); });
    std::vector<std::jthread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back([&, i] {
            start.arrive_and_wait();
            for (int n = 0; n < turns; ++n) trials[static_cast<std::size_t>(i)]->turn();
        });
    }
    running.clear();  // joins
    return secondsOf(CLOCK_MONOTONIC) - began;
}

void pair(const Entry& entry, const Input& input) {
    int turns = 1;
    double one = together(entry, input, 1, turns);
    while (one < 4 * secondsAtLeast) {
        turns *= 2;
        one = together(entry, input, 1, turns);
    }
    std::printf("- %.6g\n", 2 * one / together(entry, input, 2, turns));
}

std::size_t residentBytes() {
    malloc_trim(0);
    std::size_t total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// The tree is that of the trial "walk". A small one is loaded first, so that no code and no table is counted.
void measureMemory(const Entry& entry, const Input& input) {
    entry.make(Input{"small", "<r a=\"b\">text<c/></r>"});
    const std::size_t before = residentBytes();
    const std::unique_ptr<Trial> trial = entry.make(input);
    const std::size_t after = residentBytes();
    std::printf("memory %.6g\n", static_cast<double>(after - before) / static_cast<double>(input.bytes.size()));
}

void obey(const Entry& entry, const Input& input) {
    const std::unique_ptr<Trial> trial = entry.make(input);
    std::printf("answer");
    for (const std::size_t number : trial->answer()) std::printf(" %zu", number);
    std::puts("");
    std::fflush(stdout);
    trial->turn();  // warms up
    for (std::string command; std::getline(std::cin, command); std::fflush(stdout)) {
        if (command == "go") go(*trial, input);
        if (command == "pair") pair(entry, input);
    }
}

}  // namespace
}  // namespace LumBench

int main(int argc, char* argv[]) try {
    using namespace LumBench;
    if (argc == 1) {
        for (const Entry& entry : entries()) std::printf("%s\t%s\n", entry.question, entry.label);
        return 0;
    }
    if (argc != 4) throw std::runtime_error("usage: QUESTION LABEL FILE");
    const Input input = readInput(argv[3]);
    if (std::strcmp(argv[1], "memory") == 0) {
        measureMemory(find("walk", argv[2]), input);
    } else {
        obey(find(argv[1], argv[2]), input);
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << '\n';
    return 1;
}
