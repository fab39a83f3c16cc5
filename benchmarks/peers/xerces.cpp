#include <contestants.h>
#include <memory>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace tessit::benchmarks {

namespace {

using View = std::u16string_view;

class Count final : public xercesc::DefaultHandler {
public:
    void startElement(const XMLCh* uri, const XMLCh*, const XMLCh* name,
                      const xercesc::Attributes& attributes) override {
        tally.element(View(name));
        tally.addUri(View(uri));
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i)
            countAttribute(attributes.getQName(i), attributes.getValue(i), attributes.getURI(i));
    }
    void endElement(const XMLCh*, const XMLCh*, const XMLCh*) override { tally.elementEnd(); }
    void characters(const XMLCh* text, XMLSize_t length) override { tally.text(View(text, length)); }

    Tally tally;

private:
    // Declarations have a URI here; elsewhere their names have none.
    void countAttribute(View name, View value, View uri) {
        tally.attribute(name, value);
        if (!name.starts_with(u"xmlns")) tally.addUri(uri);
    }
};

Tally read(const Document& document) {
    using xercesc::XMLUni;
    Count count;
    const std::unique_ptr<xercesc::SAX2XMLReader> parser(xercesc::XMLReaderFactory::createXMLReader());
    parser->setFeature(XMLUni::fgSAX2CoreNameSpaces, true);
    parser->setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, true);  // declarations among the attributes
    parser->setFeature(XMLUni::fgSAX2CoreValidation, false);
    parser->setFeature(XMLUni::fgXercesSchema, false);
    parser->setFeature(XMLUni::fgXercesLoadExternalDTD, false);
    parser->setContentHandler(&count);
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.bytes.data()),
                                            document.bytes.size(), "document");
    parser->parse(source);
    return count.tally;
}

}  // namespace

void addXerces(Contestants& all) {
    xercesc::XMLPlatformUtils::Initialize();
    all.readers.push_back({"Xerces-C SAX2", XERCES_FULLVERSIONDOT, Role::Peer, {.utf16 = true}, read});
}

}  // namespace tessit::benchmarks
