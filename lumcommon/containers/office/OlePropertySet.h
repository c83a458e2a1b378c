#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

class OleCompFile;

/// Title, subject, author and keywords of an office document in a compound file.
///
///     OlePropertySet properties;
///     properties.init(&file);
///     const UnicodeString& title = properties.getTitle();
///
/// Threads: init() uses the compound file; afterwards the object does not depend on it.
class LUM_API OlePropertySet {
public:
    /// Takes the strings from the file's summary information. Those that it lacks stay as they were, which is empty at
    /// first.
    /// @return 1, or -1 if the file has no summary information or it cannot be read; nothing is thrown.
    int init(OleCompFile* file);

    /// Empty when the file has none. Borrowed.
    const UnicodeString& getTitle() const noexcept { return title_; }
    /// Empty when the file has none. Borrowed.
    const UnicodeString& getSubject() const noexcept { return subject_; }
    /// Empty when the file has none. Borrowed.
    const UnicodeString& getAuthor() const noexcept { return author_; }
    /// Empty when the file has none, else as it is stored: separators are a matter of the program that wrote it.
    /// Borrowed.
    const UnicodeString& getKeywords() const noexcept { return keywords_; }

private:
    UnicodeString title_;
    UnicodeString subject_;
    UnicodeString author_;
    UnicodeString keywords_;
};

}  // namespace LumCommon
