#pragma once

#include <exception>
#include <span>
#include <string_view>
#include <vector>

#include <tessit/dtd/declarations.h>
#include <tessit/reader/conforming_tags.h>
#include <tessit/reader/engine.h>
#include <tessit/rules/decoded_text.h>

namespace tessit {

inline bool hasNode(QeXmlNodes nodes, QeXmlNodes node) noexcept {
    return (static_cast<std::uint32_t>(nodes) & static_cast<std::uint32_t>(node)) != 0;
}

}  // namespace tessit

/// What a conforming reader has besides a lenient one: the options, what the document type
/// declares, and the entities that are being read. Knows nothing of tags.
struct QeXmlReader::Engine::Conforming {
    enum Phase { InProlog, InRoot, InEpilog };

    // An entity whose replacement text is being read, and where the reading goes on behind it.
    struct OpenEntity {
        tessit::Entity* entity;
        const char* resume;
        std::ptrdiff_t depth;  // of the elements that are open around it
    };

    explicit Conforming(const QeXmlReaderOptions& given);

    /// Forgets the document.
    void begin();

    bool delivers(QeXmlNodes node) const noexcept { return tessit::hasNode(options.nodes, node); }

    // Whether there are instructions among the declarations that were not delivered yet. None are kept that nobody
    // asked for.
    bool hasInstructions() {
        return phase == InProlog && documentTypeWasRead && nextInstruction < declared.get().instructions().size();
    }

    QeXmlReaderOptions options;
    tessit::DecodedText document;
    QeCString firstBytes;  // that told the encoding of a document that comes piece by piece
    tessit::Declared declared;
    tessit::ConformingTags tags;
    QeXmlDocumentType documentType;
    // Of the node that is read, what stands in the texts that were entered or left meanwhile; kept where there are
    // limits.
    struct Parts {
        const char* node = nullptr;
        const char* begin = nullptr;  // of the part in the text that is read now
        std::uint64_t bytes = 0;      // of those in front of that
    };

    Parts parts;
    const char* documentTypeBegin = nullptr;
    const char* documentTypeEnd = nullptr;  // once it was read
    bool documentTypeWasRead = false;
    std::size_t nextInstruction = 0;  // of those that stand among the declarations
    Phase phase = InProlog;
    std::vector<OpenEntity> entities;  // outermost first
    const char* end = nullptr;         // of what is being read; the reader's own is set once the document is complete
    QeCString target;
    std::exception_ptr fault;  // the first one: each reading call raises it again
};
