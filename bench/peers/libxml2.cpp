#include "Libxml2Reader.h"
#include "Libxml2Sax.h"
#include "Libxml2Tree.h"

namespace LumBench {
namespace {

/// The dictionary in which libxml2 interns names.
class NamesTrial : public Trial {
public:
    explicit NamesTrial(const Input& input) : dictionary_(xmlDictCreate()) {
        std::string_view rest = input.bytes;
        for (std::size_t end; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1)) {
            texts_.emplace_back(rest.substr(0, end));
        }
        NamesTrial::turn();
    }
    ~NamesTrial() override { xmlDictFree(dictionary_); }
    NamesTrial(const NamesTrial&) = delete;
    NamesTrial& operator=(const NamesTrial&) = delete;

    std::vector<std::size_t> answer() override {
        std::size_t units = 0;
        for (const std::string& text : texts_) units += countUnits(viewOf(intern(text)));
        return {texts_.size(), units};
    }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        std::size_t seen = 0;
        for (const std::string& text : texts_) seen += reinterpret_cast<std::size_t>(intern(text));
        use(seen);
        return {{"", watch.lap()}};
    }
    std::size_t units() const override { return texts_.size(); }

private:
    const xmlChar* intern(const std::string& text) {
        return xmlDictLookup(dictionary_, libxml2Text(text), static_cast<int>(text.size()));
    }

    xmlDictPtr dictionary_;
    std::vector<std::string> texts_;
};

}  // namespace

std::vector<Entry> entries() {
    xmlInitParser();
    return {
        {"events", "libxml2 SAX2", make<EventsTrial<Sax2Parse, false>>},
        {"events", "libxml2 reader", make<EventsTrial<ReaderParse, false>>},
        {"events-kept", "libxml2 SAX2", make<EventsTrial<Sax2Parse, true>>},
        {"tree", "libxml2", make<TreeTrial<Libxml2Tree>>},
        {"tree-own", "libxml2", make<TreeTrial<Libxml2Tree>>},
        {"save", "libxml2", make<SaveTrial<Libxml2Tree>>},
        {"walk", "libxml2", make<WalkTrial<Libxml2Tree>>},
        {"attribute", "libxml2", make<AttributeTrial<Libxml2Tree, LookUp>>},
        {"names", "libxml2", make<NamesTrial>},
    };
}

}  // namespace LumBench
