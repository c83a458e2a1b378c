// What names/ does when memory runs out.

#include <support/FailingMemory.h>

namespace {

using namespace LumCommon;
using LumTest::forEveryFailure;
using LumTest::utf8;

UnicodeString numbered(const char* text, int number) { return UnicodeString::fromUTF8(text + std::to_string(number)); }

// A name gets a number and no text, or a second number.
TEST(NamesMemory, tableFailsAloud) {
    constexpr int count = 1100;  // more than the first chunk has
    std::vector<UnicodeString> texts;
    for (int i = 0; i < count; ++i) {
        texts.push_back(numbered(i % 100 == 0 ? "a long name that needs memory of its own " : "n", i));
    }
    forEveryFailure([] { return LumPtr<LumNameTable>(new LumNameTable); },
                    [&](LumPtr<LumNameTable>& table) {
                        std::string told;
                        for (const UnicodeString& text : texts) {
                            const LumNameEnum name = table->getNameEnum(text);
                            if (table->getNameString(name) != text) told += "lost ";
                        }
                        return told += std::to_string(table->getLastNameEnum() - NAME_LAST_BUILTIN);
                    });
}

// A copy of a built-in name is bogus; a generated name lacks its prefix.
TEST(NamesMemory, stringsOfNamesFailAloud) {
    forEveryFailure([] { return std::make_unique<LumTest::Names>(); },
                    [](auto&) {
                        const UnicodeString copy = LumName(NAME_NS_XMLNS).getString();
                        const LumName made =
                            LumName::generateID(u"a prefix that makes a name so long that it needs memory");
                        return utf8(copy) + utf8(UnicodeString(made.getString(), 0, 56));
                    });
}

// A declaration is in the map and not in the answers, or only in one direction.
TEST(NamesMemory, scopesFailAloud) {
    std::vector<LumName> names;
    for (int i = 0; i < 40; ++i) names.emplace_back(numbered("scope", i));
    forEveryFailure([] { return LumPtr<NamespaceManager>(new NamespaceManager); },
                    [&](LumPtr<NamespaceManager>& scopes) {
                        const auto tell = [&] {
                            std::string told;
                            for (const LumName name : names) {
                                const auto uri = static_cast<int>(scopes->lookupNamespace(name).getEnum());
                                const auto prefix = static_cast<int>(scopes->lookupPrefix(name).getEnum());
                                told += std::to_string(uri) + "/" + std::to_string(prefix) +
                                        (scopes->hasNamespace(name) ? "+" : "-");
                            }
                            return told + std::to_string(scopes->getNamespaceCount(scopes->getScopeDepth()));
                        };
                        while (scopes->popScope()) {
                        }
                        std::string told = tell();
                        for (std::size_t i = 0; i + 1 < names.size(); ++i) {
                            if (i % 10 == 0) {
                                scopes->pushScope();
                                scopes->setElement(names[i + 1], names[i], names[i]);
                            }
                            scopes->addNamespace(names[i], names[i + 1]);
                        }
                        told += tell();
                        scopes->removeNamespace(names[30], names[31]);
                        told += tell();
                        LumPtr<NamespaceManager> other(new NamespaceManager);
                        other->addNamespace(LumName(), names[0]);
                        return told + std::to_string(static_cast<int>(other->getDefaultNamespace().getEnum()));
                    });
}

}  // namespace
