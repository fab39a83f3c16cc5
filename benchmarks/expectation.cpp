#include <corpus/encode.h>
#include <expectation.h>
#include <tokenizer.h>

#include <tessit/reader/xml_reader.h>

namespace tessit::benchmarks {

namespace {

constexpr std::string_view XmlUri = "http://www.w3.org/XML/1998/namespace";

// Fills an account with strings of one form; puts the pieces of each text together first.
template <typename Char>
class Bookkeeper {
public:
    using View = std::basic_string_view<Char>;

    explicit Bookkeeper(Account& target) : account(target) {}

    void element(View name, View uri = {}) {
        endText();
        account.all.element(name);
        account.all.addUri(uri);
    }

    void attribute(View name, View value, View uri = {}) {
        account.all.attribute(name, value);
        account.all.addUri(uri);
    }

    void text(View piece) { run += piece; }
    void elementEnd() { endText(); }

private:
    void endText() {
        account.all.text(View(run));
        account.all.elementEnd();
        if (!run.empty() && isBlank()) account.blankTexts.add(View(run));
        run.clear();
    }

    bool isBlank() const {
        for (const Char unit : run)
            if (unit != ' ' && unit != '\n' && unit != '\r' && unit != '\t') return false;
        return true;
    }

    Account& account;
    std::basic_string<Char> run;
};

// Counts in both forms what our reader delivers.
class DeliveredCount {
public:
    explicit DeliveredCount(Expectation& target) : bytes(target.utf8), units(target.utf16), xmlUris(target.xmlUris) {}

    void run(std::string_view document) {
        QeXmlReader reader({reinterpret_cast<const unsigned char*>(document.data()), document.size()});
        while (!reader.eof()) {
            reader.readNextNode();
            take(reader);
        }
    }

private:
    void take(const QeXmlReader& reader) {
        switch (reader.getLastNodeType()) {
            case QeXmlReader::EmptyElement:
            case QeXmlReader::ElementStart:
                return takeStart(reader);
            case QeXmlReader::Content:
                bytes.text(reader.getLastContent());
                return units.text(toUtf16(reader.getLastContent()));
            case QeXmlReader::ElementEnd:
            default:
                bytes.elementEnd();
                return units.elementEnd();
        }
    }

    void takeStart(const QeXmlReader& reader) {
        const QeCString name = reader.getLastName().getQualifiedName();
        const QeCString& uri = reader.getLastName().getNamespace().getURI();
        bytes.element(name, uri);
        units.element(toUtf16(name), toUtf16(uri));
        for (const QeXmlAttribute& attribute : reader.getLastAttributes())
            takeAttribute(attribute);
    }

    void takeAttribute(const QeXmlAttribute& attribute) {
        const QeCString name = attribute.getName().getQualifiedName();
        const QeXmlNamespace& ns = attribute.getName().getNamespace();
        bytes.attribute(name, attribute.getValue(), ns.getURI());
        units.attribute(toUtf16(name), toUtf16(attribute.getValue()), toUtf16(ns.getURI()));
        if (ns.getPrefix() == "xml" && ns.getURI().empty()) xmlUris.add(XmlUri);
    }

    Bookkeeper<char> bytes;
    Bookkeeper<char16_t> units;
    StringSum& xmlUris;
};

void countAsWritten(std::string_view document, Account& account) {
    Bookkeeper<char> written(account);
    Tokenizer(document, written).run();
}

}  // namespace

Expectation::Expectation(const Corpus& corpus) {
    for (const std::string& document : corpus.documents) {
        DeliveredCount(*this).run(document);
        if (corpus.otherEncoding) continue;  // who delivers what is written reads no other encoding
        countAsWritten(document, asWritten);
        if (document.find('\r') != std::string::npos) carriageReturns = true;
    }
}

Tally Expectation::of(const Reader& reader) const {
    const Delivery& delivery = reader.delivery;
    const bool takesAsWritten = !delivery.references || (!delivery.lineEnds && carriageReturns);
    const Account& account = takesAsWritten ? asWritten : delivery.utf16 ? utf16 : utf8;
    Tally expected = account.all;
    if (!delivery.blankTexts) expected.texts -= account.blankTexts;
    if (!delivery.namespaces)
        expected.uris = {};
    else if (delivery.xmlPrefix)
        expected.uris += xmlUris;
    return expected;
}

bool reads(const Reader& reader, const Corpus& corpus) {
    if (!reader.onlyShape.empty() && reader.onlyShape != corpus.shape) return false;
    if (corpus.otherEncoding && !reader.delivery.otherEncodings) return false;
    return corpus.depth <= reader.delivery.deepest && corpus.documents.size() <= reader.delivery.mostDocuments;
}

namespace {

void describe(std::string& out, const char* what, std::uint64_t found, std::uint64_t expected) {
    if (found == expected) return;
    if (!out.empty()) out += ", ";
    out += std::string(what) + ": found " + std::to_string(found) + ", expected " + std::to_string(expected);
}

void describe(std::string& out, const std::string& what, const StringSum& found, const StringSum& expected) {
    describe(out, what.c_str(), found.count, expected.count);
    describe(out, ("length of " + what).c_str(), found.units, expected.units);
    describe(out, ("ends of " + what).c_str(), found.ends, expected.ends);
}

}  // namespace

std::string difference(const Tally& found, const Tally& expected) {
    std::string out;
    describe(out, "elements", found.elements, expected.elements);
    describe(out, "names", found.names, expected.names);
    describe(out, "values", found.values, expected.values);
    describe(out, "texts", found.texts, expected.texts);
    describe(out, "URIs", found.uris, expected.uris);
    return out;
}

}  // namespace tessit::benchmarks
