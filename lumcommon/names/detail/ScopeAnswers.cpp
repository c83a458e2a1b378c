#include <lumcommon/names/detail/ScopeAnswers.h>

#include <algorithm>

namespace LumCommon::detail {

std::uint32_t ScopeAnswers::findInIndex(Kind kind, LumName name) const noexcept {
    const std::uint64_t key = keyOf(kind, name);
    const std::size_t mask = index_.size() - 1;
    for (std::size_t place = placeOf(key) & mask;; place = (place + 1) & mask) {
        const std::uint32_t question = index_[place];
        if (question == none) return none;
        if (questions_[question].key == key) {
            recent_[kind] = {name, question};  // questions are never removed, so this stays valid
            return question;
        }
    }
}

void ScopeAnswers::growIndex() {
    std::vector<std::uint32_t> larger(2 * index_.size(), none);
    const std::size_t mask = larger.size() - 1;
    for (std::size_t i = 0; i < questions_.size(); ++i) {
        std::size_t place = placeOf(questions_[i].key) & mask;
        while (larger[place] != none) place = (place + 1) & mask;
        larger[place] = static_cast<std::uint32_t>(i);
    }
    index_.swap(larger);
}

void ScopeAnswers::closeScope() noexcept {
    for (const std::size_t start = scopeStarts_.back(); log_.size() > start; log_.pop_back()) {
        const Change& change = log_.back();
        questions_[change.question].answer = change.previousAnswer;
        questions_[change.question].lastChange = change.previousChange;
    }
    scopeStarts_.pop_back();
}

LumName ScopeAnswers::get(Kind kind, LumName name) const noexcept {
    const std::uint32_t question = find(kind, name);
    return question == none ? LumName() : questions_[question].answer;
}

LumName ScopeAnswers::getOuter(Kind kind, LumName name) const noexcept {
    const std::uint32_t at = find(kind, name);
    if (at == none) return LumName();
    const Question& question = questions_[at];
    return isChangedInScope(question) ? log_[question.lastChange - 1].previousAnswer : question.answer;
}

void ScopeAnswers::prepare(Kind kind, LumName name) {
    if (log_.capacity() - log_.size() < maxPrepared) log_.reserve(std::max<std::size_t>(32, 2 * log_.capacity()));
    if (find(kind, name) != none) return;
    const std::uint64_t key = keyOf(kind, name);
    if (2 * (questions_.size() + 1) > index_.size()) growIndex();
    questions_.push_back({key, LumName()});
    const std::size_t mask = index_.size() - 1;
    std::size_t place = placeOf(key) & mask;
    while (index_[place] != none) place = (place + 1) & mask;
    index_[place] = static_cast<std::uint32_t>(questions_.size() - 1);
}

void ScopeAnswers::set(Kind kind, LumName name, LumName answer) noexcept {
    const std::uint32_t at = find(kind, name);
    if (at == none || questions_[at].answer == answer) return;
    Question& question = questions_[at];
    if (!isChangedInScope(question)) {
        log_.push_back({at, question.answer, question.lastChange});
        question.lastChange = log_.size();
    }
    question.answer = answer;
}

}  // namespace LumCommon::detail
