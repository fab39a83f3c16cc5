// Reading through a window: a node is read once all of it is there, or on trust, and then again if it was cut; when the
// window moves, whatever points into it lets go.

#include <algorithm>
#include <system_error>
#include <utility>
#include <voxal/converter.h>

#include <tessit/reader/char_class.h>
#include <tessit/reader/conforming_nodes.h>
#include <tessit/reader/nodes.h>
#include <tessit/reader/raw_copy.h>
#include <tessit/reader/windowed.h>
#include <tessit/reader/written_markup.h>

using tessit::NodeFinder;

namespace {

// So many bytes tell whether there is a mark, and the beginning of a declaration.
constexpr std::size_t FirstBytes = 4;

// So many hold a mark and "<?xml" in any encoding.
constexpr std::size_t WidestBegin = 24;

}  // namespace

void QeXmlReader::Engine::openWindowed(std::unique_ptr<tessit::ByteSource> source) {
    const QeXmlNodes nodes = conforming == nullptr ? QeXmlNodes::TagsAndText : conforming->options.nodes;
    if (windowed == nullptr)
        windowed = std::make_unique<Windowed>(std::move(source), conforming != nullptr, nodes);
    else
        windowed->begin(std::move(source));
    reader.notesOpen = true;
    if (conforming != nullptr) return openConformingWindow();
    while (windowed->window.text().size() < FirstBytes && readFirst())
        ;
    windowed->openTags.standsAt(windowed->window.text().data());
    input.takeWindow(windowed->window.text(), 0);
    const char* const told = input.tellEncoding();
    std::optional<voxal::PieceConverter> converter;
    if (told != nullptr) converter = input.openPieces(told);
    if (converter) convertWindow(std::move(*converter), told);
    findFrom(NodeFinder::Where::Outside);
    readWithinLimits([this] {
        tessit::hold(windowed->window.bytesRead(), input.limits().document, tessit::Limit::Document);
        NodeReader(*this).readProlog();
    });
    windowed->isInRoot = true;
    noteExpansion();
}

void QeXmlReader::Engine::leaveWindow() noexcept {
    windowed.reset();
    reader.notesOpen = reader.matchesTags;
}

namespace {

// The first characters, in any encoding whose units hold ASCII: behind marks, and without zeros.
QeCString firstCharacters(std::string_view bytes, std::size_t most) {
    constexpr std::string_view Marks("\0\xFE\xFF\xEF\xBB\xBF", 6);
    QeCString text;
    for (const char byte : bytes.substr(std::min(bytes.find_first_not_of(Marks), bytes.size())))
        if (byte != '\0' && text.length() < most) text += byte;
    return text;
}

// Whether the first bytes tell how to read the text: they do once a declaration is whole, if there may be one. Those in
// front of a place were looked at before.
bool tellsEncoding(std::string_view bytes, std::size_t place) {
    constexpr std::string_view Begin = "<?xml", InEbcdic = "\x4C\x6F\xA7\x94";
    constexpr char End = '>', EndInEbcdic = '\x6E';
    if (bytes.size() < FirstBytes) return false;
    if (bytes.starts_with(InEbcdic)) return bytes.find(EndInEbcdic, place) != std::string_view::npos;
    const QeCString begin = firstCharacters(bytes.substr(0, WidestBegin), Begin.size());
    if (begin == Begin) return bytes.find(End, place) != std::string_view::npos;
    return bytes.size() >= WidestBegin || !Begin.starts_with(begin);
}

}  // namespace

// As `fetch`, before anything is known of the text.
bool QeXmlReader::Engine::readFirst() {
    return readOrKeepFault([this] {
        tessit::Window& window = windowed->window;
        if (window.isFull()) window.moveFrom(0);
        return window.read();
    });
}

