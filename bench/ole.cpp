// How fast the streams of a large compound file are read, compared with copying the file with read and write.
//   bench_ole [--check]
// The contenders take turns, round by round; the program prints the median of each and the ratio of the speeds. With
// --check it runs one round and compares the bytes, without requiring a ratio; otherwise it fails if reading is less
// than half as fast as copying.

#include <lumcommon/lumcommon.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "../tests/containers/OleBytes.h"

using namespace LumCommon;

namespace {

constexpr std::size_t fileBytes = 50'000'000;
constexpr std::size_t pieceBytes = 1 << 16;

/// Large and small streams, some of them in the mini stream.
std::vector<LumTest::OleNode> makeTree() {
    std::vector<LumTest::OleNode> tree;
    std::size_t total = 0;
    for (unsigned i = 0; total < fileBytes; ++i) {
        const std::size_t size = i % 10 == 0 ? 2'000'000 : i % 10 < 5 ? 100'000 : 3'000;
        const std::string name = "stream " + std::to_string(i);
        tree.push_back({std::u16string(name.begin(), name.end()), LumTest::patternBytes(size, i)});
        total += size;
    }
    return tree;
}

bool copyFile(const std::string& from, const std::string& to) {
    const int in = open(from.c_str(), O_RDONLY);
    const int out = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<char> piece(pieceBytes);
    ssize_t got = 0;
    bool isGood = in >= 0 && out >= 0;
    while (isGood && (got = read(in, piece.data(), piece.size())) > 0) {
        isGood = write(out, piece.data(), static_cast<std::size_t>(got)) == got;
    }
    close(in);
    close(out);
    return isGood && got == 0;
}

/// Reads every stream of the file and returns the number of bytes; compares them with `expected` if that is given.
std::size_t readStreams(const std::string& path, const std::vector<LumTest::OleNode>* expected) {
    OleCompFile file;
    if (!file.OLEopen(path.c_str())) return 0;
    std::vector<unsigned char> piece(pieceBytes);
    std::size_t total = 0;
    for (long i = 1; i < file.getDirCount(); ++i) {
        OleStream stream(&file);
        if (!stream.GetStreamChain(static_cast<int>(i))) continue;
        std::size_t at = 0;
        for (unsigned got = 0; (got = stream.OLEread(piece.data(), pieceBytes)) != 0; at += got) {
            const std::string* const data = expected ? &(*expected)[static_cast<std::size_t>(i - 1)].data : nullptr;
            if (data && data->compare(at, got, reinterpret_cast<char*>(piece.data()), got) != 0) return 0;
        }
        total += at;
    }
    return total;
}

template <class Work>
double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Whether reading is at least half as fast as copying.
bool race(const std::string& path, std::size_t bytes) {
    constexpr int rounds = 9;
    std::vector<double> copying, reading;
    for (int i = 0; i < rounds; ++i) {
        copying.push_back(secondsOf([&] { copyFile(path, path + ".copy"); }));
        reading.push_back(secondsOf([&] { readStreams(path, nullptr); }));
    }
    const double megabytes = static_cast<double>(bytes) / 1e6;
    const double ratio = median(copying) / median(reading);
    std::printf("%.0f MB compound file: copied at %.0f MB/s, all streams read at %.0f MB/s: %.2f times the speed\n",
                megabytes, megabytes / median(copying), megabytes / median(reading), ratio);
    return ratio >= 0.5;
}

}  // namespace

int main(int argc, char* argv[]) {
    const bool isCheck = argc > 1 && std::strcmp(argv[1], "--check") == 0;
    const std::vector<LumTest::OleNode> tree = makeTree();
    std::size_t expected = 0;
    for (const LumTest::OleNode& node : tree) expected += node.data.size();
    std::string folder = (std::filesystem::temp_directory_path() / "lumbenchXXXXXX").string();
    if (!mkdtemp(folder.data())) return 1;
    const std::string path = folder + "/large.ole";
    {
        const LumTest::OleImage image(tree);
        std::ofstream(path, std::ios_base::binary) << image.bytes;
    }
    bool isGood = readStreams(path, &tree) == expected && copyFile(path, path + ".copy");
    if (!isGood) std::fprintf(stderr, "the streams are not what was written\n");
    if (isGood && !isCheck) isGood = race(path, std::filesystem::file_size(path));
    std::filesystem::remove_all(folder);
    return isGood ? 0 : 1;
}
