#include <contestants.h>
#include <cstring>
#include <expat.h>
#include <memory>

namespace tessit::benchmarks {

namespace {

constexpr char Separator = '\n';  // no URI has one

struct NameParts {
    std::string_view prefix, local, uri;
};

// A name comes as URI, local name and prefix; what is missing at either end comes without its separator.
NameParts split(const char* name) {
    const char* const uriEnd = std::strchr(name, Separator);
    if (uriEnd == nullptr) return {{}, name, {}};
    const std::string_view uri(name, static_cast<std::size_t>(uriEnd - name));
    const char* const local = uriEnd + 1;
    const char* const localEnd = std::strchr(local, Separator);
    if (localEnd == nullptr) return {{}, local, uri};
    return {localEnd + 1, {local, static_cast<std::size_t>(localEnd - local)}, uri};
}

Tally& tallyOf(void* user) {
    return *static_cast<Tally*>(user);
}

void XMLCALL startElement(void* user, const char* name, const char** attributes) {
    const NameParts parts = split(name);
    tallyOf(user).element(parts.prefix, parts.local, parts.uri);
    for (; *attributes != nullptr; attributes += 2) {
        const NameParts attribute = split(attributes[0]);
        tallyOf(user).attribute(attribute.prefix, attribute.local, attribute.uri, std::string_view(attributes[1]));
    }
}

void XMLCALL endElement(void* user, const char*) {
    tallyOf(user).elementEnd();
}

void XMLCALL characters(void* user, const char* text, int length) {
    tallyOf(user).text(std::string_view(text, static_cast<std::size_t>(length)));
}

// Declarations are no attributes here; for the others they are.
void XMLCALL startNamespace(void* user, const char* prefix, const char* uri) {
    const std::string_view none, xmlns = "xmlns", value = uri == nullptr ? "" : uri;
    if (prefix == nullptr)
        tallyOf(user).attribute(none, xmlns, none, value);
    else
        tallyOf(user).attribute(xmlns, std::string_view(prefix), none, value);
}

Tally read(const Document& document) {
    Tally tally;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreateNS(nullptr, Separator),
                                                                              &XML_ParserFree);
    XML_SetReturnNSTriplet(parser.get(), 1);
    XML_SetUserData(parser.get(), &tally);
    XML_SetElementHandler(parser.get(), startElement, endElement);
    XML_SetCharacterDataHandler(parser.get(), characters);
    XML_SetStartNamespaceDeclHandler(parser.get(), startNamespace);
    XML_Parse(parser.get(), document.bytes.data(), static_cast<int>(document.bytes.size()), 1);
    return tally;
}

}  // namespace

void addExpat(Contestants& all) {
    const std::string version = std::to_string(XML_MAJOR_VERSION) + '.' + std::to_string(XML_MINOR_VERSION) + '.' +
                                std::to_string(XML_MICRO_VERSION);
    all.readers.push_back({"Expat", version, Role::Peer, {}, read});
}

}  // namespace tessit::benchmarks
