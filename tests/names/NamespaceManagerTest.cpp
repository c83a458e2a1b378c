#include <gtest/gtest.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/NamespaceManager.h>

#include <map>
#include <random>
#include <vector>

namespace LumCommon {
namespace {

LumName name(unsigned id) { return static_cast<LumNameEnum>(id); }
const LumName none;

/// The rules word for word: every look-up walks the scopes outwards.
class NaiveManager {
public:
    struct Scope {
        std::map<LumName, LumName> declared;
        LumName prefix, localName, uri;
    };

    NaiveManager() { scopes_.push_back({{{NAME_xml, NAME_NS_XML}, {NAME_xmlns, NAME_NS_XMLNS}}, {}, {}, {}}); }

    void push() { scopes_.emplace_back(); }
    bool pop() {
        if (scopes_.size() == 1) return false;
        scopes_.pop_back();
        return true;
    }
    Scope& inner() { return scopes_.back(); }
    Scope& at(int depth) { return scopes_[static_cast<std::size_t>(depth)]; }
    std::size_t size() const { return scopes_.size(); }

    LumName lookupNamespace(LumName prefix) const {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
            if (scope->prefix == prefix && !scope->uri.isNull()) return scope->uri;
            const auto entry = scope->declared.find(prefix);
            if (entry == scope->declared.end()) continue;
            if (!entry->second.isNull()) return entry->second;
            if (prefix.isNull()) return none;
        }
        return none;
    }
    LumName lookupPrefix(LumName uri) const {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
            if (scope->uri == uri && !scope->prefix.isNull()) return scope->prefix;
            for (const auto& [prefix, bound] : scope->declared) {
                if (bound == uri && !prefix.isNull()) return prefix;
            }
        }
        return none;
    }
    LumName getDefault() const {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
            if (const auto entry = scope->declared.find(none); entry != scope->declared.end()) return entry->second;
        }
        return none;
    }
    bool hasNamespace(LumName prefix) const {
        for (const Scope& scope : scopes_) {
            if (scope.declared.contains(prefix)) return true;
        }
        return false;
    }
    bool hasTagName(LumName prefix, LumName localName) const {
        for (const Scope& scope : scopes_) {
            if (scope.prefix == prefix && scope.localName == localName) return true;
        }
        return false;
    }
    void add(LumName prefix, LumName uri) {
        if (lookupNamespace(prefix) != uri) inner().declared[prefix] = uri;
    }
    static void remove(Scope& scope, LumName prefix, LumName uri) {
        const auto entry = scope.declared.find(prefix);
        if (entry != scope.declared.end() && entry->second == uri) scope.declared.erase(entry);
    }

private:
    std::vector<Scope> scopes_;
};

constexpr unsigned prefixCount = 5, uriCount = 5;  // both with the null name; few, so that bindings meet
LumName prefixNumber(unsigned i) { return i == 4 ? LumName(NAME_xml) : i == 0 ? none : name(300 + i); }
LumName uriNumber(unsigned i) { return i == 4 ? LumName(NAME_NS_XML) : i == 0 ? none : name(700 + i); }

void expectSameAnswers(const NamespaceManager& manager, NaiveManager& naive) {
    for (unsigned i = 0; i < prefixCount; ++i) {
        const LumName prefix = prefixNumber(i);
        ASSERT_EQ(manager.lookupNamespace(prefix).getEnum(), naive.lookupNamespace(prefix).getEnum()) << "prefix " << i;
        ASSERT_EQ(manager.hasNamespace(prefix), naive.hasNamespace(prefix)) << "prefix " << i;
        ASSERT_EQ(manager.hasTagName(prefix, name(i)), naive.hasTagName(prefix, name(i))) << "prefix " << i;
    }
    for (unsigned i = 0; i < uriCount; ++i) {
        const LumName uri = uriNumber(i);
        ASSERT_EQ(manager.lookupPrefix(uri).getEnum(), naive.lookupPrefix(uri).getEnum()) << "URI " << i;
    }
    ASSERT_EQ(manager.getDefaultNamespace().getEnum(), naive.getDefault().getEnum());
    ASSERT_EQ(manager.getScopeDepth() + 1, static_cast<int>(naive.size()));
    ASSERT_EQ(manager.getNamespaceCount(manager.getScopeDepth()), static_cast<int>(naive.inner().declared.size()));
}

