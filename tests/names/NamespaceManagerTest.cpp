#include <gtest/gtest.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/NamespaceManager.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace LumCommon {
namespace {

LumName name(unsigned id) { return static_cast<LumNameEnum>(id); }
const LumName none;

/// The rules word for word: every look-up walks the scopes outwards.
struct NaiveManager {
    struct Scope {
        std::map<LumName, LumName> declared;
        LumName prefix, localName, uri;
    };

    LumName lookupNamespace(LumName prefix) const {
        for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
            if (scope->prefix == prefix && !scope->uri.isNull()) return scope->uri;
            const auto entry = scope->declared.find(prefix);
            if (entry == scope->declared.end()) continue;
            if (!entry->second.isNull()) return entry->second;
            if (prefix.isNull()) return none;
        }
        return none;
    }
    LumName lookupPrefix(LumName uri) const {
        for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
            if (scope->uri == uri && !scope->prefix.isNull()) return scope->prefix;
            for (const auto& [prefix, bound] : scope->declared) {
                if (bound == uri && !prefix.isNull()) return prefix;
            }
        }
        return none;
    }
    LumName getDefault() const {
        for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
            if (const auto entry = scope->declared.find(none); entry != scope->declared.end()) return entry->second;
        }
        return none;
    }
    static void remove(Scope& scope, LumName prefix, LumName uri) {
        const auto entry = scope.declared.find(prefix);
        if (entry != scope.declared.end() && entry->second == uri) scope.declared.erase(entry);
    }

    std::vector<Scope> scopes = {{{{NAME_xml, NAME_NS_XML}, {NAME_xmlns, NAME_NS_XMLNS}}, {}, {}, {}}};
};

constexpr unsigned prefixCount = 5, uriCount = 5;  // both with the null name; few, so that bindings meet
LumName prefixNumber(unsigned i) { return i == 4 ? LumName(NAME_xml) : i == 0 ? none : name(300 + i); }
LumName uriNumber(unsigned i) { return i == 4 ? LumName(NAME_NS_XML) : i == 0 ? none : name(700 + i); }

void expectSameMap(const NamespaceMap& map, const std::map<LumName, LumName>& declared, std::mt19937& random) {
    const std::vector<std::pair<LumName, LumName>> entries(declared.begin(), declared.end());
    const int count = static_cast<int>(entries.size());
    ASSERT_EQ(map.getCount(), count);
    const auto expectedAt = [&](int i) {
        return i < 0 || i >= count ? std::pair(none, none) : entries[static_cast<std::size_t>(i)];
    };
    for (int tries = 0; tries < 4; ++tries) {  // positions in any order, also outside
        const int i = static_cast<int>(random() % (entries.size() + 2)) - 1;
        ASSERT_EQ(std::pair(map.getNamespacePrefix(i), map.getNamespaceUri(i)), expectedAt(i)) << "position " << i;
    }
    NamespaceMapIterator at(&map);
    for (int i = 0; i <= count; ++i) {
        ASSERT_EQ(at.hasNext(), i < count);
        ASSERT_EQ(at.next(), expectedAt(i));
    }
    for (int i = count; i-- >= 0;) {
        ASSERT_EQ(at.hasPrevious(), i >= 0);
        ASSERT_EQ(at.previous(), expectedAt(i));
    }
    at.setToEnd();
    ASSERT_EQ(at.previous(), expectedAt(count - 1));
    at.setToStart();
    ASSERT_EQ(at.next(), expectedAt(0));
    for (unsigned i = 0; i < prefixCount; ++i) {
        const auto entry = declared.find(prefixNumber(i));
        ASSERT_EQ(map.hasNamespace(prefixNumber(i)), entry != declared.end());
        ASSERT_EQ(map.lookupNamespace(prefixNumber(i)), entry == declared.end() ? none : entry->second);
    }
    ASSERT_EQ(map.getDefaultNamespace(), map.lookupNamespace(none));
}

