// One text in several encodings: what is read is UTF-8, whatever the document is in.

#include <iostream>

#include <tessit/tessit.h>

namespace {

using namespace std::string_view_literals;

constexpr std::string_view Documents[] = {
    "<t>5 \xE2\x82\xAC</t>"sv,                                       // neither mark nor declaration: UTF-8
    "\xEF\xBB\xBF<t>5 \xE2\x82\xAC</t>"sv,                           // a mark
    "\xFF\xFE<\0t\0>\0005\0 \0\xAC\x20<\0/\0t\0>\0"sv,               // the mark of UTF-16LE
    "<?xml version='1.0' encoding='windows-1252'?><t>5 \x80</t>"sv,  // declared
    "<?xml version='1.0' encoding='US-ASCII'?><t>5 &#x20AC;</t>"sv,  // a reference needs no encoding
};

}  // namespace

int main() {
    for (const std::string_view document : Documents) {
        QeXmlReader reader{QeCString(document)};
        reader.readElementStart("t");
        std::cout << reader.readElementValue() << " from " << reader.getEncoding()
                  << (reader.hasEncoding() ? ", declared\n" : ", detected\n");
    }
}