TEST(NamespaceManager, answersAsTheRulesDoAfterAnyOperations) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
        NamespaceManager manager;
        NaiveManager naive;
        for (unsigned step = 0; step < 3000; ++step) {
            SCOPED_TRACE(testing::Message() << "step " << step);
            const LumName prefix = prefixNumber(below(prefixCount)), uri = uriNumber(below(uriCount));
            const unsigned operation = below(15);
            if (operation < 3) {
                manager.pushScope();
                naive.push();
            } else if (operation < 5) {
                ASSERT_EQ(manager.popScope(), naive.pop());
            } else if (operation < 7) {
                const LumName localName = name(below(prefixCount));
                manager.setElement(prefix, localName, uri);
                naive.inner().prefix = prefix;
                naive.inner().localName = localName;
                naive.inner().uri = uri;
            } else if (operation < 10) {
                manager.addNamespace(prefix, uri);
                naive.add(prefix, uri);
            } else if (operation < 12) {
                manager.removeNamespace(prefix, uri);
                naive.remove(naive.inner(), prefix, uri);
            } else {  // behind the manager's back, in any scope
                const int depth = operation == 12 ? static_cast<int>(below(static_cast<unsigned>(naive.size())))
                                                  : manager.getScopeDepth();
                NamespaceMap* const map = manager.getNamespaceMap(depth);
                if (map != nullptr && below(2) == 0) {
                    map->addNamespace(prefix, uri);
                    naive.at(depth).declared[prefix] = uri;
                } else if (map != nullptr) {
                    map->removeNamespace(prefix, uri);
                    naive.remove(naive.at(depth), prefix, uri);
                }
            }
            expectSameAnswers(manager, naive);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(NamespaceManager, scopesAreAskedByDepth) {
    NamespaceManager manager;
    EXPECT_EQ(manager.getNamespacePrefix(1), NAME_xmlns);
    EXPECT_EQ(manager.getNamespaceUri(1), NAME_NS_XMLNS);
    manager.pushScope();
    EXPECT_EQ(manager.getNamespaceMap(), nullptr);
    manager.addNamespace(name(300), name(700));
    manager.pushScope();
    manager.addNamespace(name(300), name(700));
    EXPECT_EQ(manager.getNamespaceMap(), nullptr) << "a redundant declaration was recorded";
    EXPECT_TRUE(manager.getNamespacePrefix(0).isNull() && manager.getNamespaceUri(0).isNull());
    struct Row {
        const char* fault;
        int depth;
        int count;
    };
    constexpr Row rows[] = {
        {"negative depth", -1, 0}, {"base scope", 0, 2}, {"wrong scope", 1, 1}, {"no map", 2, 0}, {"too deep", 3, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(manager.getNamespaceCount(row.depth), row.count);
        EXPECT_EQ(manager.getNamespaceMap(row.depth) != nullptr, row.count != 0);
    }
}

TEST(NamespaceManager, aMapOutlivesItsScope) {
    LumPtr<NamespaceManager> manager(new NamespaceManager);
    const LumPtr<NamespaceMap> base(manager->getNamespaceMap());
    manager->pushScope();
    manager->addNamespace(name(300), name(700));
    const LumPtr<NamespaceMap> inner(manager->getNamespaceMap());
    manager->popScope();
    inner->addNamespace(NAME_xml, name(701));
    EXPECT_EQ(manager->lookupNamespace(NAME_xml), NAME_NS_XML) << "a closed scope answers";
    manager = nullptr;
    base->addNamespace(name(300), name(700));
    EXPECT_EQ(base->getCount(), 3);
}

TEST(NamespaceManager, holdsTheSharedNames) {
    LumPtr<NamespaceManager> first(new NamespaceManager), second(new NamespaceManager);
    const LumName held(UnicodeString(u"held by a manager"));
    first = nullptr;
    EXPECT_EQ(held.getString(), UnicodeString(u"held by a manager"));
    second = nullptr;
    EXPECT_TRUE(held.getString().isEmpty()) << "a reference was lost";
}

// Anything that walks the scopes or the declarations runs into the time limit of the test here.
TEST(NamespaceManager, hostileDocumentsCostLinearTime) {
    constexpr unsigned deep = 1000000, wide = 100000;
    NamespaceManager manager;
    for (unsigned level = 0; level < deep; ++level) {  // no namespaces at all
        manager.pushScope();
        manager.setElement(none, NAME_block, manager.lookupNamespace(none));
        manager.addNamespace(none, none);
        ASSERT_TRUE(manager.getDefaultNamespace().isNull() && manager.lookupPrefix(name(700)).isNull());
    }
    while (manager.popScope()) continue;
    for (unsigned level = 0; level < deep; ++level) {  // a new prefix at every level
        manager.pushScope();
        manager.addNamespace(name(10000 + level), name(700));
        manager.setElement(none, NAME_block, none);
        ASSERT_EQ(manager.lookupNamespace(name(10000)), name(700));
        ASSERT_EQ(manager.lookupPrefix(name(700)), name(10000 + level));
    }
    while (manager.popScope()) continue;
    manager.pushScope();
    for (unsigned i = wide; i-- > 0;) manager.addNamespace(name(10000 + i), name(700));
    for (unsigned i = 0; i < wide; ++i) {
        ASSERT_EQ(manager.getNamespacePrefix(static_cast<int>(i)), name(10000 + i));
        manager.addNamespace(name(10000 + i), name(701));
        ASSERT_EQ(manager.lookupPrefix(name(700)), i + 1 < wide ? name(10001 + i) : none);
    }
    for (unsigned i = 0; i < deep; ++i) manager.addNamespace(name(10000), name(700 + i % 2));
    EXPECT_EQ(manager.getNamespaceCount(1), static_cast<int>(wide));
}

}  // namespace
}  // namespace LumCommon
