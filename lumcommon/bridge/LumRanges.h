#pragma once

#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/core/Api.h>
#include <lumcommon/core/LumPtr.h>
#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumNode.h>
#include <lumcommon/values/LumNamedValueMap.h>

#include <concepts>
#include <cstddef>
#include <iterator>
#include <ranges>
#include <span>
#include <type_traits>
#include <vector>

/// What the library holds, as ranges for `for` and for the algorithms of the standard library.
///
///     for (LumElement* chapter : children<LumElement>(book)) {
///         for (LumAttr* attribute : attributes(chapter)) ...
///         if (chapter->getLocalName() == NAME_block) book->removeChild(chapter);
///     }
///     auto blocks = std::ranges::count(descendants<LumElement>(book), LumName(NAME_block), &LumElement::getLocalName);
///
/// Iterators are std::forward_iterator, those of archives and compound files random access iterators.
namespace LumCommon {

/// A position among the children, the descendants or the attributes of a node: what the iterators of these share. It
/// holds the current node, so that this can be used after it was taken out.
class LUM_API LumNodeWalk {
public:
    /// Which nodes are met.
    enum class Axis {
        CHILDREN,     ///< those of the node
        DESCENDANTS,  ///< in document order, the node itself left out
        ATTRIBUTES,   ///< in the order in which they were set
    };

    /// The end.
    LumNodeWalk() noexcept = default;
    /// The first node.
    /// @param root    must outlive the walk; for attributes a LumElement.
    /// @param axis    which nodes are met.
    /// @param typeId  that of a class, to pass over nodes of others.
    LumNodeWalk(const LumNode& root, Axis axis, unsigned typeId);

    /// Null at the end.
    LumNode* get() const noexcept { return current_.get(); }
    /// Moves to the next node. Not at the end.
    void advance();

    /// Whether both stand at the same place.
    friend bool operator==(const LumNodeWalk& a, const LumNodeWalk& b) noexcept { return a.current_ == b.current_; }

private:
    const LumNode* parent() const noexcept { return parent_ ? parent_.get() : root_; }
    LumNode* follower() const;
    void goTo(LumNode* node);
    void step();

    LumPtr<LumNode> current_;
    LumPtr<LumNode> next_;    // what followed it among its siblings when it was reached
    LumPtr<LumNode> parent_;  // of the current node, unless that is the root
    const LumNode* root_ = nullptr;
    Axis axis_ = Axis::CHILDREN;
    unsigned typeId_ = 0;
};

/// The nodes of class T among the children, descendants or attributes of a node, as T*. Each begin() starts anew.
template <std::derived_from<LumNode> T>
class LumNodeRange {
public:
    /// Walks over the range; see there what may change meanwhile.
    class Iterator {
    public:
        /// What a step gives.
        using value_type = T*;
        /// Distances, which no forward iterator has.
        using difference_type = std::ptrdiff_t;
        /// What the ranges of C++20 may expect.
        using iterator_concept = std::forward_iterator_tag;
        /// What the algorithms before them may expect.
        using iterator_category = std::input_iterator_tag;  // it has no objects to refer to
        /// What operator*() gives.
        using reference = T*;
        /// There is none: what is given is a value.
        using pointer = void;

        Iterator() noexcept = default;
        /// At the place of the walk.
        explicit Iterator(LumNodeWalk&& walk) noexcept : walk_(std::move(walk)) {}

        /// Where it stands.
        T* operator*() const noexcept { return static_cast<T*>(walk_.get()); }
        /// Goes on to the next.
        Iterator& operator++() {
            walk_.advance();
            return *this;
        }
        /// The same; gives where it stood.
        Iterator operator++(int) {
            Iterator before(*this);
            walk_.advance();
            return before;
        }
        /// Whether both stand at the same place.
        friend bool operator==(const Iterator&, const Iterator&) noexcept = default;

    private:
        LumNodeWalk walk_;
    };

    LumNodeRange() noexcept = default;
    /// Of a node that must live as long; null gives none.
    LumNodeRange(const LumNode* root, LumNodeWalk::Axis axis) noexcept : root_(root), axis_(axis) {}

