#include <tessit/model/xml_prolog.h>

namespace {

void appendPseudoAttribute(QeCString& text, const char* name, const QeCString& value) {
    text += ' ';
    text += name;
    text += "=\"";
    text += value;
    text += '"';
}

}  // namespace

QeXmlProlog::~QeXmlProlog() = default;

QeCString QeXmlProlog::asString() const {
    QeCString text("<?xml");
    appendPseudoAttribute(text, "version", version);
    if (characterEncodingSet) appendPseudoAttribute(text, "encoding", characterEncoding);
    if (standaloneSet) appendPseudoAttribute(text, "standalone", standalone ? "yes" : "no");
    text += "?>";
    return text;
}