// Reads as far as the first bytes tell the encoding. What is longer than a limit, whatever its encoding, is refused by
// who reads on.
void QeXmlReader::Engine::readFirstBytes() {
    constexpr std::uint64_t MostPerByte = 4;
    const tessit::Window& window = windowed->window;
    const std::uint64_t mostOfNode = std::min(input.limits().node, QeXmlLimits::None / MostPerByte) * MostPerByte;
    const std::uint64_t most = std::max<std::uint64_t>(std::min(input.limits().document, mostOfNode), WidestBegin);
    std::size_t seen = 0;
    while (window.text().size() <= most && !tellsEncoding(window.text(), seen)) {
        seen = window.text().size();
        if (!readFirst()) return;
    }
}

void QeXmlReader::Engine::openConformingWindow() {
    tessit::Window& window = windowed->window;
    tessit::DecodedText& document = conforming->document;
    readFirstBytes();
    conforming->firstBytes.assign(window.text());
    document.source.name = conforming->options.sourceName;
    decodeText(document, conforming->firstBytes, conforming->options.encoding);
    reader.encoding = document.encoding;
    if (conforming->options.namespaces) tessit::ConformingTags::bindXml(bindings);
    const tessit::Rule fault = document.source.endsBy;
    const std::uint64_t bytesRead = window.bytesRead();
    if (fault == tessit::Rule::UnknownEncoding || fault == tessit::Rule::EncodingMismatch) {
        input.setLength(bytesRead);
        windowed.reset();  // nothing behind that is read
        input.enter(document.source, document.source.begin());
    } else {
        window.convertFrom(document.source.markLength, document);
        showWindow(window.text().data());
        findFrom(NodeFinder::Where::Begin);
    }
    try {
        tessit::hold(bytesRead, input.limits().document, tessit::Limit::Document);
        ConformingNodes(*this).readProlog();
    } catch (...) {
        keepFault();
        raiseFault();
    }
}

// --- What is whole

// Has what is read begin in front of the place that says what can be read, which goes on as more comes.
void QeXmlReader::Engine::needInWindow(const char* const& upTo) {
    if (!readsWindow() || reader.cursor < upTo) return;
    if (windowed->isOnTrust) findAnew();
    while (reader.cursor >= upTo && fetchMore())
        ;
    windowed->isDoubted = false;
}

void QeXmlReader::Engine::needText() {
    if (windowed != nullptr) needInWindow(windowed->textsUpTo);
}

// Of a text that is read as a node, or together with others up to the next tag.
void QeXmlReader::Engine::needRestOfText(bool isNode) {
    const char* const& upTo = isNode ? wholeUpTo : windowed->textsUpTo;
    if (!readsWindow() || reader.cursor < upTo) return;
    const tessit::SetMeanwhile keeps(windowed->keepsLast);
    while (reader.cursor >= upTo && !isAtEndOfText(isNode) && fetchMore())
        ;
}

bool QeXmlReader::Engine::isAtEndOfText(bool isNode) const noexcept {
    if (isNode && isInNode()) return true;
    const std::string_view next(reader.cursor, static_cast<std::size_t>(input.limit() - reader.cursor));
    return next.size() > 1 && next[0] == '<' && next[1] != '!' && next[1] != '?';
}

// Whether what comes next is a node besides tags and text, and not whole.
bool QeXmlReader::Engine::isInNode() const noexcept {
    return windowed->finder.isInNodeAt(static_cast<std::size_t>(reader.cursor - windowed->window.text().data()));
}

// What is not whole is as long already as what there is of it, but for the first bytes of what may be the next node: so
// it is refused here only to bound the memory, and exactly once it is whole.
bool QeXmlReader::Engine::fetchMore() {
    constexpr std::uint64_t MostOfNext = 16;
    const auto length = static_cast<std::uint64_t>(input.limit() - reader.cursor);
    if (length - std::min(length, MostOfNext) > input.limits().node) refuseBegun();
    return fetch();
}

// A text was the last node already when it began.
void QeXmlReader::Engine::refuseBegun() {
    if (!windowed->keepsLast) lastNode = {reader.cursor, conforming == nullptr ? nullptr : &input.source()};
    throw tessit::Exceeded{tessit::Limit::Node};
}

