#include <lumcommon/core/LumError.h>
#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/core/detail/NeverDestroyed.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/detail/BuiltinNames.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/names/detail/NameStore.h>
#include <lumcommon/names/detail/RecentNames.h>

#include <atomic>
#include <new>

namespace LumCommon {

namespace {

constinit detail::NeverDestroyed<detail::NameStore> sharedStore;
constinit LumNameTable* sharedTable = nullptr;  // guarded by sharedLock()
/// Changes when the names of the shared table are lost.
constinit std::atomic<std::uint32_t> sharedGeneration{0};

LumLock* sharedLock() {
    static detail::NeverDestroyed<LumLock> lock;
    return &*lock;
}

std::size_t unitsOf(const UnicodeString& text) { return static_cast<std::size_t>(text.length()); }

/// How far to advance after `tries` numbers were found in use. The steps double, so that a document that has interned
/// long runs of such names cannot slow the search down; they stop growing before the number could wrap around.
std::uint64_t stepAfter(unsigned tries) { return std::uint64_t{1} << (tries < 32 ? tries : 32); }

}  // namespace

/// The operations on the shared table. The caller holds the lock, or is the only thread.
struct LumNameTable::Shared {
    static LumNameTable& table() {
        if (sharedTable == nullptr) sharedTable = new LumNameTable(&*sharedStore);
        return *sharedTable;
    }
};

LumNameTable::LumNameTable() : ownStore_(std::make_unique<detail::NameStore>()), store_(ownStore_.get()) {
    store_->reserveFirstChunk();
}

LumNameTable::LumNameTable(detail::NameStore* sharedNames) : store_(sharedNames) { store_->reserveFirstChunk(); }

LumNameTable::~LumNameTable() {
    if (store_ != &*sharedStore) return;
    LumMutex guard(sharedLock());  // already held, unless somebody counts the shared table with a LumPtr
    store_->clear();
    sharedGeneration.fetch_add(1, std::memory_order_release);
    sharedTable = nullptr;
}

bool LumNameTable::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString LumNameTable::getTypeName() const { return UnicodeString(u"LumNameTable"); }

LumNameEnum detail::internName(const char16_t* text, std::size_t units) {
    if (units == 0) return NAME_NULL;
    std::uint32_t generation = sharedGeneration.load(std::memory_order_acquire);
    RecentNames* const recent = RecentNames::ofThread();
    LumNameEnum name = recent ? recent->find(text, units, generation) : NAME_NULL;
    if (name != NAME_NULL) return name;
    name = findBuiltinName(text, units);
    if (name == NAME_NULL) {
        LumMutex guard(sharedLock());
        NameStore& store = *LumNameTable::Shared::table().store_;
        const LumNameEnum last = store.lastName();
        name = store.intern(text, units);
        if (name > last) return name;  // new; most of many new names come only once
        generation = sharedGeneration.load(std::memory_order_relaxed);
    }
    if (recent) recent->keep(text, units, generation, name);
    return name;
}

bool detail::isNameTableFull() noexcept { return sharedStore->lastName() >= NameStore::greatestName; }

LumNameEnum LumNameTable::internNumbered(const UnicodeString& prefix) {
    LumMutex guard(sharedLock());
    detail::NameStore& store = *Shared::table().store_;
    std::uint64_t number = std::uint64_t{store.lastName()} + 1;
    for (unsigned tries = 0;; ++tries) {
        UnicodeString text = detail::joined(prefix, u'-');
        detail::appendDecimal(text, number);
        // A text that is already a name would not be unique: it may be a prefix that the document itself uses.
        if (detail::findBuiltinName(text.getBuffer(), unitsOf(text)) == NAME_NULL &&
            store.find(text.getBuffer(), unitsOf(text)) == NAME_NULL) {
            return store.intern(text.getBuffer(), unitsOf(text));
        }
        number += stepAfter(tries);
    }
}

LumNameEnum LumNameTable::getSharedNameEnum(const UnicodeString& text) {
    return detail::internName(text.getBuffer(), unitsOf(text));
}

const UnicodeString& LumNameTable::getSharedNameString(LumNameEnum id) {
    if (id <= NAME_LAST_BUILTIN) return detail::builtinNameStrings()[id];
    const UnicodeString* const string = sharedStore->stringOf(id);
    return string != nullptr ? *string : detail::builtinNameStrings()[NAME_NULL];
}

LumNameEnum LumNameTable::getBuiltinNameEnum(const UnicodeString& text) {
    return detail::findBuiltinName(text.getBuffer(), unitsOf(text));
}

const UnicodeString& LumNameTable::getBuiltinNameString(LumNameEnum id) {
    return detail::builtinNameStrings()[id <= NAME_LAST_BUILTIN ? id : NAME_NULL];
}

LumNameTable* LumNameTable::getSharedNameTable() {
    LumMutex guard(sharedLock());
    return &Shared::table();
}

LumNameTable* LumNameTable::addRefSharedNameTable() {
    LumMutex guard(sharedLock());
    LumNameTable& table = Shared::table();
    table.addRef();
    return &table;
}

void LumNameTable::releaseSharedNameTable() {
    LumMutex guard(sharedLock());
    if (sharedTable != nullptr) sharedTable->releaseRef();
}

void LumNameTable::setupSharedNameTable() { Shared::table(); }

void LumNameTable::cleanup() {
    delete sharedTable;
    sharedStore->release();
}

LumNameEnum LumNameTable::getNameEnum(const UnicodeString& text) {
    const LumNameEnum builtin = getBuiltinNameEnum(text);
    return builtin != NAME_NULL ? builtin : getNonBuiltinNameEnumMutexed(text);
}

LumNameEnum LumNameTable::getNonBuiltinNameEnumMutexed(const UnicodeString& text) {
    return text.isEmpty() ? NAME_NULL : store_->intern(text.getBuffer(), unitsOf(text));
}

const UnicodeString& LumNameTable::getNameString(LumNameEnum id) const {
    if (id <= NAME_LAST_BUILTIN) return detail::builtinNameStrings()[id];
    const UnicodeString* const string = store_->stringOf(id);
    return string != nullptr ? *string : detail::builtinNameStrings()[NAME_NULL];
}

LumNameEnum LumNameTable::lookupName(const UnicodeString& text) const {
    const LumNameEnum builtin = getBuiltinNameEnum(text);
    return builtin != NAME_NULL ? builtin : store_->find(text.getBuffer(), unitsOf(text));
}

LumNameEnum LumNameTable::getLastNameEnum() const { return store_->lastName(); }

}  // namespace LumCommon
