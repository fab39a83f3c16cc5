// Calls on a namespace stack, held against lists of pairs.

#include <optional>
#include <string>
#include <vector>

#include <tessit/model/xml_namespace_stack.h>

#include "fuzzing.h"

using tessit::fuzz::Input;
using tessit::fuzz::require;

namespace {

struct Binding {
    std::string prefix, uri;
};

std::string stringOf(const QeCString& text) {
    return std::string(std::string_view(text));
}

struct Pair {
    QeXmlNamespaceStack stack;
    std::vector<std::vector<Binding>> scopes;

    void add(const QeXmlNamespace& ns) {
        if (scopes.empty()) scopes.emplace_back();
        scopes.back().push_back({stringOf(ns.getPrefix()), stringOf(ns.getURI())});
        stack.addNamespace(ns);
    }

    std::string find(std::string Binding::*wanted, std::string Binding::*key, const QeCString& value) const {
        for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope)
            for (const Binding& binding : *scope)
                if (binding.*key == std::string_view(value)) return binding.*wanted;
        return "";
    }

    void look(const QeCString& text) const {
        require(stringOf(stack.getURIForPrefix(text)) == find(&Binding::uri, &Binding::prefix, text),
                "the prefix's URI");
        require(stringOf(stack.getPrefixForURI(text)) == find(&Binding::prefix, &Binding::uri, text),
                "the URI's prefix");
    }

    void requireEqual() const {
        const std::vector<Binding> innermost = scopes.empty() ? std::vector<Binding>() : scopes.back();
        const QeXmlNamespace* binding = stack.namespacesBegin();
        for (const Binding& expected : innermost) {
            require(binding != stack.namespacesEnd(), "as many bindings in the innermost scope");
            require(stringOf(binding->getPrefix()) == expected.prefix && stringOf(binding->getURI()) == expected.uri,
                    "in the order of adding");
            ++binding;
        }
        require(binding == stack.namespacesEnd(), "no more bindings in the innermost scope");
    }
};

// Few texts, so that they meet again; a quarter so long that they are shared.
QeCString takeText(Input& input) {
    const unsigned choice = input.byte();
    if (choice == 0) return QeCString();
    const std::string number = std::to_string(choice % 32);
    return QeCString(std::string_view((choice % 4 == 0 ? std::string(300, 't') : "t") + number));
}

void call(Pair& one, Pair& other, Input& input) {
    switch (input.below(8)) {
        case 0:
        case 1:
            one.scopes.emplace_back();
            return one.stack.pushScope();
        case 2:
            if (!one.scopes.empty()) one.scopes.pop_back();
            return one.stack.popScope();
        case 3:
        case 4: {
            const QeCString prefix = takeText(input);
            return one.add(QeXmlNamespace(prefix, takeText(input)));
        }
        case 5:
            if (one.stack.namespacesBegin() != one.stack.namespacesEnd()) one.add(*one.stack.namespacesBegin());
            return;
        case 6:
            if (input.below(8) == 0) other = one;  // seldom, so that stacks get large
            return;
        default:
            if (input.below(8) != 0) return;
            one = Pair(std::move(other));
            other.scopes.clear();  // what was moved from is empty, and can be used
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Pair one, other;
    while (!input.empty()) {
        call(one, other, input);
        one.look(takeText(input));
        one.requireEqual();
    }
    other.requireEqual();
    return 0;
}
