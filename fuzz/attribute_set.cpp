// Calls on attribute sets, held against a list that is searched from its front, whatever its order.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <tessit/model/xml_attribute_set.h>

#include "fuzzing.h"

using tessit::fuzz::Input;
using tessit::fuzz::require;

namespace {

using Model = std::vector<QeXmlAttribute>;

bool isSame(const QeXmlAttribute& left, const QeXmlAttribute& right) {
    return left.getName() == right.getName() && left.getValue() == right.getValue() &&
           left.getName().getNamespace().getPrefix() == right.getName().getNamespace().getPrefix();
}

// Few names, so that they meet again; some too long to be kept in place, or so long that copies share URIs.
QeXmlName takeName(Input& input) {
    static const std::string LongText(300, 't');
    static const char* const Texts[] = {
        "", "a", "b", "c", "xmlns", "a name of more than 23 bytes", "a name of more than 23 others", LongText.c_str()};
    const unsigned choice = input.byte();
    const QeCString local(choice < 128 ? Texts[choice % std::size(Texts)] : std::to_string(choice).c_str());
    return QeXmlName(local, QeXmlNamespace(input.oneOf(Texts), input.oneOf(Texts)));
}

struct Pair {
    QeXmlAttributeSet set;
    Model model;

    template <typename Matches>
    std::size_t findIf(const Matches& matches) const {
        return static_cast<std::size_t>(std::find_if(model.begin(), model.end(), matches) - model.begin());
    }
    std::size_t find(const QeXmlName& name) const {
        return findIf([&](const QeXmlAttribute& attribute) { return attribute.getName() == name; });
    }
    Model::iterator at(std::size_t index) { return model.begin() + static_cast<std::ptrdiff_t>(index); }

    // The arguments may be part of the set, whose attributes move.
    void add(const QeXmlName& name, const QeCString& value) {
        addToModel(QeXmlAttribute(name, value));
        set.add(name, value);
    }

    void declare(const QeXmlNamespace& ns) {
        addToModel(QeXmlAttribute(ns.getPrefix(), ns.getURI(), QeXmlNamespace::getXmlns()));
        set.addNamespaceAttribute(ns);
    }

    // In a broken order, a search by halves decides on the place, though what is present is found wherever it is.
    void addToModel(const QeXmlAttribute& added) {
        const std::size_t present = find(added.getName());
        if (present != model.size()) return model[present].setValue(added.getValue());
        const auto before = [](const auto& left, const auto& right) { return left.getName() < right.getName(); };
        model.insert(std::upper_bound(model.begin(), model.end(), added, before), added);
    }

    void remove(const QeXmlName& name) {
        set.remove(name);
        if (const std::size_t present = find(name); present != model.size()) model.erase(at(present));
    }

    void removeAt(std::size_t index) {
        if (index >= set.size()) {
            require(set.remove(set.end()) == set.end(), "nothing is removed at the end");
            return;
        }
        model.erase(at(index));
        QeXmlAttribute* const position = set.begin() + index;
        require(set.remove(position) == position, "the successor takes the place");
    }

    // A new name can break the order; all is found nevertheless.
    void rename(std::size_t index, const QeXmlName& name) {
        if (index >= set.size()) return;
        model[index].setName(name);
        (set.begin() + index)->setName(name);
    }

    void look(const QeXmlName& name) const {
        require(set.find(name) == set.begin() + find(name), "the first of a name is found");
        const std::size_t declaration = findIf(
            [&](const QeXmlAttribute& attribute) { return attribute.getName().getLocalName() == name.getLocalName(); });
        require(set.findNamespaceAttribute(name.getLocalName()) == set.begin() + declaration,
                "the first of a local name is found");
        const std::size_t byDefault = find(QeXmlName("xmlns"));
        require(set.getDefaultNamespaceAttribute() == (byDefault == model.size() ? "" : model[byDefault].getValue()),
                "the default declaration");
    }

    void requireEqual() const {
        require(std::equal(set.begin(), set.end(), model.begin(), model.end(), isSame), "the same attributes");
        require(set.size() == model.size(), "as many attributes");
    }
};

// Not often, so that sets get large.
bool seldom(Input& input) {
    return input.below(16) == 0;
}

void call(Pair& one, Pair& other, Input& input) {
    switch (input.below(12)) {
        case 0:
        case 1:
        case 2: {
            const QeXmlName name = takeName(input);
            return one.add(name, QeCString(input.text(input.below(40))));
        }
        case 3:
            return one.remove(takeName(input));
        case 4:
            return one.removeAt(input.byte());
        case 5:
            return one.look(takeName(input));
        case 6:
            if (one.set.size() == 0) return;
            return one.add((one.set.begin() + input.below(one.set.size()))->getName(),
                           std::as_const(one.set).begin()->getValue());
        case 7:
            if (!seldom(input)) return one.rename(input.byte(), takeName(input));
            one.model.clear();
            return one.set.clear();
        case 8:
            if (seldom(input)) other = one;
            return;
        case 9:
            if (!seldom(input)) return;
            one = std::move(other);
            other.model.clear();  // what was moved from is empty, and can be used
            return;
        case 10: {
            const QeXmlName name = takeName(input);
            return one.declare(QeXmlNamespace(name.getLocalName(), name.getNamespace().getURI()));
        }
        default:
            require((one.set.compareTo(other.set) == 0) == (other.set.compareTo(one.set) == 0), "equal both ways");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Pair one, other;
    while (!input.empty()) {
        call(one, other, input);
        one.look(takeName(input));
        one.requireEqual();
    }
    other.requireEqual();
    return 0;
}
