#pragma once

#include <lumcommon/core/Text.h>

#include <cstdint>
#include <optional>
#include <string>

namespace LumCommon::detail {

/// The path, as the system expects it, of the local file that a URI names; nullopt for any other resource.
std::optional<std::string> findLocalFile(const UnicodeString& uri);

/// Which regular file it is, whatever path leads to it.
class FileIdentity {
public:
    /// None.
    FileIdentity() = default;
    /// The file that a resource is read from: a local file, or the archive that has it. None where there is none.
    static FileIdentity ofResource(const UnicodeString& uri);

    bool isNone() const noexcept { return inode_ == 0; }
    /// False where either is none.
    friend bool operator==(const FileIdentity& a, const FileIdentity& b) noexcept {
        return !a.isNone() && a.inode_ == b.inode_ && a.device_ == b.device_;
    }

private:
    std::uint64_t device_ = 0;
    std::uint64_t inode_ = 0;
};

}  // namespace LumCommon::detail
