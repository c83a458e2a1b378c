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

/// The path to a stream of a compound file: names from the root down, as in
/// `OleDirPath{"PP97_DUALSTORAGE", "Current User"}`.
///
/// A name is UTF-8 or, if it is not well-formed UTF-8, in the platform's charset.
class LUM_API OleDirPath {
public:
    /// The path of the root: no names.
    OleDirPath() = default;
    /// The names from the root down, the root not included.
    OleDirPath(std::initializer_list<std::string> names) : names_(names) {}
    /// The same from a vector.
    OleDirPath(std::vector<std::string> names) : names_(std::move(names)) {}

    /// The number of names; 0 for the root.
    int getCount() const noexcept { return static_cast<int>(names_.size()); }
    /// @param index  from 0 to getCount() - 1.
    const std::string& getName(int index) const { return names_.at(static_cast<std::size_t>(index)); }
    /// All names, from the root down.
    const std::vector<std::string>& getNames() const noexcept { return names_; }

private:
    std::vector<std::string> names_;
};

/// An entry of the directory of a compound file: a storage, a stream or the root, read from its 128 bytes. The layout
/// is that of the published Compound File Binary format.
class LUM_API OleDirInfo {
public:
    /// What an entry of the directory is.
    enum Type : int {
        EMPTY = 0,       ///< the entry is not in use
        STORAGE = 1,     ///< holds other entries
        STREAM = 2,      ///< has bytes
        LOCK_BYTES = 3,  ///< named by the format, and not used by files
        PROPERTY = 4,    ///< named by the format, and not used by files
        ROOT = 5,        ///< the storage that holds all others
    };
    /// The size of an entry in the file, in bytes.
    static constexpr int entryBytes = 128;

    OleDirInfo() = default;

    /// The units within the name's stated length, without those that are 0.
    const UnicodeString& getName() const noexcept { return name_; }
    /// Also EMPTY for an unknown type.
    Type getType() const noexcept { return type_; }
    /// 0 or 1. Ignored by the library, which does not rely on the order of siblings.
    int getColor() const noexcept { return color_; }
    /// Its index in the directory.
    int getIndex() const noexcept { return index_; }
    /// Indexes of other entries: the siblings before and after this one, and the topmost child of a storage. Negative
    /// if there is none; an index past the end of the directory leads nowhere.
    int getLeft() const noexcept { return left_; }
    /// As getLeft(), on the other side.
    int getRight() const noexcept { return right_; }
    /// The index of an entry among those that a storage holds, from which the others are reached; -1 if it holds none.
    int getChild() const noexcept { return child_; }
    /// The bytes of the class identifier as stored; zeros unless it is a storage or the root. The same goes for the
    /// next three.
    const std::array<unsigned char, 16>& getClassId() const noexcept { return classId_; }
    /// As stored; what the bits mean is the business of the program that wrote them.
    std::uint32_t getStateBits() const noexcept { return stateBits_; }
    /// In units of 100 nanoseconds since 1601-01-01, UTC; 0 for none.
    std::uint64_t getCreationTime() const noexcept { return creationTime_; }
    /// In units of 100 nanoseconds since 1601-01-01, UTC; 0 for none.
    std::uint64_t getModificationTime() const noexcept { return modificationTime_; }
    /// The first sector of the data of a stream or the root, -2 if it has no data; -1 for other entries.
    int getStartSector() const noexcept { return startSector_; }
    /// The stated size in bytes, modulo 4 Gi; 0 unless it is a stream or the root.
    std::uint32_t getSize() const noexcept { return sizeBytes_; }

private:
    friend class OleCompFile;

    /// False if the name is stated to be longer than its field.
    /// With `passesUnused` that is accepted in an unused entry, whose name is then empty.
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