// White space in front of what comes next goes: there may be any number of it. Nodes that are left standing may be of
// any length, too.
void QeXmlReader::Engine::needOutside(bool leavesNodes) {
    if (!readsWindow()) return;
    if (conforming != nullptr && conforming->phase == Conforming::InEpilog && !windowed->isInEpilog) {
        windowed->isInEpilog = true;
        findFrom(NodeFinder::Where::Outside);
    }
    for (;;) {
        const char* const end = input.limit();
        while (reader.cursor != end && tessit::isSpace(*reader.cursor) && !isHalfALineEnd())
            ++reader.cursor;
        if (reader.cursor < windowed->textsUpTo || (leavesNodes && isInNode()) || !fetchMore()) return;
    }
}

// A carriage return is counted together with the line feed that may come.
bool QeXmlReader::Engine::isHalfALineEnd() const noexcept {
    return *reader.cursor == '\r' && reader.cursor + 1 == input.limit() && !windowed->window.hasEnded();
}

// Whether the place that is read is in the window, and not in what an entity brought.
bool QeXmlReader::Engine::readsWindow() const noexcept {
    return windowed != nullptr && (conforming == nullptr || conforming->entities.empty());
}

void QeXmlReader::Engine::findFrom(tessit::NodeFinder::Where where) {
    const std::string_view text = windowed->window.text();
    const auto place = static_cast<std::size_t>(reader.cursor - text.data());
    windowed->finder.begin(place, where, reader.expandAttributeReference);
    findInWindow();
}

// Until it was looked for: where the window's text is about to be elsewhere, and what does that may fail.
void QeXmlReader::Engine::nothingIsWhole() noexcept {
    wholeUpTo = windowed->textsUpTo = nullptr;
}

// At the end of the document, everything is there.
void QeXmlReader::Engine::findInWindow() {
    const std::string_view text = windowed->window.text();
    const bool isAll = windowed->window.hasEnded();
    windowed->isOnTrust = false;
    input.expectMore(false);
    if (!isAll) windowed->finder.look(text);
    const auto placeOf = [&](std::size_t offset) {
        return text.data() + (isAll ? text.size() : std::min(offset, text.size()));
    };
    wholeUpTo = placeOf(windowed->finder.nodesUpTo());
    windowed->textsUpTo = placeOf(windowed->finder.textsUpTo());
}

// From the cursor, unless the window has what the reader was not shown, as where reading failed.
void QeXmlReader::Engine::findAnew() noexcept {
    if (windowed->fault != nullptr) return nothingIsWhole();
    findFrom(NodeFinder::Where::Content);
}

// --- Reading on trust

// To look for the ends of nodes takes as long as to read most texts. Where much of a lenient reader's document is
// there, only the last part is looked at, and what begins in front of that is read as if it were whole. What is not
// throws `Cut`, and is read again once it is found to be whole; few nodes are long enough for that. Each is tried once,
// so that one that comes in small pieces costs no more than twice as much.
bool QeXmlReader::Engine::mayTrust() const noexcept {
    constexpr std::ptrdiff_t Much = 4096;
    return windowed->isInRoot && !windowed->isDoubted && input.limit() - reader.cursor >= Much;
}

void QeXmlReader::Engine::readOnTrust() noexcept {
    constexpr std::ptrdiff_t Share = 32;
    windowed->isOnTrust = true;
    input.expectMore(true);
    wholeUpTo = windowed->textsUpTo = input.limit() - (input.limit() - reader.cursor) / Share;
}

// To where the node begins that was cut, which has taken back what it did to the scopes and to the depth. What it has
// written of itself, it writes again; should that never come, no node is the last one.
void QeXmlReader::Engine::goBack() noexcept {
    reader.cursor = lastNode.begin;
    windowed->isDoubted = true;
    findAnew();
}

// Whether what was found was looked for with values that end as they do for the reader now: those that hold references
// may hold what would be tags.
bool QeXmlReader::Engine::expandsAsFound() const noexcept {
    return conforming != nullptr || !windowed->isInRoot ||
           windowed->finder.expands() == reader.expandAttributeReference;
}

// On trust, a program can have it otherwise for each tag, however much is there.
void QeXmlReader::Engine::noteExpansion() noexcept {
    if (windowed == nullptr || expandsAsFound()) return;
    mayTrust() && windowed->fault == nullptr ? readOnTrust() : findAnew();
}

