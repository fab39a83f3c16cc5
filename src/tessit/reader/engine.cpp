#include <optional>
#include <utility>

#include <tessit/reader/engine.h>
#include <tessit/reader/raw_copy.h>

QeXmlReader::Engine::Engine(QeXmlReader& owner)
    : reader(owner),
      input({owner.cursor, owner.bufferStart, owner.bufferEnd, owner.ownedDocument, owner.encoding}),
      bindings(owner.namespaceStack),
      slots(owner.lastName, owner.lastAttributes, owner.bufferEnd, bindings) {}

// Whatever points into the old bytes lets go of them before they go.
void QeXmlReader::Engine::declareEncoding(const QeCString& name) {
    reader.encodingDeclared = true;
    std::optional<QeCString> converted = input.declareEncoding(name);
    if (!converted) return;
    if (rawCopy != nullptr) rawCopy->keepRun();
    slots.forgetDocument();
    input.replaceRest(std::move(*converted));
    if (rawCopy != nullptr) rawCopy->goOn();
}
