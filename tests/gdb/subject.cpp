// What tests/gdb/checkGdb.py looks at in the debugger.
#include <lumcommon/lumcommon.h>

using namespace LumCommon;

static void stop() {}

int main() {
    const LumPtr<LumDocument> document(new LumDocument);
    document->loadXml(u"<p:a xmlns:p='u' p:i='1'>\n<b/></p:a>");
    const LumPtr<LumElement> root(document->getDocumentElement());
    const LumPtr<LumNode> attribute(root->getAttributes()->item(1));
    const UnicodeString shortText(u"a \"b\""), longText(u"a text that is longer than what the object has room for");
    const UnicodeString none = LumBogusString::BOGUS_VALUE;
    const LumName builtin = NAME_xml_lang, runtime(u"made-up");
    const LumValue values[] = {LumValue(),        LumValue(3),       LumValue(2.5f, UNIT_MM),
                               LumValue(runtime), LumValue(u"text"), LumValue(LumColor(255, 0, 16))};
    const LumNamedValue item(NAME_width, LumValue(4));
    const LumColor ink(u"Gold", 0.5f, 0, 0, 1, 0);
    const LumLength inch(1, UNIT_IN), noLength;
    const LumPtr<LumNode> nothing;
    if (builtin.getString().isEmpty()) return 1;  // makes the strings of the built-in names
    stop();
    return root.isNull() + attribute.isNull() + shortText.length() + longText.length() + none.length() + item.isNull() +
               ink.isInvalid() + inch.isValid() + noLength.isValid() + nothing.isNull() + builtin.isNull() +
               values[0].isNull() >
           1000;
}
