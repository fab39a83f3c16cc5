#include <corvel/keyed_hash.h>
#include <tessit/model/xml_name.h>

namespace {

QeCString join(const QeCString& front, const char* separator, const QeCString& back) {
    return front.empty() ? back : front + separator + back;
}

}  // namespace

QeCString QeXmlName::getQualifiedName() const {
    return join(ns.getPrefix(), ":", localName);
}

QeCString QeXmlName::getUniqueName() const {
    return join(ns.getURI(), "::", localName);
}

std::size_t std::hash<QeXmlName>::operator()(const QeXmlName& name) const noexcept {
    const std::hash<QeCString> hashOf;
    corvel::SipState both(corvel::HashSecret::ofProcess());
    both.add(hashOf(name.getLocalName()));
    both.add(hashOf(name.getNamespace().getURI()));
    return static_cast<std::size_t>(both.finish());
}
