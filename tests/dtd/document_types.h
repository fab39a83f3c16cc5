#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include <tessit/dtd/declarations.h>
#include <tessit/errors/xml_error.h>

/// Document types for tests, with the files that they name.
namespace tessit::test {

/// What stands outside of the document, by system identifier.
struct Files : QeXmlResolver {
    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override {
        asked +=
            std::string(id.getPublicId()) + "|" + std::string(id.getSystemId()) + "|" + std::string(id.getBase()) + " ";
        const auto file = files.find(std::string(id.getSystemId()));
        if (file == files.end()) return false;
        entity.setBytes(QeCString(file->second));
        return true;
    }
    std::map<std::string, std::string> files;
    std::string asked;
};

/// A document, of which the document type is read: what stands between "<!DOCTYPE" and '>'.
class Document {
public:
    explicit Document(std::string_view type, DeclarationSettings declarationSettings = {}, bool standalone = false)
        : text(std::string(type) + '>'), settings(declarationSettings), declarations(settings) {
        source.text = text;
        source.name = "doc";
        declarations.beginDocument(text.size(), standalone);
        StrictScanner scanner(source, source.begin());
        declarations.readDocumentType(scanner, type_);
        EXPECT_TRUE(scanner.atEnd());
    }

    /// What a value is, references that were left alone in braces. Or, for "<a>", the attributes that are declared for
    /// such elements, with their defaults; a ~ in front of tokenized ones.
    std::string say(std::string_view asked) {
        if (asked.starts_with('<')) return attributesOf(asked.substr(1, asked.size() - 2));
        where.isCounted = false;
        where.text = asked;
        where.name = "value";
        QeCString value;
        std::vector<LeftReference> left;
        declarations.appendValue(value, where, asked, &left);
        return withBraces(value, left);
    }

    Declarations& get() { return declarations; }
    const QeXmlDocumentType& type() const { return type_; }

private:
    std::string attributesOf(std::string_view name) const {
        const AttributeList* const list = declarations.attributesOf(name);
        if (list == nullptr) return "none";
        std::string found;
        for (const DeclaredAttribute& attribute : *list) {
            EXPECT_EQ(list->find(attribute.name), &attribute);
            found += std::string(found.empty() ? "" : " ") + (attribute.isTokenized ? "~" : "") + attribute.name.data();
            if (const auto& given = attribute.byDefault) found += "=" + withBraces(given->value, given->left);
        }
        return found;
    }

    static std::string withBraces(const QeCString& value, const std::vector<LeftReference>& left) {
        std::string text(value);
        for (auto reference = left.rbegin(); reference != left.rend(); ++reference)
            text.insert(reference->offset + reference->length, 1, '}').insert(reference->offset, 1, '{');
        return text;
    }

    const std::string text;
    const DeclarationSettings settings;
    Declarations declarations;
    Source source, where;
    QeXmlDocumentType type_;
};

}  // namespace tessit::test