    /// The first.
    Iterator begin() const { return root_ ? Iterator(LumNodeWalk(*root_, axis_, T::TYPE_ID)) : Iterator(); }
    /// After the last.
    Iterator end() const noexcept { return {}; }
    /// Whether there is none.
    bool empty() const { return begin() == end(); }

private:
    const LumNode* root_ = nullptr;
    LumNodeWalk::Axis axis_ = LumNodeWalk::Axis::CHILDREN;
};

/// The children of a node, or those of one class: `children<LumElement>(node)`. Null has none.
///
/// The walk is live: it goes on from where the current node stands. If that was taken out (removed, replaced, moved to
/// another parent), it goes on with what followed when it was reached, so that each can be taken out in its turn; if
/// that one was taken out as well, the walk ends. Moving the current node among its siblings moves the walk.
/// In a document that is still being loaded, the next child is read before the current one is shown.
/// Ownership: the node must outlive the range and its iterators, which hold the current child and the next.
/// Errors: those of loading.   Cost: constant for each child.   Threads: as for the tree.
template <std::derived_from<LumNode> T = LumNode>
[[nodiscard]] LumNodeRange<T> children(const LumNode* node) noexcept {
    return {node, LumNodeWalk::Axis::CHILDREN};
}
/// The same of what a LumPtr holds.
template <std::derived_from<LumNode> T = LumNode, std::derived_from<LumNode> Node>
[[nodiscard]] LumNodeRange<T> children(const LumPtr<Node>& node) noexcept {
    return children<T>(node.get());
}

/// The descendants of a node in document order, without the node itself. As for children(), with these differences: a
/// node that is taken out takes its descendants with it; when an ancestor of the current node is removed, the walk ends
/// with its subtree (and goes on behind an ancestor that was moved); and in a document that is still being loaded
/// nothing is read ahead, so that a node can only be taken out there once the one after it has been read. Cost: linear
/// for the whole walk; constant use of the stack.
template <std::derived_from<LumNode> T = LumNode>
[[nodiscard]] LumNodeRange<T> descendants(const LumNode* node) noexcept {
    return {node, LumNodeWalk::Axis::DESCENDANTS};
}
/// The same of what a LumPtr holds.
template <std::derived_from<LumNode> T = LumNode, std::derived_from<LumNode> Node>
[[nodiscard]] LumNodeRange<T> descendants(const LumPtr<Node>& node) noexcept {
    return descendants<T>(node.get());
}

/// The attributes of an element, in their order, as for children(). They are walked without the map that
/// LumElement::getAttributes() makes.
[[nodiscard]] inline LumNodeRange<LumAttr> attributes(const LumElement* element) noexcept {
    return {element, LumNodeWalk::Axis::ATTRIBUTES};
}
/// The same of what a LumPtr holds.
template <std::derived_from<LumElement> Element>
[[nodiscard]] LumNodeRange<LumAttr> attributes(const LumPtr<Element>& element) noexcept {
    return attributes(element.get());
}

/// The entries of a map as LumNamedValue, in the order of the identifiers of their names; of a null map none.
///
///     for (const LumNamedValue& item : items(value)) std::cout << item.getName() << ": " << item << '\n';
///
/// Any entry can be set or removed meanwhile: the walk goes on with the first name after the current one.
/// Ownership: the range and its iterators hold the map.   Cost: that of copying a value.   Threads: as for the map.
class LUM_API LumItemRange {
public:
    /// Walks over the range; see there what may change meanwhile.
    class LUM_API Iterator {
    public:
        /// What a step gives.
        using value_type = LumNamedValue;
        /// Distances, which no forward iterator has.
        using difference_type = std::ptrdiff_t;
        /// What the ranges of C++20 may expect.
        using iterator_concept = std::forward_iterator_tag;
        /// What the algorithms before them may expect.
        using iterator_category = std::input_iterator_tag;
        /// What operator*() gives.
        using reference = LumNamedValue;
        /// There is none: what is given is a value.
        using pointer = void;

        Iterator() noexcept = default;
        /// The first entry.
        explicit Iterator(LumPtr<const LumNamedValueMap> map);

        /// The entry as it is now; a null value under its name if it was removed.
        LumNamedValue operator*() const;
        /// Goes on to the next.
        Iterator& operator++();
        /// The same; gives where it stood.
        Iterator operator++(int) {
            Iterator before(*this);
            ++*this;
            return before;
        }
        /// Whether both stand at the same place.
        friend bool operator==(const Iterator& a, const Iterator& b) noexcept {
            return a.isAtEnd_ == b.isAtEnd_ && (a.isAtEnd_ || a.name_ == b.name_);
        }

