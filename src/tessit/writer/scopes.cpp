// What a tag has to declare. Knows names and namespaces, and no bytes.

#include <tessit/writer/scopes.h>

namespace tessit {

void WriterScopes::add(const QeXmlNamespace& ns) {
    lastFound = nullptr;
    ModelAccess::addBinding(stack, ns.getPrefix(), ns);
}

// Names come in runs of one namespace: what was found last is compared first.
template <typename Name>
inline const QeXmlNamespace* WriterScopes::findPrefixed(const QeCString& uri, const Name& name) {
    if (lastFound == nullptr || lastFound->getURI() != uri) lastFound = ModelAccess::findURI(stack, name);
    return lastFound == nullptr || lastFound->getPrefix().empty() ? nullptr : lastFound;
}

inline const QeXmlNamespace* WriterScopes::findDefault(const QeCString& uri) const noexcept {
    const QeXmlNamespace* const found = ModelAccess::findPrefix(stack, {});
    return found == nullptr || found->getURI() != uri ? nullptr : found;
}

// A URI that is bound to another prefix counts as declared. A long URI is then shared with its binding: the next name
// of the same document is known to be in that namespace by where its URI stands.
bool WriterScopes::declare(const QeXmlNamespace& ns) {
    const QeCString& uri = ns.getURI();
    if (uri.empty()) return false;
    const QeXmlNamespace* const found = ns.getPrefix().empty() ? findDefault(uri) : findPrefixed(uri, ns);
    if (found == nullptr) {
        add(ns);
    } else if (ModelAccess::hasLongURI(ns)) {
        ModelAccess::shareURIWithBinding(stack, *found, ns);
    }
    return found == nullptr;
}

void WriterScopes::declare(const QeCString& prefix, const QeCString& uri) {
    if (uri.empty()) return;
    if ((prefix.empty() ? findDefault(uri) : findPrefixed(uri, uri)) != nullptr) return;
    lastFound = nullptr;
    ModelAccess::addBinding(stack, prefix, uri);
}

// A declaration is an attribute in no namespace. The reverse is taken for granted
// too: whatever attribute is in no namespace binds its local name to its value.
bool WriterScopes::declareNamespacesOf(const QeXmlAttributeSet& attributes) {
    bool added = false;
    for (const QeXmlAttribute& attribute : attributes) {
        const QeXmlName& name = attribute.getName();
        if (name.getNamespace().getURI().empty()) {
            declare(name.getLocalName(), attribute.getValue());
        } else {
            added |= declare(name.getNamespace());
        }
    }
    return added;
}

}  // namespace tessit
