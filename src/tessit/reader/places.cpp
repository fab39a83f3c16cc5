// Where things stand that were read: asked for by programs, and by errors.

#include <algorithm>
#include <string>
#include <utility>

#include <corvel/byte_scan.h>
#include <tessit/errors/error_access.h>
#include <tessit/reader/conforming.h>
#include <tessit/reader/element_path.h>
#include <tessit/reader/hints.h>
#include <tessit/reader/windowed.h>
#include <tessit/rules/rules.h>

using tessit::ElementPath;
using tessit::Source;

namespace {

struct PlaceInSource {
    const Source* source;
    const char* place;
};

// What an entity brought that has no places of its own stands where its reference does.
PlaceInSource endWithPlaces(PlaceInSource end) {
    while (!end.source->hasPlaces && end.source->parent != nullptr) {
        const Source* const outer = end.source->parent;
        end = {outer, corvel::findByte(end.source->reference, outer->end(), ';') + 1};
    }
    return end;
}

}  // namespace

QeXmlPosition QeXmlReader::Engine::endOf(const Written& written, const char* end) const {
    if (written.source == nullptr) return input.positionOf(end);
    const PlaceInSource told = endWithPlaces({written.source, end});
    return placeIn(*told.source, told.place).position;
}

QeXmlSpan QeXmlReader::Engine::spanOf(const Written& written, const char* end) const {
    return {positionIn(written, written.begin), endOf(written, end)};
}

QeXmlPosition QeXmlReader::Engine::positionIn(const Written& written, const char* place) const {
    return written.source == nullptr ? input.positionOf(place) : placeIn(*written.source, place).position;
}

// Behind the node the reader may have gone on, over what it does not deliver. A text ends where it stands, in whatever
// source that is.
QeXmlSpan QeXmlReader::Engine::spanOfLastNode() const {
    const Written here{input.position(), conforming == nullptr ? nullptr : &input.source()};
    if (lastNode.begin == nullptr && windowed != nullptr && windowed->leftNode) return windowed->leftNode->span;
    if (lastNode.begin == nullptr) return spanOf(here, here.begin);
    if (reader.lastNodeType == Content) return {positionIn(lastNode, lastNode.begin), endOf(here, here.begin)};
    const char* const limit = lastNode.source == nullptr ? input.limit() : lastNode.source->end();
    if (conforming != nullptr && lastNode.begin == conforming->documentTypeBegin)
        return spanOf(lastNode, conforming->documentTypeEnd);
    if (reader.lastNodeType == EntityReference)
        return spanOf(lastNode, corvel::findByte(lastNode.begin, limit, ';') + 1);
    const char* const end = tessit::endOfMarkup(lastNode.begin, limit, reader.expandAttributeReference);
    return spanOf(lastNode, end == nullptr ? lastNode.begin : end);
}

std::uint64_t QeXmlReader::Engine::offsetOfLastNode() const {
    if (lastNode.begin == nullptr && windowed != nullptr && windowed->leftNode) return windowed->leftNode->offset;
    Written at = lastNode;
    if (at.begin == nullptr) at = {input.position(), conforming == nullptr ? nullptr : &input.source()};
    if (at.source == nullptr) return input.offsetOf(at.begin);
    while (at.source->parent != nullptr)
        at = {at.source->reference, at.source->parent};
    return offsetIn(*at.source, at.begin);
}

std::optional<QeXmlPosition> QeXmlReader::Engine::positionOf(std::uint64_t offset) const {
    const Source* const document = conforming == nullptr ? nullptr : &conforming->document.source;
    const char* const place = document == nullptr ? input.placeOf(offset) : placeOf(*document, offset);
    if (place == nullptr) return std::nullopt;
    return positionIn({place, document}, place);
}

tessit::WrittenAttributes& QeXmlReader::Engine::attributesOfLastTag() {
    return makeFoundOut().ofLastTag;
}

std::optional<QeXmlAttributeSpans> QeXmlReader::Engine::spansOf(const QeXmlAttribute& attribute) {
    if (lastTag.begin == nullptr) return std::nullopt;
    const char* const limit = lastTag.source == nullptr ? input.limit() : lastTag.source->end();
    if (lastTag.source == nullptr)
        input.dropAnchor(lastTag.begin);
    else
        dropAnchor(*lastTag.source, lastTag.begin);
    const auto written = attributesOfLastTag().find(lastTag.begin, limit, reader.expandAttributeReference,
                                                    attribute.getName().asString());
    if (!written) return std::nullopt;
    const auto spanOfText = [this](std::string_view text) {
        return QeXmlSpan{positionIn(lastTag, text.data()), endOf(lastTag, text.data() + text.size())};
    };
    return QeXmlAttributeSpans{spanOfText(written->name), spanOfText(written->value)};
}

