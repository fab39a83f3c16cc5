// Calls on attribute sets, held against a map.

#include <map>
#include <string>

#include <tessit/model/xml_attribute_set.h>

#include "fuzzing.h"

using tessit::fuzz::Input;
using tessit::fuzz::require;

namespace {

// By local name and URI, which is the order of the set: the prefix and the value.
using Model = std::map<std::pair<std::string, std::string>, std::pair<std::string, std::string>>;

std::string stringOf(const QeCString& text) {
    return std::string(std::string_view(text));
}

std::pair<std::string, std::string> keyOf(const QeXmlName& name) {
    return {stringOf(name.getLocalName()), stringOf(name.getNamespace().getURI())};
}

// Few names, so that they meet again; some too long to be kept in place.
QeXmlName takeName(Input& input) {
    constexpr const char* Texts[] = {
        "", "a", "b", "c", "xmlns", "a name of more than 23 bytes", "a name of more than 23 others"};
    const unsigned choice = input.byte();
    const QeCString local(choice < 128 ? Texts[choice % std::size(Texts)] : std::to_string(choice).c_str());
    return QeXmlName(local, QeXmlNamespace(input.oneOf(Texts), input.oneOf(Texts)));
}

void requireEqual(const QeXmlAttributeSet& set, const Model& model) {
    require(set.size() == model.size(), "as many attributes");
    auto expected = model.begin();
    for (const QeXmlAttribute& attribute : set) {
        require(keyOf(attribute.getName()) == expected->first, "the same names in the same order");
        require(stringOf(attribute.getName().getNamespace().getPrefix()) == expected->second.first, "the same prefix");
        require(stringOf(attribute.getValue()) == expected->second.second, "the same value");
        require(set.find(attribute) == &attribute, "found by name");
        ++expected;
    }
}

struct Pair {
    QeXmlAttributeSet set;
    Model model;

    void add(const QeXmlName& name, const QeCString& value) {
        set.add(name, value);
        model.try_emplace(keyOf(name), stringOf(name.getNamespace().getPrefix()), "").first->second.second =
            stringOf(value);
    }

    void removeAt(std::size_t index) {
        if (index >= set.size()) {
            require(set.remove(set.end()) == set.end(), "nothing is removed at the end");
            return;
        }
        model.erase(std::next(model.begin(), static_cast<std::ptrdiff_t>(index)));
        QeXmlAttribute* const position = set.begin() + index;
        require(set.remove(position) == position, "the successor takes the place");
    }

    void look(const QeXmlName& name) const {
        require(set.contains(name) == model.contains(keyOf(name)), "contains what it should");
        const QeXmlAttribute* const found = set.findNamespaceAttribute(name.getLocalName());
        const auto expected = model.lower_bound({stringOf(name.getLocalName()), ""});
        const bool exists = expected != model.end() && expected->first.first == stringOf(name.getLocalName());
        require((found != set.end()) == exists, "a local name is found");
        if (exists) require(keyOf(found->getName()) == expected->first, "the first of a local name is found");
        const auto declaration = model.find({"xmlns", ""});
        require(stringOf(set.getDefaultNamespaceAttribute()) ==
                    (declaration == model.end() ? "" : declaration->second.second),
                "the default declaration");
    }
};

void call(Pair& one, Pair& other, Input& input) {
    switch (input.below(12)) {
        case 0:
        case 1:
        case 2: {
            const QeXmlName name = takeName(input);
            return one.add(name, QeCString(input.text(input.below(40))));
        }
        case 3: {
            const QeXmlName name = takeName(input);
            one.model.erase(keyOf(name));
            return one.set.remove(name);
        }
        case 4:
            return one.removeAt(input.byte());
        case 5:
            return one.look(takeName(input));
        case 6:
            if (one.set.size() == 0) return;
            return one.add((one.set.begin() + input.below(one.set.size()))->getName(), one.set.begin()->getValue());
        case 7:
            one.model.clear();
            return one.set.clear();
        case 8:
            other = one;
            return;
        case 9:
            one = std::move(other);
            other = Pair();
            return;
        case 10: {
            const QeXmlName name = takeName(input);
            const QeXmlNamespace ns(name.getLocalName(), name.getNamespace().getURI());
            one.set.addNamespaceAttribute(ns);
            one.model.try_emplace({stringOf(ns.getPrefix()), ""}, "xmlns", "").first->second.second =
                stringOf(ns.getURI());
            return;
        }
        default:
            require((one.set.compareTo(other.set) == 0) == (other.set.compareTo(one.set) == 0), "equal both ways");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Pair one, other;
    while (!input.empty())
        call(one, other, input);
    requireEqual(one.set, one.model);
    requireEqual(other.set, other.model);
    return 0;
}
