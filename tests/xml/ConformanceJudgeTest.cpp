// Documents with rich document types, about half of them damaged, read by this parser as the standard says and by two
// others: where those agree, this one agrees with them about what is a document and what it holds. Where they do not,
// nothing is known, and it is only counted.
//
//     LUM_JUDGE_DOCUMENTS=100000 LUM_JUDGE_SEED=7 LUM_JUDGE_SHOW=2 test_xml --gtest_filter=ConformanceJudge.*
//
// reads that many from that seed on, and shows so many of each kind of difference, cut down to what makes it.

#include <gtest/gtest.h>
#include <unicode/regex.h>

#include <cctype>
#include <iostream>
#include <set>

#include "support/Grammar.h"
#include "support/ResourceLibrary.h"
#include "support/XmlPeers.h"

namespace {

using namespace LumTest;

/// The document is the input of that name.
struct Case {
    Resources inputs;
    std::set<std::string> wide;  // those that are read in UTF-16
    std::size_t pieceBytes;
    Resources encode() const {
        Resources encoded = inputs;
        for (const std::string& name : wide) {
            const UnicodeString units = fromUtf8("\xEF\xBB\xBF" + inputs.at(name));
            const auto* const bytes = reinterpret_cast<const char*>(units.getBuffer());
            encoded[name].assign(bytes, 2 * static_cast<std::size_t>(units.length()));
        }
        return encoded;
    }
};

/// Opens as the others do.
class Inputs : public ResourceLibrary {
public:
    explicit Inputs(const Resources& inputs) : inputs_(inputs) {}
    std::istream* getStream(const UnicodeString& uri) override {
        return new std::istringstream(findResource(inputs_, utf8(uri).c_str()));
    }

private:
    const Resources& inputs_;
};

/// What the three tell. In words, those that tell the same have one letter, and a refusal has its number.
struct Verdict {
    explicit Verdict(const Case& made) {
        const Resources inputs = made.encode();
        const std::string& document = inputs.at("document");
        const Inputs library(inputs);
        stories = {tell(document, {.features = {LumXmlParser::FEATURE_CONFORMING}, .baseUri = library.getBase()},
                        made.pieceBytes),
                   tellByExpat(document, inputs), tellByLibxml2(document, inputs)};
    }
    static bool isRefusal(const std::string& story) { return !story.ends_with('>'); }
    bool haveSame(std::size_t a, std::size_t b) const {
        return isRefusal(stories[a]) ? isRefusal(stories[b]) : stories[a] == stories[b];
    }
    std::string kind(std::size_t i) const {
        std::size_t same = 0;
        while (!haveSame(same, i)) ++same;
        if (!isRefusal(stories[i])) return std::string("tells ") + "ABC"[same];
        const std::size_t refusal = stories[i].rfind('!') + 1;
        return "refuses " + stories[i].substr(refusal, stories[i].find(' ', refusal) - refusal);
    }
    std::string kind() const { return "LumCommon " + kind(0) + ", expat " + kind(1) + ", libxml2 " + kind(2); }
    std::vector<std::string> stories;  // ours, expat's, libxml2's
};

/// What sets the kind of a difference apart; it begins with "WRONG" where this parser is wrong, or a peer in a new way.
std::string label(const Case& made, const std::vector<Fields>& exceptions) {
    const Verdict verdict(made);
    if (!verdict.haveSame(1, 2)) return verdict.kind();
    if (verdict.haveSame(0, 1)) return "alike: " + verdict.kind(0);
    std::string text = verdict.kind();
    for (const auto& [name, bytes] : made.inputs) text += "\n" + bytes;
    for (const Fields& row : exceptions) {
        UErrorCode status = U_ZERO_ERROR;
        if (icu::RegexMatcher(row[0], fromUtf8(text), UREGEX_DOTALL, status).find())
            return verdict.kind() + ": " + utf8(row[1]);
        EXPECT_TRUE(U_SUCCESS(status)) << utf8(row[0]);
    }
    return "WRONG: " + verdict.kind();
}

/// Names and single characters.
std::vector<std::string> cut(const std::string& text) {
    std::vector<std::string> tokens;
    const auto isInName = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || (c & 0x80) != 0; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 0 || !isInName(text[i]) || !isInName(text[i - 1])) tokens.emplace_back();
        tokens.back() += text[i];
    }
    return tokens;
}

std::string join(const std::vector<std::string>& tokens) {
    std::string text;
    for (const std::string& token : tokens) text += token;
    return text;
}

