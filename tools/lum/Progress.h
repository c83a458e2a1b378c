#pragma once

#include <memory>
#include <string>

namespace LumTool {

/// While it lives, and once two seconds have passed, tells a terminal at standard error how much of a file has been
/// read, how fast, and how long the rest will take. Silent where standard error is no terminal, or where what the
/// command writes goes to that terminal.
///
/// A thread of its own asks the operating system where the file's descriptor stands; the work itself is not slowed.
class Progress {
public:
    enum class Output { Standard, File };

    /// @param file  what the command line names; "-" is standard input. What is not a local file has no size, and
    ///              shows no rest.
    Progress(const std::string& file, Output output);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Clears the line.
    ~Progress();

private:
    class Watcher;
    std::unique_ptr<Watcher> watcher_;
};

}  // namespace LumTool
