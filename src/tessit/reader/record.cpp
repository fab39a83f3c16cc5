// The record of what a lenient reader forgives: when the document is judged, and what is added of what it refuses.

#include <utility>

#include <tessit/errors/error_access.h>
#include <tessit/reader/byte_source.h>
#include <tessit/reader/engine.h>
#include <tessit/reader/judge.h>

void QeXmlReader::Engine::openRecord(std::string_view document) {
    if (judge() == nullptr) return;
    besides->judge = judge()->forAnotherDocument();
    judge()->getRecord().clear();
    const bool isTooMuch = document.size() > input.limits().document;  // then nothing is looked at
    if (!isTooMuch) judge()->judge(document);
}

// A document is judged as a whole.
void QeXmlReader::Engine::readWhole(tessit::ByteSource& source) {
    char piece[4096];
    while (const std::size_t count = source.read(piece)) {
        reader.ownedDocument.append(piece, count);
        if (reader.ownedDocument.length() > input.limits().document) break;  // and is refused
    }
}

// What was converted has places of its own, and the bytes that were judged may be gone.
void QeXmlReader::Engine::noteUnread(const QeXmlParseError& error) {
    tessit::ErrorAccess::Details details = tessit::ErrorAccess::detailsOf(error);
    details.rule = "not-read";
    if (input.conversions() == 0) details.position = judge()->positionOf(error);
    QeXmlParseError entry(error);
    tessit::ErrorAccess::setDetails(entry, std::move(details));
    judge()->getRecord().add(entry);
}
