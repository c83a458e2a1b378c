#pragma once

#include <lumcommon/core/Api.h>

#include <cstdint>

namespace LumCommon {

/// How far one document may go: what a parser reads, holds and makes before it gives up.
///
///     LumXmlLimits limits = LumXmlLimits::untrusted();
///     limits.timeMs = 5000;
///     parser->setLimits(limits);
///
/// Each limit is the most that is allowed; one more is a parser error (LumError) with the code that stands beside the
/// limit and the message and position of every parser error. It ends the document: a callback for errors is told, and
/// whether it returns or the error is thrown, the next event is END_DOCUMENT. The features that ignore errors do not
/// ignore these. Only a single reference that breaks 0x1837 or 0x1838 contributes nothing when a callback accepts it,
/// and reading goes on. Streams are not asked for more than what a limit in bytes leaves, so that events up to there
/// are the same however a stream delivers its bytes.
/// Lengths count UTF-16 units. Whatever the limits say, none goes beyond 2^31-1, and neither do the values of the
/// attributes of one tag together, as no string is longer: the same errors tell that.
struct LumXmlLimits {
    /// The value of a limit that is off.
    static constexpr std::uint64_t off = UINT64_MAX;

    /// Open elements. Code 0x183B.
    std::uint64_t depth = off;
    /// Attributes of one start tag, namespace declarations included. Code 0x183C.
    std::uint64_t attributes = off;
    /// The text of one event: joined text as a whole, a CDATA section, a comment, a processing instruction, a document
    /// type declaration. What next() passes over in the middle of a text counts with it while it is read. Code 0x183D.
    std::uint64_t textUnits = off;
    /// A name; of a qualified name the prefix and the local name each. Code 0x183E.
    std::uint64_t nameUnits = off;
    /// The value of an attribute or of an entity in its declaration, or another literal: as written, and with its
    /// references replaced. Code 0x183F.
    std::uint64_t valueUnits = off;

    /// What entities may produce: so many times the bytes of the document itself that have been read; any amount up to
    /// the threshold. It counts the replacement texts, in units, and what is read from external inputs, in bytes and as
    /// 4096 at least; the external document type definition is one of them. Code 0x1837.
    std::uint64_t expansionFactor = 100;
    /// What entities may always produce, in units and bytes; see expansionFactor.
    std::uint64_t expansionThreshold = 8u << 20;
    /// External entities that are open at once, one inside another. Code 0x1838.
    std::uint64_t openInputs = 64;

    /// External inputs in all, entities and definitions, whether they can be opened or not. A definition that the
    /// process has read before is not opened. Code 0x1840.
    std::uint64_t externalInputs = off;
    /// Bytes read from external inputs. Code 0x1841.
    std::uint64_t externalBytes = off;
    /// Bytes that come out of inputs compressed with gzip, as far as the parser inflates them: those that it opens
    /// itself. Code 0x1842.
    std::uint64_t inflatedBytes = off;
    /// The bytes that come out of such an input for each byte that was read of it; looked at once a mebibyte has come
    /// out of it. Code 0x1843.
    std::uint64_t inflationRatio = off;
    /// Bytes read from all inputs; of a compressed input those that come out of it or, where they are more, its own.
    /// Inputs are read ahead in blocks: where there are several, it depends on the blocks how far each had been parsed
    /// when their sum was too large. Code 0x1844.
    std::uint64_t totalBytes = off;
    /// Time since setInput(), the caller's included. It is looked at whenever bytes are read or an entity is referred
    /// to; it cannot interrupt a stream that never returns. Code 0x1845.
    std::uint64_t timeMs = off;
    /// Different names, prefixes and namespaces that are new to the parser; those in an external definition count by
    /// themselves. Code 0x1846.
    std::uint64_t names = off;

    /// For documents from strangers: generous for a document made by people or programs, and at most a minute and a few
    /// gigabytes of memory for any other. Whether the document may open other resources is not a limit.
    static constexpr LumXmlLimits untrusted() noexcept {
        constexpr std::uint64_t mebi = 1u << 20;
        LumXmlLimits limits;
        limits.depth = 10'000;
        limits.attributes = 10'000;
        limits.textUnits = 64 * mebi;
        limits.nameUnits = 4096;
        limits.valueUnits = 16 * mebi;
        limits.openInputs = 16;
        limits.externalInputs = 256;
        limits.externalBytes = 64 * mebi;
        limits.inflatedBytes = 256 * mebi;
        limits.inflationRatio = 200;
        limits.totalBytes = 256 * mebi;
        limits.timeMs = 60'000;
        limits.names = 1'000'000;
        return limits;
    }

    /// Whether all limits are equal.
    friend constexpr bool operator==(const LumXmlLimits&, const LumXmlLimits&) = default;
};

}  // namespace LumCommon
