#include <corpus/shapes.h>
#include <corpus/vocabulary.h>

namespace tessit::benchmarks {

namespace {

constexpr char Declaration[] = "<?xml version=\"1.0\"?>\n";

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + '"';
}

// Appends parts to a document until it is large enough.
template <typename Part>
std::string document(std::size_t bytes, const std::string& rootStart, const std::string& rootEnd, Part appendPart) {
    std::string out = Declaration + rootStart;
    out.reserve(bytes + 65536);
    do
        appendPart(out);
    while (out.size() + rootEnd.size() < bytes);
    return out + rootEnd;
}

void appendField(std::string& out, const char* name, const std::string& text) {
    out.append("    <").append(name).append(">").append(text).append("</").append(name).append(">\n");
}

struct Person {
    std::string given, family, city;
};

void appendRecord(std::string& out, Random& random, const Person& person) {
    out += "  <record id=\"" + std::to_string(random.below(1000000)) + "\">\n";
    appendField(out, "name", person.given + ' ' + person.family);
    appendField(out, "city", person.city);
    appendField(out, "born", std::to_string(random.between(1920, 2005)));
    appendField(out, "balance", amount(random));
    out += "  </record>\n";
}

}  // namespace

std::string shortRecords(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    return document(bytes, "<records>\n", "</records>\n", [&](std::string& out) {
        appendRecord(out, random, {random.pick(GivenNames), random.pick(FamilyNames), random.pick(Cities)});
    });
}

std::string oneRecord(std::uint64_t seed) {
    constexpr std::size_t LessThanOne = 1;
    return shortRecords(LessThanOne, seed);
}

std::string accentedRecords(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    return document(bytes, "<records>\n", "</records>\n", [&](std::string& out) {
        appendRecord(out, random, {random.pick(AccentedNames), random.pick(FamilyNames), random.pick(AccentedCities)});
    });
}

std::string attributes(std::size_t bytes, std::uint64_t seed) {
    constexpr const char* Colours[] = {"red", "green", "blue", "ochre", "violet", "#c0ffee", "transparent"};
    Random random(seed);
    return document(bytes, "<catalogue>\n", "</catalogue>\n", [&](std::string& out) {
        out += "  <item" + attribute("id", std::to_string(random.below(1000000)));
        out += attribute("title", words(random, random.between(1, 4)));
        out += attribute("colour", random.pick(Colours));
        out += attribute("width", std::to_string(random.below(2000)));
        out += attribute("height", std::to_string(random.below(2000)));
        out += attribute("price", amount(random)) + "/>\n";
    });
}

std::string prose(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    return document(bytes, "<book>\n", "</book>\n", [&](std::string& out) {
        out += "<p>";
        appendWords(out, random, random.between(80, 400));
        if (random.percent(30)) out += " <em>" + words(random, 3) + "</em> " + words(random, random.between(20, 80));
        out += ".</p>\n";
    });
}

namespace {

constexpr const char* Prefixes[] = {"doc", "meta", "tbl", "draw", "style", "form", "link", "x"};
constexpr const char* Locals[] = {"section", "cell", "span", "frame", "entry", "anchor", "property", "row"};

std::string namespaceUri(const std::string& prefix, const std::string& variant) {
    return "http://schemas.example.org/interchange/" + variant + "/definitions/" + prefix + "/2024/main";
}

std::string namespaceDeclaration(const std::string& prefix, const std::string& variant) {
    return attribute(("xmlns:" + prefix).c_str(), namespaceUri(prefix, variant));
}

std::string qualified(Random& random) {
    return std::string(random.pick(Prefixes)) + ':' + random.pick(Locals);
}

// Attribute names of one tag are distinct: each has its own local name.
void appendPrefixedAttributes(std::string& out, Random& random) {
    if (random.percent(30)) out += attribute("id", std::to_string(random.below(100000)));
    if (random.percent(80)) {
        const std::string prefix = random.pick(Prefixes);
        out += attribute((prefix + ":name").c_str(), words(random, 1));
    }
    if (random.percent(60)) {
        const std::string prefix = random.pick(Prefixes);
        out += attribute((prefix + ":style").c_str(), std::to_string(random.below(500)));
    }
}

void appendPrefixedElement(std::string& out, Random& random, int levels) {
    const std::string name = qualified(random);
    out += '<' + name;
    if (levels > 1 && random.percent(4)) out += namespaceDeclaration(random.pick(Prefixes), "extended");
    appendPrefixedAttributes(out, random);
    if (levels == 0) {
        out += random.percent(40) ? "/>" : '>' + words(random, random.between(1, 3)) + "</" + name + '>';
        return;
    }
    out += '>';
    for (std::size_t children = random.between(1, 4); children > 0; --children)
        appendPrefixedElement(out, random, levels - 1);
    out += "</" + name + ">\n";
}

}  // namespace

std::string namespaces(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    std::string root = "<doc:document";
    for (const char* prefix : Prefixes)
        root += namespaceDeclaration(prefix, "core");
    return document(bytes, root + ">\n", "</doc:document>\n",
                    [&](std::string& out) { appendPrefixedElement(out, random, 3); });
}

namespace {

// A code point from U+0800 to U+FFFF as UTF-8.
void appendThreeByteCharacter(std::string& out, std::size_t code) {
    out += static_cast<char>(0xE0 | code >> 12);
    out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
}

void appendIdeographs(std::string& out, Random& random, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        appendThreeByteCharacter(out, random.between(0x4E00, 0x9FA5));
}

}  // namespace

