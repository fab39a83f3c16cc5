#pragma once

#include <cstdint>
#include <optional>

#include <tessit/dtd/declarations.h>

namespace tessit {

/// What a document declares, made when it is first needed: most documents declare nothing
/// and refer to nothing, and small ones are not to pay for that.
class Declared {
public:
    explicit Declared(const DeclarationSettings& declarationSettings) noexcept : settings(declarationSettings) {}

    /// What is known when the XML declaration was read.
    void beginDocument(std::uint64_t documentBytes, bool standalone) noexcept {
        bytes = documentBytes;
        isStandalone = standalone;
    }

    /// Forgets the document.
    void reset() noexcept {
        declarations.reset();
        beginDocument(0, false);
    }

    /// More of the document was read.
    void addBytes(std::uint64_t count) {
        bytes += count;
        if (declarations.has_value()) declarations->addDocumentBytes(count);
    }

    /// For what is read anew, and is to count once.
    std::uint64_t countedSoFar() const noexcept { return declarations.has_value() ? declarations->countedSoFar() : 0; }
    void countAgainFrom(std::uint64_t count) noexcept {
        if (declarations.has_value()) declarations->countAgainFrom(count);
    }

    /// For when the document's bytes are about to go.
    void forgetPlaces() noexcept {
        if (declarations.has_value()) declarations->forgetPlaces();
    }

    Declarations& get() {
        if (!declarations.has_value()) {
            declarations.emplace(settings);
            declarations->beginDocument(bytes, isStandalone);
        }
        return *declarations;
    }

    /// Whether attributes are declared for any element.
    bool hasAttributes() const noexcept { return declarations.has_value() && declarations->declaresAttributes(); }

private:
    DeclarationSettings settings;
    std::optional<Declarations> declarations;
    std::uint64_t bytes = 0;
    bool isStandalone = false;
};

}  // namespace tessit