// --- The window moves

// A callback that had more read, or read another document, would lose the room that it is filling, or what the call
// that waits for it has at hand.
void QeXmlReader::Engine::refuseWhileReading() const {
    if (windowed == nullptr || !windowed->isReading) return;
    throw QeXmlInputError("the input", std::make_error_code(std::errc::resource_deadlock_would_occur),
                          "it uses the reader that reads it");
}

// What goes wrong is thrown again by each later call.
template <typename Read>
bool QeXmlReader::Engine::readOrKeepFault(const Read& read) {
    refuseWhileReading();
    if (windowed->fault != nullptr) std::rethrow_exception(windowed->fault);
    try {
        const tessit::SetMeanwhile reads(windowed->isReading);
        return read();
    } catch (...) {
        windowed->fault = std::current_exception();
        throw;
    }
}

// Gets more of the document; false at its end.
bool QeXmlReader::Engine::fetch() {
    if (windowed->fault == nullptr && windowed->window.hasEnded()) return false;
    const std::uint64_t before = windowed->window.bytesRead();
    const bool isMore = readOrKeepFault([this] {
        if (windowed->window.isFull()) moveWindow();
        const bool isText = windowed->window.read();
        checkConversions();
        tessit::hold(windowed->window.bytesRead(), input.limits().document, tessit::Limit::Document);
        return isText;
    });
    showWindow(reader.cursor);
    if (conforming != nullptr) conforming->declared.addBytes(windowed->window.bytesRead() - before);
    if (mayTrust())
        readOnTrust();
    else
        windowed->isOnTrust ? findAnew() : findInWindow();
    return isMore;
}

// Has the reader see what the window has, with its cursor there.
void QeXmlReader::Engine::showWindow(const char* place) {
    const std::string_view text = windowed->window.text();
    windowed->openTags.standsAt(text.data());
    if (conforming == nullptr) return input.takeWindow(text, static_cast<std::size_t>(place - text.data()));
    tessit::Source& source = conforming->document.source;
    source.text = text;
    if (source.isCounted) source.places->goOnTo(source.end());
    input.enter(source, place);
}

// What is looked at ahead and may be returned as it is written stays, too. Nothing counts as whole until it was looked
// for where it stands then, should moving or what follows fail.
void QeXmlReader::Engine::moveWindow() {
    nothingIsWhole();
    keepPlaceOfLast();
    const bool areItsParts = conforming != nullptr && conforming->parts.node == lastNode.begin;
    const bool keepsPending = conforming != nullptr && rawCopy == nullptr && pendingStart != nullptr &&
                              (reader.nodePending || windowed->isLookedAhead);
    const char* keptFrom = keepsPending ? pendingStart : reader.cursor;
    if (windowed->keepsLast && lastNode.begin != nullptr) keptFrom = std::min(keptFrom, placeInDocument(lastNode));
    const auto cursorBehind = reader.cursor - keptFrom;
    const auto dropped = static_cast<std::size_t>(keptFrom - windowed->window.text().data());
    if (rawCopy != nullptr) rawCopy->keepRun();
    slots.forgetDocument();
    if (conforming != nullptr) conforming->tags.keepNames();
    keepOpenTags(keptFrom);
    const QeXmlPosition beginning = input.leaveBehind(keptFrom);
    windowed->window.moveFrom(dropped);
    windowed->finder.drop(dropped);
    const char* const begin = windowed->window.text().data();
    const auto move = [=](const char*& place) {
        place = place == nullptr || place < keptFrom ? nullptr : begin + (place - keptFrom);
    };
    windowed->openTags.drop(dropped);
    move(pendingStart);
    const char*& ofNode = placeInDocument(lastNode);
    const char*& ofTag = placeInDocument(lastTag);
    move(ofNode);
    if (&ofTag != &ofNode) move(ofTag);
    for (Written* const written : {&lastNode, &lastTag})
        if (placeInDocument(*written) == nullptr) *written = {};
    if (areItsParts) {
        move(conforming->parts.begin);
        conforming->parts.node = lastNode.begin;
    } else if (conforming != nullptr) {
        conforming->parts = {};
    }
    foundOut.reset();
    if (windowed->hasMoved || dropped != 0) leaveBeginning();
    showWindow(begin + cursorBehind);
    input.goOnIn(windowed->window.text(), beginning);
    if (rawCopy != nullptr) rawCopy->goOn();
}

