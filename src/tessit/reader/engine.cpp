// What is done with the parts of a reader as a whole: they are made, told the options, and follow a change of encoding.

#include <optional>
#include <utility>

#include <tessit/reader/conforming.h>
#include <tessit/reader/judge.h>
#include <tessit/reader/passed_options.h>
#include <tessit/reader/raw_copy.h>
#include <tessit/reader/windowed.h>

// A conforming reader's own end of the bytes is set when the document is complete; until then `eof` is false.
QeXmlReader::Engine::Engine(QeXmlReader& owner, const QeXmlReaderOptions* options)
    : reader(owner),
      conforming(options == nullptr || options->rules == QeXmlRules::Lenient ? nullptr
                                                                             : std::make_unique<Conforming>(*options)),
      input({owner.cursor, owner.bufferStart, conforming == nullptr ? owner.bufferEnd : conforming->end,
             owner.ownedDocument, owner.encoding},
            *this),
      bindings(owner.namespaceStack),
      slots(owner.lastName, owner.lastAttributes, input.limit(), bindings) {
#if defined(__GLIBC__)
    static_assert(sizeof(Engine) <= 1032);  // blocks up to there are at hand again once they were freed
#endif
    reader.readsApart = conforming != nullptr;
    if (options == nullptr) return;
    input.setSourceName(options->sourceName);
    setLimits(options->limits);
    if (options->record == nullptr || conforming != nullptr) return;
    makeBesides().judge = std::make_unique<tessit::Judge>(*options->record, options->sourceName, options->namespaces);
    reader.readsApart = true;
}

QeXmlReader::Engine::~Engine() = default;

QeXmlReader::Engine::Besides& QeXmlReader::Engine::makeBesides() {
    if (besides == nullptr) besides = std::make_unique<Besides>();
    return *besides;
}

std::unique_ptr<QeXmlReader::Engine> QeXmlReader::Engine::make(QeXmlReader& owner, const Passed& passed) {
    if (tessit::hasAll(passed)) return std::make_unique<Engine>(owner, &passed.fields);
    const QeXmlReaderOptions options = tessit::withDefaults(passed);
    return std::make_unique<Engine>(owner, &options);
}

void QeXmlReader::Engine::reset() {
    if (conforming != nullptr) conforming->begin();
    bindings.clear();
    slots.forgetDocument();
    slots.forgetSlots();
    openElements.clear();
    lastNode = lastTag = {};
    pendingStart = wholeUpTo = nullptr;
    foundOut.reset();
    if (besides != nullptr) besides->whole.reset();
    input.begin();
}

// To be called where an exception was caught: it comes again with each call that reads on. A lenient reader that has
// all of its document goes on as after any error.
void QeXmlReader::Engine::keepFaultOfReset() noexcept {
    if (windowed != nullptr) windowed->fault = std::current_exception();
    if (conforming == nullptr || conforming->fault != nullptr) return;
    conforming->fault = std::current_exception();
    input.enter(conforming->document.source, conforming->document.source.begin());
}

// Whatever points into the old bytes lets go of them before they go.
void QeXmlReader::Engine::declareEncoding(const QeCString& name) {
    reader.encodingDeclared = true;
    if (windowed != nullptr) return declareEncodingInWindow(name);
    std::optional<tessit::Input::Converted> converted = input.declareEncoding(name);
    if (!converted) return;
    if (rawCopy != nullptr) rawCopy->keepRun();
    slots.forgetDocument();
    lastNode = lastTag = {};
    foundOut.reset();
    input.replaceRest(std::move(*converted));
    wholeUpTo = input.limit();
    if (rawCopy != nullptr) rawCopy->goOn();
}