QeXmlReader::Engine::FoundOut& QeXmlReader::Engine::makeFoundOut() const {
    if (foundOut == nullptr) foundOut = std::make_unique<FoundOut>();
    return *foundOut;
}

// Where no element is open yet.
const char* QeXmlReader::Engine::beginOfElements() const noexcept {
    if (conforming == nullptr) return reader.bufferStart;
    return conforming->documentTypeEnd != nullptr ? conforming->documentTypeEnd : conforming->document.source.begin();
}

// The elements that the document's own text opens in front of a place; within an entity, that is the reference.
const ElementPath& QeXmlReader::Engine::pathInDocument(const char* place) const {
    if (conforming != nullptr && !conforming->entities.empty())
        place = conforming->entities.front().entity->source.reference;
    std::optional<ElementPath>& path = makeFoundOut().path;
    if (!path) path.emplace(beginOfElements());
    path->goOnTo(place, reader.expandAttributeReference);
    return *path;
}

// Where a lenient reader could not read a start tag, which opens nothing then, its begin.
const char* QeXmlReader::Engine::inFrontOfUnread(const char* place) const noexcept {
    if (conforming != nullptr || lastNode.begin == nullptr || lastNode.begin == lastTag.begin) return place;
    const bool isInTag = lastNode.begin < place && place - lastNode.begin > 1 && *lastNode.begin == '<';
    return isInTag && lastNode.begin[1] != '/' ? lastNode.begin : place;
}

// Elements that an entity opened are known by their names alone.
QeCString QeXmlReader::Engine::pathOfOpenElements(const char* place) const {
    if (reader.depth <= 0 && levelsInFrontOf(place) == 0) return QeCString();
    if (!hasBeginning()) return pathWithoutBeginning(place);
    const ElementPath& inDocument = pathInDocument(inFrontOfUnread(place));
    return pathWithEntities(inDocument.depth(), [&inDocument](std::size_t level) { return inDocument.step(level); });
}

QeCString QeXmlReader::Engine::pathWithEntities(std::size_t levels,
                                                const std::function<tessit::PathStep(std::size_t)>& inDocument) const {
    if (conforming == nullptr || conforming->entities.empty()) return tessit::textOfPath(levels, inDocument);
    const auto fromEntities = static_cast<std::size_t>(reader.depth - conforming->entities.front().depth);
    const std::vector<std::string_view> innermost = openElements.innermost(std::min(fromEntities, tessit::MostSteps));
    return tessit::textOfPath(levels + fromEntities, [&](std::size_t level) {
        if (level < levels) return inDocument(level);
        const std::size_t fromInside = levels + fromEntities - 1 - level;
        return fromInside < innermost.size() ? tessit::PathStep{innermost[fromInside]} : tessit::PathStep();
    });
}

// Of a place in the document's text, whatever is read now; nothing where what is in front of it has gone.
QeCString QeXmlReader::Engine::pathAt(const char* place) const {
    if (place == nullptr || !hasBeginning()) return QeCString();
    ElementPath path(beginOfElements());
    path.goOnTo(place, reader.expandAttributeReference);
    return tessit::textOfPath(path.depth(), [&path](std::size_t level) { return path.step(level); });
}

// A start tag that was too much has opened its element already. That which a lenient reader is about may have closed
// one, too; what came behind it and could not be read was none.
std::size_t QeXmlReader::Engine::levelsInFrontOf(const char* place) const noexcept {
    const std::size_t levels = levelsInDocument();
    if (lastNode.begin == nullptr) return levels;
    if (reader.lastNodeType == ElementStart && place == lastTag.begin && levels != 0) return levels - 1;
    if (conforming != nullptr || reader.lastNodeType != ElementEnd) return levels;
    const std::string_view rest(lastNode.begin, static_cast<std::size_t>(input.limit() - lastNode.begin));
    if (!rest.starts_with("</")) return levels;
    const bool isInTag = place == lastNode.begin ||
                         tessit::endOfMarkup(lastNode.begin, place, reader.expandAttributeReference) == nullptr;
    return levels + (isInTag && reader.depth >= 0 ? 1 : 0);
}

