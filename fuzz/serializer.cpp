// Any order of calls may reach a serializer. The first byte chooses the encoding and whether it checks; each pair after
// it is a call. Laws: a call out of order is refused with its code, and nothing is written then; what was written is
// well-formed and read back as the same events, with the same names, values and texts; a text may come in any pieces.

#include <lumcommon/lumcommon.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

constexpr const char16_t* uris[] = {u"", u"urn:1", u"urn:2", u"urn:<&\">"};
constexpr const char16_t* prefixes[] = {u"", u"p", u"q", u"r"};
constexpr const char16_t* locals[] = {u"a", u"b", u"c", u"d"};
constexpr const char16_t* contents[] = {u"",
                                        u"x",
                                        u" \t\n",
                                        u"<&>\"'",
                                        u"]]>",
                                        u"\x01\x1Fy",
                                        u"\u00E9\u3042\u4E9C",
                                        u"\U0001F600",
                                        u"\u20AC\u00A5\u203E",
                                        u"0123456789ABCDEF0123456789ABCDEF"};
/// Contents of markup that is written as it is.
constexpr const char16_t* raws[] = {u"", u"x", u" \t\n", u"<&>\"'", u"y", u"\x01\x1Fy", u"\u00E9\u3042\u4E9C"};

UnicodeString withoutControls(const UnicodeString& text, bool isValue) {
    UnicodeString result;
    for (std::int32_t i = 0; i < text.length(); ++i) {
        const char16_t unit = text[i];
        if (unit >= 0x20 || unit == u'\t' || unit == u'\n') result.append(isValue && unit < 0x20 ? u' ' : unit);
    }
    return result;
}

/// The calls that were accepted, in the words in which check() tells what the parser finds.
class Events {
public:
    void add(int event, const UnicodeString& text) {
        if (event == LumXmlParser::TEXT) {
            text_.append(text);
            return;
        }
        endText();
        list_.push_back(static_cast<char16_t>(event + u'A') + text);
    }
    const std::vector<UnicodeString>& get() {
        endText();
        return list_;
    }

private:
    void endText() {
        if (!text_.isEmpty()) list_.push_back(u"T" + text_);
        text_.remove();
    }

    std::vector<UnicodeString> list_;
    UnicodeString text_;
};

UnicodeString nameOf(const UnicodeString& uri, const UnicodeString& local) { return uri + u"}" + local; }

class Writing {
public:
    Writing(bool isShiftJis, bool isChecked) : isShiftJis_(isShiftJis), serializer_(LumXmlUtil::createXmlSerializer()) {
        serializer_->setChecked(isChecked);
        serializer_->setGenerator(u"");
        serializer_->setOutput(out_, isShiftJis ? u"Shift_JIS" : u"UTF-8");
        serializer_->startDocument(UnicodeString(), UnicodeString());
        serializer_->startTag(LumName(), LumName(u"root"));
        open_.push_back(nameOf(u"", u"root"));
        expected_.add(LumXmlParser::START_TAG, open_.back());
    }

    void call(unsigned what, unsigned which) {
        const LumName uri(uris[which % 4]), prefix(prefixes[which % 4]), local(locals[(which >> 2) % 4]);
        const UnicodeString content = contents[(which >> 2) % std::size(contents)];
        const UnicodeString raw = raws[which % (isShiftJis_ ? 6 : 7)];
        switch (what % 9) {
            case 0:
                (what & 16u) != 0 && which % 4 != 0 ? serializer_->startTag(uri, local)
                                                    : serializer_->startTag(uri, prefix, local);
                open_.push_back(nameOf(uri.getString(), local.getString()));
                attributes_.clear();
                isOpen_ = true;
                expected_.add(LumXmlParser::START_TAG, open_.back());
                break;
            case 1:
                addAttribute(uri, prefix, local, content);
                break;
            case 2:
                addText(content, what);
                break;
            case 3:
                endTag(uri, local);
                break;
            case 4:
                addRaw(LumXmlParser::CDSECT, raw, &LumXmlSerializer::cdsect);
                break;
            case 5:
                addRaw(LumXmlParser::COMMENT, raw, &LumXmlSerializer::comment);
                break;
            case 6:
                addRaw(LumXmlParser::PROCESSING_INSTRUCTION, u"p " + raw, &LumXmlSerializer::processingInstruction);
                break;
            case 7:
                serializer_->entityRef(u"lt");
                isOpen_ = false;
                expected_.add(LumXmlParser::TEXT, u"<");
                break;
            case 8:
                refuse(which);
                break;
        }
    }