std::string cjk(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    return document(bytes, "<novel>\n", "</novel>\n", [&](std::string& out) {
        out += "  <p title=\"";
        appendIdeographs(out, random, random.between(2, 6));
        out += "\">";
        for (std::size_t sentences = random.between(1, 6); sentences > 0; --sentences) {
            appendIdeographs(out, random, random.between(8, 40));
            appendThreeByteCharacter(out, 0x3002);
        }
        out += "</p>\n";
    });
}

namespace {

void appendWithReferences(std::string& out, Random& random, std::size_t count) {
    constexpr const char* References[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;", "&#233;", "&#x20AC;", "&amp;"};
    for (std::size_t i = 0; i < count; ++i) {
        appendWords(out, random, random.between(1, 3));
        out.append(" ").append(random.pick(References)).append(" ");
    }
    appendWords(out, random, 1);
}

}  // namespace

std::string references(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    return document(bytes, "<log>\n", "</log>\n", [&](std::string& out) {
        out += "  <entry query=\"";
        appendWithReferences(out, random, random.between(1, 3));
        out += "\">";
        appendWithReferences(out, random, random.between(2, 12));
        out += "</entry>\n";
    });
}

namespace {

void appendCode(std::string& out, Random& random, std::size_t lines) {
    for (std::size_t i = 0; i < lines; ++i) {
        out += "if (" + words(random, 1) + " < " + std::to_string(random.below(1000)) + " && " + words(random, 1);
        out += "[i] > 0) { " + words(random, 2) + " = \"<" + words(random, 1) + ">\"; }\n";
    }
}

}  // namespace

std::string sections(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    return document(bytes, "<sources>\n", "</sources>\n", [&](std::string& out) {
        out += "  <!-- ";
        appendWords(out, random, random.between(50, 400));
        out += " -->\n  <source name=\"" + words(random, 1) + "\"><![CDATA[";
        appendCode(out, random, random.between(10, 80));
        out += "]]></source>\n";
    });
}

std::string deep(std::size_t bytes, std::uint64_t seed) {
    constexpr const char* Levels[] = {"part", "chapter", "group", "n", "list"};
    Random random(seed);
    return document(bytes, "<tree>\n", "</tree>\n", [&](std::string& out) {
        std::string ends;
        for (unsigned depth = 2; depth <= DeepestNesting; ++depth) {
            const std::string level = random.pick(Levels);
            out += '<' + level;
            if (random.percent(20)) out += attribute("id", std::to_string(random.below(10000)));
            out += '>';
            if (random.percent(30)) out += words(random, 2);
            ends.insert(0, "</" + level + '>');
        }
        out += ends + '\n';
    });
}

namespace {

void appendStyledRun(std::string& out, Random& random) {
    out += "<w:r><w:rPr>";
    if (random.percent(30)) out += "<w:b/>";
    out += "<w:sz w:val=\"" + std::to_string(random.between(16, 36)) + "\"/><w:lang w:val=\"en-GB\"/></w:rPr><w:t>";
    out += words(random, random.between(2, 14));
    if (random.percent(15)) out += " &amp; " + words(random, 2);
    out += "</w:t></w:r>";
}

void appendParagraph(std::string& out, Random& random) {
    const std::string revision = std::to_string(random.between(10000000, 99999999));
    out += "<w:p w:rsidR=\"" + revision + "\" w:rsidRDefault=\"" + revision + "\"><w:pPr><w:pStyle w:val=\"" +
           words(random, 1) + "\"/><w:spacing w:after=\"120\" w:line=\"276\"/></w:pPr>";
    for (std::size_t runs = random.between(1, 5); runs > 0; --runs)
        appendStyledRun(out, random);
    out += "</w:p>\n";
}

void appendPath(std::string& out, Random& random) {
    const auto coordinate = [&] { return std::to_string(random.below(1000)) + '.' + std::to_string(random.below(10)); };
    out +=
        "    <path id=\"path" + std::to_string(random.below(100000)) + "\" d=\"M " + coordinate() + ',' + coordinate();
    for (std::size_t points = random.between(3, 40); points > 0; --points)
        out += " L " + coordinate() + ',' + coordinate();
    out += " Z\" style=\"fill:#" + std::to_string(random.between(100000, 999999)) +
           ";stroke:none;fill-opacity:1\" draw:layer=\"" + words(random, 1) + "\"/>\n";
}

void appendDrawing(std::string& out, Random& random) {
    out += "  <g xmlns=\"http://www.w3.org/2000/svg\" id=\"g" + std::to_string(random.below(10000)) +
           "\" transform=\"translate(" + std::to_string(random.below(500)) + ",0)\">\n";
    for (std::size_t paths = random.between(1, 6); paths > 0; --paths)
        appendPath(out, random);
    out += "  </g>\n";
}

void appendSetting(std::string& out, Random& random) {
    out += "  <property name=\"" + words(random, 1) + '.' + words(random, 1) + "\">\n    <value type='string'>" +
           words(random, random.between(1, 3)) + "</value>\n  </property>\n";
    if (random.percent(20)) out += "  <!-- " + words(random, 8) + " -->\n";
}

}  // namespace

std::string mixed(std::size_t bytes, std::uint64_t seed) {
    Random random(seed);
    const std::string root =
        "<package xmlns:w=\"http://schemas.example.org/wordprocessing/2006/main\" "
        "xmlns:draw=\"http://drawing.example.org/namespaces/draw\" version=\"1.2\">\n";
    return document(bytes, root, "</package>\n", [&](std::string& out) {
        const std::size_t kind = random.below(10);
        if (kind < 5) return appendParagraph(out, random);
        if (kind < 7) return appendDrawing(out, random);
        appendSetting(out, random);
    });
}

}  // namespace tessit::benchmarks
