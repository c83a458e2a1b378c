#include "Progress.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

namespace LumTool {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr double bytesInMegabyte = 1e6;

/// How many bytes have come from files and pipes so far, by the account of the operating system; 0 if it has none.
double bytesRead() {
    std::ifstream account("/proc/self/io");
    std::string name;
    double bytes = 0;
    return account >> name >> bytes && name == "rchar:" ? bytes : 0;
}

/// Where this process stands in that file; -1 if it has not opened it, or not by a descriptor of its own.
off_t offsetIn(const struct stat& file) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
        const int descriptor = std::atoi(entry.path().filename().c_str());
        struct stat opened;
        if (fstat(descriptor, &opened) == 0 && opened.st_ino == file.st_ino && opened.st_dev == file.st_dev) {
            return lseek(descriptor, 0, SEEK_CUR);
        }
    }
    return -1;
}

}  // namespace

class Progress::Watcher {
public:
    explicit Watcher(const std::string& file) : start_(Clock::now()), readBefore_(bytesRead()) {
        const int found = file == "-" ? fstat(STDIN_FILENO, &file_) : stat(file.c_str(), &file_);
        isFile_ = found == 0 && S_ISREG(file_.st_mode) && file_.st_size > 0;
        thread_ = std::thread([this] { watch(); });
    }

    ~Watcher() {
        {
            const std::lock_guard lock(mutex_);
            isOver_ = true;
        }
        over_.notify_one();
        thread_.join();
        if (isShown_) std::fputs("\r\033[K", stderr);
    }

private:
    using Clock = std::chrono::steady_clock;

    void watch() {
        constexpr auto patience = std::chrono::seconds(2);
        constexpr auto interval = std::chrono::milliseconds(200);
        std::unique_lock lock(mutex_);
        for (auto next = start_ + patience; !over_.wait_until(lock, next, [this] { return isOver_; });) {
            show();
            next = Clock::now() + interval;
        }
    }

    void show() {
        const double seconds = Seconds(Clock::now() - start_).count();
        const auto offset = isFile_ ? static_cast<double>(offsetIn(file_)) : -1;
        if (offset >= 0) lastOffset_ = offset;  // once it is closed, all has been read that is needed
        const double read = isFile_ ? lastOffset_ : bytesRead() - readBefore_;
        const double rate = read / seconds;
        std::fprintf(stderr, "\rlum: %.1f MB", read / bytesInMegabyte);
        if (isFile_) {
            const auto size = static_cast<double>(file_.st_size);
            std::fprintf(stderr, " of %.1f MB, %.0f %%", size / bytesInMegabyte, 100 * std::min(read / size, 1.0));
            if (rate > 0) std::fprintf(stderr, ", %.0f s left", std::max(size - read, 0.0) / rate);
        }
        std::fprintf(stderr, ", %.1f MB/s\033[K", rate / bytesInMegabyte);
        std::fflush(stderr);
        isShown_ = true;
    }

    const Clock::time_point start_;
    const double readBefore_;
    struct stat file_;
    bool isFile_ = false;
    double lastOffset_ = 0;
    bool isShown_ = false;
    bool isOver_ = false;
    std::mutex mutex_;
    std::condition_variable over_;
    std::thread thread_;
};

Progress::Progress(const std::string& file, Output output) {
    const bool isMixed = output == Output::Standard && isatty(STDOUT_FILENO) != 0;
    if (isatty(STDERR_FILENO) != 0 && !isMixed) watcher_ = std::make_unique<Watcher>(file);
}

Progress::~Progress() = default;

}  // namespace LumTool