void expectSameAnswers(const NamespaceManager& manager, const NaiveManager& naive) {
    for (unsigned i = 0; i < prefixCount; ++i) {
        const LumName prefix = prefixNumber(i);
        SCOPED_TRACE(i);
        ASSERT_EQ(manager.lookupNamespace(prefix).getEnum(), naive.lookupNamespace(prefix).getEnum());
        ASSERT_EQ(manager.hasNamespace(prefix), std::ranges::any_of(naive.scopes, [&](const auto& scope) {
                      return scope.declared.contains(prefix);
                  }));
        ASSERT_EQ(manager.hasTagName(prefix, name(i)), std::ranges::any_of(naive.scopes, [&](const auto& scope) {
                      return scope.prefix == prefix && scope.localName == name(i);
                  }));
    }
    for (unsigned i = 0; i < uriCount; ++i) {
        const LumName uri = uriNumber(i);
        ASSERT_EQ(manager.lookupPrefix(uri).getEnum(), naive.lookupPrefix(uri).getEnum()) << "URI " << i;
    }
    const int depth = manager.getScopeDepth();
    ASSERT_EQ(manager.getDefaultNamespace().getEnum(), naive.getDefault().getEnum());
    ASSERT_EQ(depth + 1, static_cast<int>(naive.scopes.size()));
    for (const int asked : {-1, 0, depth / 2, depth, depth + 1}) {
        const bool isThere = asked >= 0 && asked <= depth;
        const std::size_t count = isThere ? naive.scopes[static_cast<std::size_t>(asked)].declared.size() : 0;
        ASSERT_EQ(manager.getNamespaceCount(asked), static_cast<int>(count)) << asked;
        ASSERT_TRUE(isThere || manager.getNamespaceMap(asked) == nullptr) << asked;
    }
    const auto& declared = naive.scopes.back().declared;
    ASSERT_EQ(manager.getNamespacePrefix(0), declared.empty() ? none : declared.begin()->first);
    ASSERT_EQ(manager.getNamespaceUri(0), declared.empty() ? none : declared.begin()->second);
}

TEST(NamespaceManager, answersAsTheRulesDoAfterAnyOperations) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&random](std::size_t limit) { return static_cast<unsigned>(random() % limit); };
        NamespaceManager manager;
        NaiveManager naive;
        for (unsigned step = 0; step < 3000; ++step) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", step " << step);
            const LumName prefix = prefixNumber(below(prefixCount)), uri = uriNumber(below(uriCount));
            const unsigned operation = below(15);
            if (operation < 3) {
                manager.pushScope();
                naive.scopes.emplace_back();
            } else if (operation < 5) {
                ASSERT_EQ(manager.popScope(), naive.scopes.size() > 1);
                if (naive.scopes.size() > 1) naive.scopes.pop_back();
            } else if (operation < 7) {
                NaiveManager::Scope& scope = naive.scopes.back();
                scope = {std::move(scope.declared), prefix, name(below(prefixCount)), uri};
                manager.setElement(prefix, scope.localName, uri);
            } else if (operation < 10) {
                manager.addNamespace(prefix, uri);
                if (naive.lookupNamespace(prefix) != uri) naive.scopes.back().declared[prefix] = uri;
            } else if (operation < 12) {
                manager.removeNamespace(prefix, uri);
                naive.remove(naive.scopes.back(), prefix, uri);
            } else {  // through the map itself, in any scope
                const unsigned depth = operation == 12 ? below(naive.scopes.size()) : unsigned(manager.getScopeDepth());
                NaiveManager::Scope& scope = naive.scopes[depth];
                NamespaceMap* const map = manager.getNamespaceMap(static_cast<int>(depth));
                EXPECT_TRUE(map != nullptr || scope.declared.empty());
                if (map == nullptr) continue;
                if (below(2) == 0) {
                    map->addNamespace(prefix, uri);
                    scope.declared[prefix] = uri;
                } else {
                    map->removeNamespace(prefix, uri);
                    naive.remove(scope, prefix, uri);
                }
                expectSameMap(*map, scope.declared, random);
            }
            expectSameAnswers(manager, naive);
            if (HasFailure()) return;
        }
    }
}

TEST(NamespaceManager, aMapOutlivesItsScope) {
    LumPtr<NamespaceManager> manager(new NamespaceManager);
    const LumPtr<NamespaceMap> base(manager->getNamespaceMap());
    manager->pushScope();
    EXPECT_EQ(manager->getNamespaceMap(), nullptr) << "made before anything is declared";
    manager->addNamespace(name(300), name(700));
    const LumPtr<NamespaceMap> inner(manager->getNamespaceMap());
    manager->popScope();
    inner->addNamespace(NAME_xml, name(701));
    EXPECT_EQ(manager->lookupNamespace(NAME_xml), NAME_NS_XML) << "a closed scope answers";
    manager = nullptr;
    base->addNamespace(name(300), name(700));
    EXPECT_EQ(base->getCount(), 3);
    NamespaceMapIterator nothing(nullptr);
    nothing.setToEnd();
    EXPECT_FALSE(nothing.hasNext() || nothing.hasPrevious());
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
