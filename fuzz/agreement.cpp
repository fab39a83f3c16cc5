// A document, as the conforming reader reads it and as two other conforming parsers do: where these agree with each
// other on whether it is well-formed, the reader agrees with them. What each does otherwise for a reason is left out.

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <memory>
#include <string>

#include <tessit/reader/xml_reader.h>

#include "fuzzing.h"

using tessit::fuzz::require;

namespace {

bool isAcceptedByExpat(std::string_view text) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreateNS(nullptr, '\n'),
                                                                              &XML_ParserFree);
    XML_SetParamEntityParsing(parser.get(), XML_PARAM_ENTITY_PARSING_ALWAYS);  // internal ones; no others are fetched
    return XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
}

void keepSilent(void*, const char*, ...) {}

// Without a network, and nothing else is opened either.
xmlParserInputPtr openNothing(const char*, const char*, xmlParserCtxtPtr) {
    return nullptr;
}

bool isAcceptedByLibxml2(std::string_view text) {
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(
        xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())), &xmlFreeParserCtxt);
    if (context == nullptr) return false;
    xmlCtxtUseOptions(context.get(), XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    const bool isRead = xmlParseDocument(context.get()) == 0;
    const bool isAccepted = isRead && context->wellFormed == 1 && context->nsWellFormed == 1;
    xmlFreeDoc(context->myDoc);
    context->myDoc = nullptr;
    return isAccepted;
}

// What the others take though XML forbids it: UTF-16 without a mark, and references to parameter entities inside of
// declarations that parameter entities of the internal subset bring.
bool isTooLenient(std::string_view text, std::string_view refusal) {
    const bool isUnmarked = text.size() >= 2 && (text[0] == '\0' || text[1] == '\0');
    const bool hasReference = text.find("&#37;") != text.npos || text.find("&#x25;") != text.npos;
    return isUnmarked || (hasReference && refusal.find("'%' that begins no reference") != refusal.npos);
}

// Empty where the reader accepts the document.
std::string refusalBy(std::string_view text) {
    try {
        const QeCString document(text);
        QeXmlReader reader(document, {.rules = QeXmlRules::Conforming});
        while (!reader.eof())
            reader.readNextNode();
    } catch (const QeXmlParseError& error) {
        return std::to_string(error.getLineNumber()) + ":" + std::to_string(error.getColumnNumber()) + " " +
               error.why();
    }
    return {};
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xmlSetExternalEntityLoader(&openNothing);
    xmlSetGenericErrorFunc(nullptr, &keepSilent);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = tessit::fuzz::textOf(data, size);
    const bool isAccepted = isAcceptedByExpat(text);
    if (isAcceptedByLibxml2(text) != isAccepted) return 0;
    const std::string refusal = refusalBy(text);
    if (isAccepted && isTooLenient(text, refusal)) return 0;
    if (refusal.empty() != isAccepted) std::fprintf(stderr, "%s\n", refusal.c_str());
    require(refusal.empty() == isAccepted, "agreement with those that agree");
    return 0;
}
