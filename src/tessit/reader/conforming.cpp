// A conforming reader from its begin on, the fault that stays, and what its program asks it.

#include <algorithm>
#include <new>
#include <utility>

#include <corvel/immortal.h>
#include <tessit/reader/conforming_nodes.h>
#include <tessit/reader/windowed.h>

namespace {

tessit::DeclarationSettings settingsOf(const QeXmlReaderOptions& options) {
    tessit::DeclarationSettings settings;
    settings.namespaces = options.namespaces;
    settings.resolver = options.resolver;
    settings.named = options.entities;
    settings.expansionFactor = options.expansionFactor;
    settings.freeExpansion = options.freeExpansion;
    settings.entityDepth = options.entityDepth;
    settings.limits = &options.limits;
    settings.keepsInstructions = tessit::hasNode(options.nodes, QeXmlNodes::Instructions);
    return settings;
}

}  // namespace

QeXmlReader::Engine::Conforming::Conforming(const QeXmlReaderOptions& given)
    : options(given), declared(settingsOf(options)), tags(declared, options.namespaces, options.limits) {}

void QeXmlReader::Engine::Conforming::begin() {
    tessit::Source source;
    source.places = std::move(document.source.places);  // memory to go on with
    document.source = std::move(source);
    document.converted.clear();
    document.encoding.clear();
    firstBytes.clear();
    declared.reset();
    tags.begin();
    documentType = {};
    parts = {};
    documentTypeBegin = documentTypeEnd = end = nullptr;
    documentTypeWasRead = false;
    nextInstruction = 0;
    phase = InProlog;
    entities.clear();
    target.clear();
    fault = nullptr;
}

void QeXmlReader::Engine::openConforming(std::string_view bytes) {
    tessit::DecodedText& document = conforming->document;
    document.source.name = conforming->options.sourceName;
    const bool isTooMuch = bytes.size() > input.limits().document;  // then nothing is looked at
    decodeText(document, bytes.substr(0, isTooMuch ? 0 : bytes.size()), conforming->options.encoding);
    reader.encoding = document.encoding;
    const bool isAnotherText = document.source.text.data() == document.converted.data();
    if (isAnotherText) reader.ownedDocument = QeCString();
    if (conforming->options.namespaces) tessit::ConformingTags::bindXml(bindings);
    input.enter(document.source, document.source.begin());
    try {
        tessit::hold(bytes.size(), input.limits().document, tessit::Limit::Document);
        ConformingNodes(*this).readProlog();
    } catch (...) {
        keepFault();
        raiseFault();
    }
}

// To be called where an exception was caught.
void QeXmlReader::Engine::keepFault() {
    const bool isInDocument = lastNode.source == &conforming->document.source;
    keepFault(isInDocument ? lastNode.begin : input.position());
}

// The elements that are open in front of the place are the fault's.
void QeXmlReader::Engine::keepFault(const char* place) {
    try {
        try {
            throw;
        } catch (const tessit::Exceeded& exceeded) {
            raiseExceeded(exceeded);
        }
    } catch (QeXmlParseError& error) {
        completeFault(error, place);
        conforming->fault = std::current_exception();
    } catch (...) {
        conforming->fault = std::current_exception();
    }
}

// What cannot be said for lack of memory is left out.
void QeXmlReader::Engine::completeFault(QeXmlParseError& error, const char* place) const {
    try {
        tessit::ErrorAccess::Details details = tessit::ErrorAccess::detailsOf(error);
        complete(details, place);
        tessit::ErrorAccess::setDetails(error, std::move(details));
    } catch (const std::bad_alloc&) {
    }
}

// The first fault stays, whatever the program calls behind it; so does what a resolver or a lack of memory has broken
// off. An empty element that was read last counts as closed: else its end could still be taken.
void QeXmlReader::Engine::raiseFault() {
    reader.lastNodeType = NoNode;
    std::rethrow_exception(conforming->fault);
}

void QeXmlReader::Engine::readConformingContent() {
    refuseWhileReading();
    if (conforming->fault != nullptr) raiseFault();
    try {
        if (conforming->phase == Conforming::InRoot) needText();
        ConformingNodes(*this).readContent();
        if (hasLimits()) limitLastNode();
    } catch (...) {
        keepFault();
        raiseFault();
    }
}

// Asked outside of the root element by `eof`, which raises nothing: a fault there is for the next reading call.
void QeXmlReader::Engine::passOutsideOfRoot() noexcept {
    if (conforming->phase != Conforming::InEpilog || conforming->fault != nullptr) return;
    if (windowed != nullptr && windowed->isReading) return;
    bool never = false;
    const tessit::SetMeanwhile keeps(windowed != nullptr ? windowed->keepsPlace : never);
    try {
        ConformingNodes(*this).passOutside(ConformingNodes::Others::Leave);
    } catch (...) {
        keepFault(input.position());  // the last node is the root's end tag, in front of which the root is open
    }
}

// Within an entity, the place in the document is that behind the reference which brought it.
const char* QeXmlReader::Engine::positionInDocument() const noexcept {
    if (conforming == nullptr || conforming->entities.empty()) return input.position();
    return conforming->entities.front().resume;
}

// Where in the document that stands which is read next: the reference, as long as there is anything left of what it
// brought.
const char* QeXmlReader::Engine::nextInDocument() const noexcept {
    if (conforming == nullptr || conforming->entities.empty()) return input.position();
    const auto& entities = conforming->entities;
    const char* next = input.position();
    for (auto entity = entities.rbegin(); entity != entities.rend(); ++entity) {
        if (next != entity->entity->source.end()) return entities.front().entity->source.reference;
        next = entity->resume;
    }
    return next;
}

const QeCString& QeXmlReader::getLastTarget() const noexcept {
    return engine->conforming == nullptr ? QeXmlAttributeSet::EmptyString : engine->conforming->target;
}

const QeXmlDocumentType& QeXmlReader::getDocumentType() const noexcept {
    static constinit const corvel::Immortal<QeXmlDocumentType> None;
    return engine->conforming == nullptr ? None.value : engine->conforming->documentType;
}

bool QeXmlReader::isSpecified(const QeXmlAttribute& attribute) const {
    return engine->conforming == nullptr || !engine->conforming->tags.isDefault(attribute.getName().asString());
}

std::vector<QeXmlLeftReference> QeXmlReader::getLeftReferences(const QeXmlAttribute& attribute) const {
    std::vector<QeXmlLeftReference> references;
    if (engine->conforming == nullptr) return references;
    const QeCString name = attribute.getName().asString();
    for (const auto& [owner, reference] : engine->conforming->tags.leftIn(name))
        references.push_back({reference.offset, reference.length});
    return references;
}

bool QeXmlReader::isInEntity() const noexcept {
    return engine->conforming != nullptr && !engine->conforming->entities.empty();
}
