// What a prefix means, for those who ask once a tag was read.

#include <tessit/model/xml_attribute_set.h>
#include <tessit/reader/bindings.h>

namespace tessit {

namespace {

const QeCString& uriOf(const QeXmlNamespace* binding) {
    return binding == nullptr ? QeXmlAttributeSet::EmptyString : binding->getURI();
}

}  // namespace

const QeCString& Bindings::uriInsideTag(std::string_view prefix) const noexcept {
    if (const QeXmlNamespace* own = ModelAccess::findPrefix(closed, prefix)) return own->getURI();
    return uriOf(ModelAccess::findPrefix(inForce, prefix));
}

const QeCString& Bindings::uriInFrontOfTag(std::string_view prefix, bool isOpen) const noexcept {
    return uriOf(isOpen ? ModelAccess::findPrefix(inForce, prefix, ModelAccess::From::AroundInnermost)
                        : ModelAccess::findPrefix(inForce, prefix));
}

}  // namespace tessit
