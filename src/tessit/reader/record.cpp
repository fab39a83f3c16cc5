// The record of what a lenient reader forgives: when the document is judged, and what is added of what it refuses.

#include <utility>

#include <tessit/errors/error_access.h>
#include <tessit/reader/byte_source.h>
#include <tessit/reader/engine.h>
#include <tessit/reader/judge.h>

void QeXmlReader::Engine::openRecord(std::string_view document) {
    judge()->getRecord().clear();
    besides->judge = judge()->forAnotherDocument();
    const bool isTooMuch = document.size() > input.limits().document;  // then nothing is looked at
    if (!isTooMuch) judge()->judge(document);
}

// A document is judged as a whole.
void QeXmlReader::Engine::readWhole(tessit::ByteSource& source) {
    judge()->getRecord().clear();  // whatever becomes of this
    char piece[4096];
    while (const std::size_t count = source.read(piece)) {
        reader.ownedDocument.append(piece, count);
        if (reader.ownedDocument.length() > input.limits().document) break;  // and is refused
    }
}

// After a conversion, the bytes that were judged may be gone.
void QeXmlReader::Engine::noteUnread(const QeXmlParseError& error) {
    const bool isAsJudged = input.conversions() == 0 || judge()->ownsText();
    const QeXmlPosition position = isAsJudged ? judge()->positionOf(error) : error.getPosition();
    tessit::ErrorAccess::Details details = tessit::ErrorAccess::detailsOf(error);
    details.position = position;
    details.rule = "not-read";
    judge()->getRecord().add(
        tessit::ErrorAccess::make(error.why(), {error.getSourceFile(), position}, std::move(details)));
}