void damage(std::string& text, const std::vector<std::string>& means, std::mt19937& random) {
    std::vector<std::string> tokens = cut(text + " ");
    std::string& token = tokens[random() % tokens.size()];
    std::string& other = tokens[random() % tokens.size()];
    const std::string& mean = means[random() % means.size()];
    const std::size_t byte = random() % token.size();
    const std::string ways[] = {"",
                                token + token,
                                other,
                                mean,
                                token + mean,
                                std::string(token).replace(byte, 1, mean),
                                std::string(token).erase(byte, 1)};
    if (random() % 8 == 0) {
        token.swap(other);
    } else {
        token = ways[random() % std::size(ways)];
    }
    text = join(tokens);
}

Case makeCase(const Grammar& grammar, unsigned seed) {
    std::mt19937 random(seed);
    Case made{{}, {}, seed % 3 == 0 ? 1 : seed % 3 == 1 ? 7 : wholeInput};
    for (const char* name : {"document", "d.dtd", "e.ent", "f.ent", "p.ent", "p2.ent"})
        made.inputs[name] = write(grammar, name, random);
    for (bool isDamaged = random() % 2 == 0; isDamaged; isDamaged = random() % 4 == 0) {
        std::string& damaged = std::next(made.inputs.begin(), random() % 6)->second;
        damage(random() % 2 == 0 ? made.inputs["document"] : damaged, grammar.at("damage"), random);
    }
    for (const auto& [name, text] : made.inputs)
        if (random() % 32 == 0 && text.find("encoding") == std::string::npos) made.wide.insert(name);
    return made;
}

/// Without all that can be left out so that the difference stays of its kind.
Case shrink(Case made, const std::vector<Fields>& exceptions) {
    const std::string kind = label(made, exceptions);
    for (Resources before; before != made.inputs;) {
        before = made.inputs;
        for (auto& [name, text] : made.inputs) {
            for (std::size_t count = cut(text).size(); count > 0; count = count * 2 / 3) {
                for (std::size_t at = 0; at < cut(text).size();) {
                    std::vector<std::string> tokens = cut(text);
                    const auto first = tokens.begin() + static_cast<std::ptrdiff_t>(at);
                    tokens.erase(first, first + static_cast<std::ptrdiff_t>(std::min(count, tokens.size() - at)));
                    std::string kept = join(tokens);
                    text.swap(kept);
                    if (label(made, exceptions) == kind) continue;
                    text.swap(kept);
                    at += (count + 7) / 8;
                }
            }
        }
    }
    return made;
}

std::string show(const Case& made) {
    std::string shown;
    for (const auto& [name, text] : made.inputs)
        if (!text.empty())
            shown += "    " + name + (made.wide.contains(name) ? ", UTF-16: " : ": ") + escape(fromUtf8(text)) + "\n";
    for (const std::string& story : Verdict(made).stories) shown += "    -> " + escape(fromUtf8(story)) + "\n";
    return shown;
}

unsigned numberFrom(const char* variable, unsigned otherwise) {
    const char* const value = std::getenv(variable);
    return value ? static_cast<unsigned>(std::stoul(value)) : otherwise;
}

TEST(ConformanceJudge, agreesWhereOthersAgree) {
    const Grammar grammar = readGrammar("xml/conformanceGrammar.txt");
    const unsigned first = numberFrom("LUM_JUDGE_SEED", 0), count = numberFrom("LUM_JUDGE_DOCUMENTS", 3000);
    const std::vector<Fields> exceptions = readRows("xml/conformanceExceptions.txt");
    std::map<std::string, std::vector<unsigned>> kinds;
    for (unsigned seed = first; seed < first + count; ++seed)
        kinds[label(makeCase(grammar, seed), exceptions)].push_back(seed);
    for (const auto& [kind, seeds] : kinds) {
        const bool isWrong = kind.starts_with("WRONG");
        const unsigned shown = kind.starts_with("alike") ? 0 : numberFrom("LUM_JUDGE_SHOW", isWrong);
        std::cout << seeds.size() << " " << kind << "\n";
        for (std::size_t i = 0; i < seeds.size() && i < shown; ++i)
            std::cout << "  " << seeds[i] << "\n" << show(shrink(makeCase(grammar, seeds[i]), exceptions));
        EXPECT_FALSE(isWrong) << seeds.size() << " " << kind;
    }
}

}  // namespace
