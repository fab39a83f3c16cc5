#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tessit/errors/error_access.h>
#include <tessit/reader/conforming_tags.h>
#include <tessit/reader/element_path.h>
#include <tessit/reader/xml_record.h>
#include <tessit/rules/decoded_text.h>

namespace tessit {

/// Holds a document against the conforming rules from its begin to its end, and records each place that breaks one
/// instead of ending there. What comes behind such a place is read as a lenient reader does, as far as that goes: an
/// end tag closes the innermost element, a value goes to its quote, a comment to its "-->".
///
/// Finds and builds no nodes: it is to cost less than reading. What is rare is refused by those who refuse it in
/// conforming readers, so that rules, words and places are the same. Knows nothing of the reader.
class Judge {
public:
    Judge(QeXmlRecord& given, const QeCString& name, bool namespaces);

    /// Records all there is. The bytes stay as they are as long as anything is asked. O(bytes), plus sorting the
    /// attributes of each tag.
    void judge(std::string_view bytes);

    /// The place of a lenient reader's error, as it is counted here.
    QeXmlPosition positionOf(const QeXmlParseError& error) const;

    /// Whether the text that was judged is no longer the bytes'.
    bool ownsText() const noexcept { return !patched.empty() || !document.converted.empty(); }

    QeXmlRecord& getRecord() const noexcept { return record; }

    /// One with the same settings, which has seen nothing.
    std::unique_ptr<Judge> forAnotherDocument() const {
        return std::make_unique<Judge>(record, source.name, tags.readsNamespaces());
    }

private:
    // The names of a tag in which nothing was wrong, and by which bindings.
    struct Shape {
        std::vector<std::string_view> names;  // of the element, then of the attributes
        std::uint64_t version = 0;
    };

    static constexpr std::size_t Shapes = 32, MostRemembered = 64;

    void begin(std::string_view bytes);
    void judgeCharacters(std::string_view bytes);
    void judgeDeclaration();
    void judgeNext();
    void judgeText();
    void judgeTextOutside();
    void judgeReference(const char* place);
    void judgeReferences(const char* from, const char* to);

    void judgeStartTag();
    RawName passName();
    RawName passOtherName();
    RawName checked(RawName name);
    bool passAttributes();
    void passAttribute();
    std::string_view passValue(char quote);
    void declare(const RawName& name, std::string_view value);
    std::string_view meaningOf(std::string_view value);
    void judgeNames(const RawName& element, const char* tagEnd);
    void judgeOtherNames(const RawName& element, const char* tagEnd);
    void judgeRoot(const char* tag);
    Shape& shapeAt(const char* name) noexcept;
    bool passKnownTag();
    const char* passText(const char* from, std::string_view text) const noexcept;
    const char* passKnownAttribute(const char* from, std::string_view name) const noexcept;
    const char* behindSpace(const char* from) const noexcept;
    void remember(const RawName& element);
    void judgeDuplicates(const char* tagEnd);
    void judgeEndTag();
    void judgeOtherEndTag(std::string_view opened);

    void judgeInstruction();
    void judgeDeclarationMarkup();
    void judgeComment();
    void judgeSection();
    void judgeDocumentType();
    const char* strictEndOfDocumentType() const;

    template <typename Read>
    bool attempt(const Read& read);
    void add(const QeXmlParseError& error);
    void note(Rule rule, const char* place, std::string_view found = {});
    void noteEnd();
    void goBehind(std::string_view text, const char* from);
    void passSpace() noexcept;
    void remark(std::string_view name, const char* place, const char* message);
    void stopJudging(const char* place);
    void completeEntries();
    void complete(ErrorAccess::Details& details, const char* place, const ElementPath& path, const char* hint) const;
    bool beginsWith(std::string_view text);
    std::uint64_t markInText() const noexcept { return source.markLength == 0 ? 0 : 3; }  // in front of the text
    bool isInside() const noexcept { return !openElements.empty(); }

    QeXmlRecord& record;
    DecodedText document;
    std::string patched;          // the text, where there are bytes in it that are no characters
    std::string_view original;    // with these bytes
    std::size_t soundLength = 0;  // of the text in front of the first of them
    const Source& source;
    const char* at = nullptr;
    const char* end = nullptr;
    bool isOver = false;         // nothing more is judged
    const char* root = nullptr;  // its '<'
    bool hasDocumentType = false;

    QeXmlNamespaceStack stack;
    Bindings bindings;
    Declared declared;
    ConformingTags tags;
    RawAttributes attributes;
    std::vector<RawAttribute*> ordered;  // working storage
    QeCString meaning;
    Shape shapes[Shapes];
    std::vector<std::string_view> openElements;  // as their names are written
};

}  // namespace tessit
