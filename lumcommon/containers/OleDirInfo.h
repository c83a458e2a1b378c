#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace LumCommon {

/// The way to a stream of a compound file: names from the root down, as in
/// `OleDirPath{"PP97_DUALSTORAGE", "Current User"}`.
///
/// A name is UTF-8 or, where it is not well-formed as that, in the platform's charset.
class LUM_API OleDirPath {
public:
    OleDirPath() = default;
    OleDirPath(std::initializer_list<std::string> names) : names_(names) {}
    OleDirPath(std::vector<std::string> names) : names_(std::move(names)) {}

    int getCount() const noexcept { return static_cast<int>(names_.size()); }
    /// @param index  from 0 to getCount() - 1.
    const std::string& getName(int index) const { return names_.at(static_cast<std::size_t>(index)); }
    const std::vector<std::string>& getNames() const noexcept { return names_; }

private:
    std::vector<std::string> names_;
};

/// An entry of the directory of a compound file: a storage, a stream or the root, by its fields of 128 bytes.
/// The layout is that of the published Compound File Binary format.
class LUM_API OleDirInfo {
public:
    enum Type : int { EMPTY = 0, STORAGE = 1, STREAM = 2, LOCK_BYTES = 3, PROPERTY = 4, ROOT = 5 };
    static constexpr int entryBytes = 128;

    OleDirInfo() = default;

    /// The units of the name's stated length, without those that are 0.
    const UnicodeString& getName() const noexcept { return name_; }
    /// EMPTY also for an unknown type.
    Type getType() const noexcept { return type_; }
    /// 0 or 1. Nothing here relies on the order of siblings, so nothing looks at it.
    int getColor() const noexcept { return color_; }
    /// Its place in the directory.
    int getIndex() const noexcept { return index_; }
    /// Places of other entries: the siblings before and after this one, the topmost of a storage's own entries.
    /// Negative when there is none; one behind the end of the directory leads nowhere.
    int getLeft() const noexcept { return left_; }
    int getRight() const noexcept { return right_; }
    int getChild() const noexcept { return child_; }
    /// The bytes of the class identifier as stored; zeros unless it is a storage or the root, as with the next three.
    const std::array<unsigned char, 16>& getClassId() const noexcept { return classId_; }
    std::uint32_t getStateBits() const noexcept { return stateBits_; }
    /// In 100 nanoseconds since 1601-01-01, UTC; 0 for none.
    std::uint64_t getCreationTime() const noexcept { return creationTime_; }
    std::uint64_t getModificationTime() const noexcept { return modificationTime_; }
    /// Where the data begin, of a stream or the root; -1 for others, -2 when there are none.
    int getStartSector() const noexcept { return startSector_; }
    /// In bytes, as stated, modulo 4 Gi; 0 unless it is a stream or the root.
    std::uint32_t getSize() const noexcept { return sizeBytes_; }

private:
    friend class OleCompFile;

    /// False when the name is stated to be longer than its field.
    /// @param passesUnused  an unused entry has no name then, and gives true.
    bool parse(std::span<const char, entryBytes> entry, bool littleEndian, int index, bool passesUnused);

    UnicodeString name_;
    Type type_ = EMPTY;
    int color_ = 0;
    int index_ = 0;
    int left_ = -1;
    int right_ = -1;
    int child_ = -1;
    std::array<unsigned char, 16> classId_{};
    std::uint32_t stateBits_ = 0;
    std::uint64_t creationTime_ = 0;
    std::uint64_t modificationTime_ = 0;
    int startSector_ = -1;
    std::uint32_t sizeBytes_ = 0;
};

}  // namespace LumCommon