// What is known without the document's beginning: names, but no numbers.
QeCString QeXmlReader::Engine::pathWithoutBeginning(const char* place) const {
    const tessit::OpenTags& tags = windowed->openTags;
    return pathWithEntities(levelsInFrontOf(place), [&tags](std::size_t level) {
        const QeXmlOpenElement* const kept = tags.findKept(level);
        if (kept != nullptr) return tessit::PathStep{kept->name};
        const char* const tag = tags.tag(level);
        return tag == nullptr ? tessit::PathStep() : tessit::PathStep{tessit::nameInTag(tag, tessit::MostOfPath)};
    });
}

// Of those whose tags nobody knows, there is nothing to say.
std::vector<QeXmlOpenElement> QeXmlReader::Engine::listWithoutBeginning() const {
    std::vector<QeXmlOpenElement> elements;
    const std::size_t levels = levelsInDocument();
    for (std::size_t level = 0; level != levels; ++level) {
        const QeXmlOpenElement* const kept = windowed->openTags.findKept(level);
        const char* const tag = windowed->openTags.tag(level);
        if (kept != nullptr)
            elements.push_back(*kept);
        else if (tag != nullptr)
            elements.push_back({QeCString(tessit::nameInTag(tag)), spanOfTag(tag)});
    }
    addElementsOfEntities(elements);
    return elements;
}

QeXmlSpan QeXmlReader::Engine::spanOfTag(const char* tag) const {
    const Source* const source = conforming == nullptr ? nullptr : &conforming->document.source;
    const char* const limit = source == nullptr ? input.limit() : source->end();
    const char* const end = tessit::endOfMarkup(tag, limit, reader.expandAttributeReference);
    return spanOf({tag, source}, end == nullptr ? tag : end);
}

std::vector<QeXmlOpenElement> QeXmlReader::Engine::listOpenElements() const {
    std::vector<QeXmlOpenElement> elements;
    if (reader.depth <= 0) return elements;
    if (!hasBeginning()) return listWithoutBeginning();
    const ElementPath& inDocument = pathInDocument(input.position());
    for (std::size_t level = 0; level != inDocument.depth(); ++level) {
        const char* const tag = inDocument.element(level).tag;
        elements.push_back({QeCString(tessit::nameInTag(tag)), spanOfTag(tag)});
    }
    addElementsOfEntities(elements);
    return elements;
}

// They stand where the reference does.
void QeXmlReader::Engine::addElementsOfEntities(std::vector<QeXmlOpenElement>& elements) const {
    if (conforming == nullptr || conforming->entities.empty()) return;
    const Conforming::OpenEntity& outermost = conforming->entities.front();
    const Source& entity = outermost.entity->source;
    const QeXmlSpan reference = spanOf({entity.reference, entity.parent}, outermost.resume);
    auto names = openElements.innermost(static_cast<std::size_t>(reader.depth - outermost.depth));
    std::ranges::reverse(names);
    for (const std::string_view name : names)
        elements.push_back({QeCString(name), reference});
}

std::optional<QeXmlNote> QeXmlReader::Engine::noteWithoutBeginning(const char* text, const char* place) const {
    const std::size_t levels = levelsInFrontOf(place);
    if (levels == 0) return std::nullopt;
    const QeXmlOpenElement* const kept = windowed->openTags.findKept(levels - 1);
    const char* const tag = windowed->openTags.tag(levels - 1);
    if (kept != nullptr && !kept->name.empty())
        return QeXmlNote{text, {input.getSourceName(), kept->tag.begin}, QeXmlExcerpt()};
    if (kept != nullptr || tag == nullptr) return std::nullopt;
    if (conforming != nullptr) return tessit::noteIn(conforming->document.source, tag, text);
    return QeXmlNote{text, {input.getSourceName(), input.positionOf(tag)}, input.excerptAt(tag)};
}

// The start tag of the innermost element of the document's own text that is open in front of a place.
std::optional<QeXmlNote> QeXmlReader::Engine::noteOfInnermost(const char* text, const char* place) const {
    if (!hasBeginning()) return noteWithoutBeginning(text, place);
    const ElementPath& inDocument = pathInDocument(place);
    if (inDocument.depth() == 0) return std::nullopt;
    const char* const tag = inDocument.element(inDocument.depth() - 1).tag;
    if (conforming != nullptr) return tessit::noteIn(conforming->document.source, tag, text);
    return QeXmlNote{text, {input.getSourceName(), input.positionOf(tag)}, input.excerptAt(tag)};
}

