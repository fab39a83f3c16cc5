#include <corvel/immortal.h>
#include <corvel/shared_text.h>
#include <tessit/model/xml_namespace.h>

using corvel::Immortal;
using corvel::SharedText;

namespace {

constexpr char XsiUri[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr char XsdUri[] = "http://www.w3.org/2001/XMLSchema";
constexpr std::string_view XsiUri1999 = "http://www.w3.org/1999/XMLSchema-instance";
constexpr std::string_view XsdUri1999 = "http://www.w3.org/1999/XMLSchema";

}  // namespace

void QeXmlNamespace::setLongURI(const QeCString& value) {
    static_assert(SharedLength == SharedText::LongLength);
    SharedText::assign(uri, value);
}

void QeXmlNamespace::shareLongURI(const QeXmlNamespace& other) {
    SharedText::share(uri, other.uri);
}

int QeXmlNamespace::compareTo(const QeXmlNamespace& other) const noexcept {
    if (uri.data() == other.uri.data()) return 0;
    const int order = uri.compare(other.uri);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

QeCString QeXmlNamespace::infoString() const {
    QeCString info("\"");
    info += prefix;
    info += "\"-->\"";
    info += uri;
    info += '"';
    return info;
}

// An object of the program that was made before these can use them in its destructor.

const QeXmlNamespace& QeXmlNamespace::getXmlns() {
    static Immortal<QeXmlNamespace> xmlns("xmlns", "");
    return xmlns.value;
}

QeXmlNamespace& QeXmlNamespace::getXsi() {
    static Immortal<QeXmlNamespace> xsi("xsi", XsiUri);
    return xsi.value;
}

QeXmlNamespace& QeXmlNamespace::getXsd() {
    static Immortal<QeXmlNamespace> xsd("xsd", XsdUri);
    return xsd.value;
}

const QeXmlNamespace& QeXmlNamespace::getEmptyNamespace() {
    static constinit const Immortal<QeXmlNamespace> empty;
    return empty.value;
}

bool QeXmlNamespace::matchXmlns(const QeXmlNamespace& ns) {
    return ns.uri == getXmlns().uri;
}

bool QeXmlNamespace::matchXsi(const QeXmlNamespace& ns) {
    return ns.uri == getXsi().uri || ns.uri == XsiUri1999;
}

bool QeXmlNamespace::matchXsd(const QeXmlNamespace& ns) {
    return ns.uri == getXsd().uri || ns.uri == XsdUri1999;
}