void QeXmlReader::Engine::keepPlaceOfLast() {
    if (!windowed->keepsPlace)
        windowed->leftNode.reset();
    else if (lastNode.begin != nullptr)
        windowed->leftNode = {spanOfLastNode(), offsetOfLastNode()};
}

// The elements that the document's own text has opened.
std::size_t QeXmlReader::Engine::levelsInDocument() const noexcept {
    const bool isInEntity = conforming != nullptr && !conforming->entities.empty();
    const std::ptrdiff_t levels = isInEntity ? conforming->entities.front().depth : reader.depth;
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(levels, 0));
}

void QeXmlReader::Engine::keepOpenTags(const char* keptFrom) {
    windowed->openTags.leave(levelsInDocument(), keptFrom, [this](const char* tag) {
        const char* const found = tessit::endOfMarkup(tag, input.limit(), reader.expandAttributeReference);
        const QeXmlPosition begin = input.positionOnTheWay(tag);
        return QeXmlOpenElement{QeCString(tessit::nameInTag(tag)),
                                {begin, input.positionOnTheWay(found == nullptr ? tag : found)}};
    });
}

// Where it stands there, or the reference that brought it.
const char*& QeXmlReader::Engine::placeInDocument(Written& written) const noexcept {
    const tessit::Source* source = written.source;
    if (source == nullptr || source->parent == nullptr) return written.begin;
    while (source->parent->parent != nullptr)
        source = source->parent;
    return source->reference;
}

bool QeXmlReader::Engine::hasBeginning() const noexcept {
    return windowed == nullptr || !windowed->hasMoved;
}

// Where things stand that are not near is known no more.
void QeXmlReader::Engine::leaveBeginning() noexcept {
    windowed->hasMoved = true;
    if (conforming == nullptr) return;
    if (conforming->documentTypeBegin != nullptr) conforming->declared.forgetPlaces();
    conforming->documentTypeBegin = conforming->documentTypeEnd = nullptr;
}

// Asked by a program that may still ask about the last node: of it, or of its place alone, `keeps` has it kept. What
// goes wrong is for the next reading call.
bool QeXmlReader::Engine::fetchQuietly(bool& keeps) noexcept {
    const tessit::SetMeanwhile keepsMeanwhile(keeps);
    try {
        return fetch();
    } catch (...) {
        return false;
    }
}

// --- Encodings

void QeXmlReader::Engine::checkConversions() {
    const tessit::Window& window = windowed->window;
    if (window.bytesConverted() > tessit::Input::mostConverted(window.bytesRead())) input.raiseTooManyConversions();
}

// Entered behind the encoding's name, in the declaration.
void QeXmlReader::Engine::declareEncodingInWindow(const QeCString& name) {
    if (windowed->isInRoot) input.raise("An encoding is declared inside the root element");
    if (!input.takeDeclaration(name)) return;
    std::optional<voxal::PieceConverter> converter = input.openPieces(name);
    if (!converter) return;
    convertWindow(std::move(*converter), name);
    findFrom(NodeFinder::Where::Declaration);
    needOutside();
}

void QeXmlReader::Engine::convertWindow(voxal::PieceConverter&& converter, const QeCString& name) {
    tessit::Window& window = windowed->window;
    const tessit::InputUnits units = input.unitsOf(name, converter);
    nothingIsWhole();
    const auto place = static_cast<std::size_t>(reader.cursor - window.text().data());
    slots.forgetDocument();
    const QeXmlPosition beginning = input.positionOf(reader.cursor);
    window.convertFrom(place, std::move(converter));
    windowed->openTags.standsAt(window.text().data());
    foundOut.reset();
    lastNode = lastTag = {};
    windowed->leftNode.reset();
    input.goOnConverted(window.text(), units, beginning);
    checkConversions();
}