    void check() {
        while (!open_.empty()) {
            expected_.add(LumXmlParser::END_TAG, open_.back());
            open_.pop_back();
        }
        serializer_->endDocument();
        std::istringstream in(out_.str());
        LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
        parser->setInput(in, UnicodeString(), UnicodeString());
        Events found;
        while (parser->nextToken() != LumXmlParser::END_DOCUMENT) addFound(*parser, found);
        FUZZ_LAW(found.get() == expected_.get());
    }

private:
    static void addFound(const LumXmlParser& parser, Events& found) {
        const int event = parser.getEventType();
        const bool isTag = event == LumXmlParser::START_TAG || event == LumXmlParser::END_TAG;
        if (event == LumXmlParser::ENTITY_REF) {
            // The value of a predefined entity is a reference to its character.
            UnicodeString text = parser.getText();
            if (text.startsWith(u"&#")) {
                const char16_t* end = nullptr;
                text = static_cast<char16_t>(LumUtil::parseNumber(text.getTerminatedBuffer() + 2, end));
            }
            found.add(LumXmlParser::TEXT, text);
        } else if (isTag) {
            found.add(event, nameOf(parser.getNamespace().getString(), parser.getName().getString()));
        } else if (!(event == LumXmlParser::PROCESSING_INSTRUCTION && parser.getText().startsWith(u"xml "))) {
            found.add(event, parser.getText());
        }
        if (event != LumXmlParser::START_TAG) return;
        for (int i = 0; i < parser.getAttributeCount(); ++i) {
            if (parser.getAttributeNamespace(i).getString() == UnicodeString(u"http://www.w3.org/2000/xmlns/"))
                continue;
            found.add(20, nameOf(parser.getAttributeNamespace(i).getString(), parser.getAttributeName(i).getString()) +
                              u"=" + parser.getAttributeValue(i));
        }
    }

    void addAttribute(const LumName& uri, const LumName& prefix, const LumName& local, const UnicodeString& value) {
        const UnicodeString name = nameOf(uri.getString(), local.getString());
        if (!isOpen_) {
            expectError(0x80D, [&] { serializer_->attribute(uri, prefix, local, value); });
        } else if (std::find(attributes_.begin(), attributes_.end(), name) == attributes_.end()) {
            // A prefix always stands for the same namespace here; the caller must not write an attribute twice.
            serializer_->attribute(uri, prefix, local, value);
            attributes_.push_back(name);
            expected_.add(20, name + u"=" + withoutControls(value, true));
        }
    }

    void addText(const UnicodeString& text, unsigned how) {
        if ((how & 64u) != 0) {
            const auto* units = reinterpret_cast<const unsigned short*>(text.getBuffer());
            int half = text.length() / 2;
            if (half > 0 && U16_IS_LEAD(text[half - 1])) --half;  // half a pair would be written as such
            serializer_->text(units, 0, half);
            serializer_->text(units, half, text.length() - half);
        } else {
            serializer_->text(text);
        }
        isOpen_ = false;
        expected_.add(LumXmlParser::TEXT, withoutControls(text, false));
    }

    void addRaw(int event, const UnicodeString& text, void (LumXmlSerializer::*write)(const UnicodeString&)) {
        (serializer_.get()->*write)(text);
        isOpen_ = false;
        expected_.add(event, withoutControls(text, false));
    }

    void endTag(const LumName& uri, const LumName& local) {
        FUZZ_LAW(serializer_->getDepth() == static_cast<int>(open_.size()));
        FUZZ_LAW(nameOf(serializer_->getNamespace().getString(), serializer_->getName().getString()) == open_.back());
        if (open_.size() == 1) return;
        if (nameOf(uri.getString(), local.getString()) != open_.back()) {
            expectError(0x80F, [&] { serializer_->endTag(uri, local); });
        }
        serializer_->endTag(serializer_->getNamespace(), serializer_->getName());
        expected_.add(LumXmlParser::END_TAG, open_.back());
        open_.pop_back();
        isOpen_ = false;
    }

    void refuse(unsigned which) {
        if ((which & 1u) != 0) expectError(0x80C, [&] { serializer_->startDocument(u"UTF-8", u"yes"); });
        if ((which & 2u) != 0) expectError(0x810, [&] { serializer_->docdecl(u"root"); });
    }

    template <class Call>
    void expectError(unsigned code, Call call) {
        const auto before = out_.tellp();
        FUZZ_LAW(LumFuzz::codeOf(call) == code);
        FUZZ_LAW(out_.tellp() == before);
    }

    bool isShiftJis_;
    std::ostringstream out_;
    LumPtr<LumXmlSerializer> serializer_;
    std::vector<UnicodeString> open_;
    std::vector<UnicodeString> attributes_;
    bool isOpen_ = true;  // a start tag that takes attributes
    Events expected_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    Writing writing((how & 1u) != 0, (how & 2u) != 0);
    while (input.size() > 1) {
        const unsigned what = input.byte();
        writing.call(what, input.byte());
    }
    writing.check();
    return 0;
}