    private:
        LumName nameAt(int index) const { return map_->item(index).getName(); }
        void stopAt(int index);

        LumPtr<const LumNamedValueMap> map_;
        LumName name_;
        int index_ = 0;  // of the entry when it was reached
        bool isAtEnd_ = true;
    };

    LumItemRange() noexcept = default;
    /// Of a map that must live as long; null gives none.
    explicit LumItemRange(const LumNamedValueMap* map) noexcept : map_(map) {}

    /// The first.
    Iterator begin() const { return Iterator(map_); }
    /// After the last.
    Iterator end() const noexcept { return {}; }
    /// Whether there is none.
    bool empty() const noexcept { return !map_ || map_->getCount() == 0; }

private:
    LumPtr<const LumNamedValueMap> map_;
};

/// The entries of a map; of null none. See LumItemRange.
[[nodiscard]] inline LumItemRange items(const LumNamedValueMap* map) noexcept { return LumItemRange(map); }
/// The same of what a LumPtr holds.
[[nodiscard]] inline LumItemRange items(const LumPtr<LumNamedValueMap>& map) noexcept { return items(map.get()); }
/// Those of a compound; any other value has none.
template <std::derived_from<LumValue> Value>
[[nodiscard]] LumItemRange items(const Value& value) noexcept {
    return items(value.getNamedValueMap());
}

/// The members of an archive, in its order.
///
///     for (const LumPtr<LumZipFileEntry>& member : members(zip)) std::cout << toUtf8(member->getFileName()) << '\n';
///
/// Valid until another archive is opened or this one is destroyed.   Cost: constant.
[[nodiscard]] inline std::span<const LumPtr<LumZipFileEntry>> members(const LumZipFile& zip) noexcept {
    return zip.getFileEntries();
}

/// An entry of a compound file that a path leads to.
struct LumOleEntry {
    const OleDirInfo* info = nullptr;  ///< borrowed from the file
    std::ptrdiff_t storage = -1;       ///< the position in the list of the storage that it is in; -1 for the root
};

/// The storages and streams of a compound file: each storage before what is in it, siblings in the order of their tree.
/// It is a list made at once: closing the file makes its entries invalid.
class LUM_API LumOleEntries {
public:
    LumOleEntries() noexcept = default;
    /// Errors: std::bad_alloc.   Cost: linear in the directory; each entry is listed once, wherever links lead.
    explicit LumOleEntries(const OleCompFile& file);

    /// The first.
    auto begin() const noexcept { return entries_.begin(); }
    /// After the last.
    auto end() const noexcept { return entries_.end(); }
    /// Whether there is none.
    bool empty() const noexcept { return entries_.empty(); }
    /// How many there are.
    std::size_t size() const noexcept { return entries_.size(); }
    /// How many there are.
    const LumOleEntry& operator[](std::size_t position) const noexcept { return entries_[position]; }

    /// The path of one of these entries, for OleCompFile::OLEopenStream().   Cost: linear in the depth.
    OleDirPath getPath(const LumOleEntry& entry) const;

private:
    std::vector<LumOleEntry> entries_;
};

/// What is in a compound file; nothing if none is open.
///
///     const LumOleEntries all = entries(file);
///     for (const LumOleEntry& entry : all) {
///         if (entry.info->getType() == OleDirInfo::STREAM) read(file, all.getPath(entry));
///     }
[[nodiscard]] inline LumOleEntries entries(const OleCompFile& file) { return LumOleEntries(file); }

}  // namespace LumCommon

/// @cond
// The iterators hold what they need, so that they may outlive their range.
template <std::derived_from<LumCommon::LumNode> T>
inline constexpr bool std::ranges::enable_view<LumCommon::LumNodeRange<T>> = true;
template <std::derived_from<LumCommon::LumNode> T>
inline constexpr bool std::ranges::enable_borrowed_range<LumCommon::LumNodeRange<T>> = true;
template <>
inline constexpr bool std::ranges::enable_view<LumCommon::LumItemRange> = true;
template <>
inline constexpr bool std::ranges::enable_borrowed_range<LumCommon::LumItemRange> = true;
/// @endcond
