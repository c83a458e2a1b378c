#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Answer.h"
#include "Input.h"
#include "Stopwatch.h"

namespace LumBench {

/// The CPU time of one part of a turn. A question with one part leaves the name empty.
struct Lap {
    const char* part;
    double seconds;
};

/// One contender at one question and one input. What its constructor does is not timed.
class Trial {
public:
    virtual ~Trial() = default;
    /// Numbers that all contenders of the question must agree on. Asked before the first turn.
    virtual std::vector<std::size_t> answer() = 0;
    /// Does the work once, and times its parts.
    virtual std::vector<Lap> turn() = 0;
    /// How many pieces of work a turn does, when not the bytes of the input are counted.
    virtual std::size_t units() const { return 0; }
};

/// A question that a program can answer, under the label of its interface ("SAX2").
struct Entry {
    const char* question;
    const char* label;
    std::unique_ptr<Trial> (*make)(const Input&);
};

template <class Kind>
std::unique_ptr<Trial> make(const Input& input) {
    return std::make_unique<Kind>(input);
}

/// Defined by each contender's program.
std::vector<Entry> entries();

inline std::vector<std::size_t> numbersOf(const Answer& answer) {
    return {answer.elements, answer.attributes, answer.textUnits};
}

/// Bytes to events. A Parse is made from an input and has `Answer count()`, which reads all of it and counts, and
/// `std::size_t touch()`, which reads all of it and looks at every name and text.
/// @tparam isKept  whether the Parse, and so the parser in it, serves all turns, or each turn has its own.
template <class Parse, bool isKept>
class EventsTrial : public Trial {
public:
    explicit EventsTrial(const Input& input) : input_(input) {
        if (isKept) kept_ = std::make_unique<Parse>(input);
    }
    std::vector<std::size_t> answer() override { return numbersOf(Parse(input_).count()); }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        if (isKept) {
            use(kept_->touch());
        } else {
            Parse fresh(input_);
            use(fresh.touch());
        }
        return {{"", watch.lap()}};
    }

private:
    const Input& input_;
    std::unique_ptr<Parse> kept_;
};

/// Bytes to a tree, and the end of the tree. A Tree is made from an input, which loads it, and has `Answer count()`.
template <class Tree>
class TreeTrial : public Trial {
public:
    explicit TreeTrial(const Input& input) : input_(input) {}
    std::vector<std::size_t> answer() override { return numbersOf(Tree(input_).count()); }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        auto tree = std::make_unique<Tree>(input_);
        const double built = watch.lap();
        tree.reset();
        const double freed = watch.lap();
        return {{"build", built}, {"free", freed}, {"build+free", built + freed}};
    }

private:
    const Input& input_;
};

/// A tree to bytes in memory, which is kept for the next turn where the contender writes into memory of the caller's.
/// The answer is that of a tree loaded from these bytes.
template <class Tree>
class SaveTrial : public Trial {
public:
    explicit SaveTrial(const Input& input) : tree_(input) {}
    std::vector<std::size_t> answer() override {
        Input saved{"what was saved", ""};
        tree_.save(saved.bytes);
        return numbersOf(Tree(saved).count());
    }
    std::vector<Lap> turn() override {
        bytes_.clear();
        Stopwatch watch;
        tree_.save(bytes_);
        return {{"", watch.lap()}};
    }

private:
    Tree tree_;
    std::string bytes_;
};

/// From node to node, looking at the names: `std::size_t walk()`. The memory of a tree is measured on this trial.
template <class Tree>
class WalkTrial : public Trial {
public:
    explicit WalkTrial(const Input& input) : tree_(input) {}
    std::vector<std::size_t> answer() override { return numbersOf(tree_.count()); }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        use(tree_.walk());
        return {{"", watch.lap()}};
    }

private:
    Tree tree_;
};

/// The attributes of every element, asked for by name. A LookUp is made from a list of names, and a Tree has
/// `std::size_t lookUp(const LookUp&, Hits*)`, which takes the values and counts the hits if it is given where.
struct Hits {
    std::size_t values = 0;
    std::size_t units = 0;  ///< of the values, in UTF-16 code units
};

/// Names that are frequent in the inputs, and one that no element has.
inline const std::vector<std::string>& namesToLookUp() {
    static const std::vector<std::string> names{"id", "font-family", "start-indent", "width", "absent"};
    return names;
}

template <class Tree, class LookUp>
class AttributeTrial : public Trial {
public:
    explicit AttributeTrial(const Input& input) : tree_(input), elements_(tree_.count().elements) {}
    std::vector<std::size_t> answer() override {
        Hits hits;
        tree_.lookUp(lookUp_, &hits);
        return {elements_, hits.values, hits.units};
    }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        use(tree_.lookUp(lookUp_, nullptr));
        return {{"", watch.lap()}};
    }
    std::size_t units() const override { return elements_ * namesToLookUp().size(); }

private:
    Tree tree_;
    LookUp lookUp_{namesToLookUp()};
    std::size_t elements_;
};

}  // namespace LumBench