void QeXmlReader::Engine::raiseUnmatched() const {
    input.raiseBehind(lastNode.begin, QeCString("Unmatched start tag for ") + reader.lastName.asString(),
                      noteOfInnermost("this element is open", lastNode.begin));
}

// Elements that an entity opened have no place of their own.
void QeXmlReader::Engine::refuseEndTag(const Written& tag, std::string_view name) const {
    std::optional<QeXmlNote> note;
    if (conforming->entities.empty()) note = noteOfInnermost("it was opened here", tag.begin);
    tessit::refuseEndTag(*tag.source, tag.begin, name, openElements.innermost(), std::move(note));
}

// Of the document without its first mark, which is looked at once.
QeCString QeXmlReader::Engine::hint(std::string_view rule) const {
    if (isAtAnotherDocument(rule)) return tessit::HintAtAnotherDocument;
    if (!hasBeginning()) return QeCString();
    FoundOut& known = makeFoundOut();
    if (!std::exchange(known.hasLookedForHint, true))
        known.hint = tessit::hintFor(conforming == nullptr ? input.textBehindMark()
                                                           : std::string_view(conforming->document.source.text));
    return known.hint == nullptr ? QeCString() : QeCString(known.hint);
}

// The last name is the root's then. A second root's fault has its place where the reader stands, at the '<'; lenient
// readers refuse no second root, but may do so with its declaration, within which they stand.
bool QeXmlReader::Engine::isAtAnotherDocument(std::string_view rule) const {
    const char* const here = input.position();
    if (conforming == nullptr)
        return reader.depth == 0 && !reader.lastName.getLocalName().empty() &&
               tessit::endsInDeclaration({reader.bufferStart, static_cast<std::size_t>(here - reader.bufferStart)});
    if (conforming->phase != Conforming::InEpilog) return false;
    const std::string_view rest(here, static_cast<std::size_t>(input.limit() - here));
    return tessit::beginsAnotherDocument(rule, rest, reader.lastName.asString());
}

bool QeXmlReader::Engine::isAtEndOfDocument() const noexcept {
    return input.position() == input.limit() && (windowed == nullptr || windowed->window.hasEnded());
}

// What was said already stays: a fault can come by here twice.
void QeXmlReader::Engine::complete(tessit::ErrorAccess::Details& details, const char* place) const {
    if (!details.path.empty()) return;
    details.path = pathOfOpenElements(place);
    const bool isUnfinished =
        conforming == nullptr ? isAtEndOfDocument() : details.rule == nameOf(tessit::Rule::UnfinishedDocument);
    if (!details.note && isUnfinished) details.note = noteOfInnermost("this element is not closed", place);
    details.hint = hint(details.rule);
}

// The place in the document's text that has that position; null if none has.
const char* QeXmlReader::Engine::find(const QeXmlPosition& position) const {
    return conforming == nullptr ? input.find(position) : findIn(conforming->document.source, position);
}

QeXmlExcerpt QeXmlReader::Engine::excerptAt(const char* place) const {
    if (place == nullptr) return QeXmlExcerpt();
    return conforming == nullptr ? input.excerptAt(place) : excerptIn(conforming->document.source, place);
}

QeXmlSpan QeXmlReader::getLastSpan() const {
    return engine->spanOfLastNode();
}

std::uint64_t QeXmlReader::getLastOffset() const {
    return engine->offsetOfLastNode();
}

std::optional<QeXmlPosition> QeXmlReader::getPosition(std::uint64_t offset) const {
    return engine->positionOf(offset);
}

std::optional<QeXmlAttributeSpans> QeXmlReader::getAttributeSpans(const QeXmlAttribute& attribute) const {
    return engine->spansOf(attribute);
}

std::vector<QeXmlOpenElement> QeXmlReader::getOpenElements() const {
    return engine->listOpenElements();
}

void QeXmlReader::err(const QeCString& message, const QeXmlPosition& where) const {
    const char* const place = engine->find(where);
    throw tessit::ErrorAccess::make(
        message, {engine->input.getSourceName(), where},
        {.position = where, .path = engine->pathAt(place), .excerpt = engine->excerptAt(place)});
}
