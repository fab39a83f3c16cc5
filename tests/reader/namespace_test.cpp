// Names with their URIs, and the order of attributes.

#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

struct NameCase {
    const char* xml;
    const char* nodes;
};

constexpr NameCase Names[] = {
    {"<a xmlns='u'><b/></a>", "+{u}a[xmlns=u] /{u}b -{u}a"},
    {"<a xmlns='u' x='1'/>", "/{u}a[x=1 xmlns=u]"},  // unprefixed attributes are in no namespace
    {"<p:a xmlns:p='u' x='1' p:y='2'/>", "/{u}p:a[xmlns:p=u x=1 {u}p:y=2]"},
    {"<a p:y='2' xmlns:p='u'/>", "/a[xmlns:p=u {u}p:y=2]"},  // a declaration counts for the whole tag
    {"<q:a xml:lang='de'/>", "/q:a[xml:lang=de]"},           // unbound prefixes, no error
    {"<a xmlns='u'><b xmlns=''><c/></b><d/></a>", "+{u}a[xmlns=u] +b[xmlns=] /c -b /{u}d -{u}a"},
    {"<a xmlns:p='u1' xmlns:p='u2'><p:b/></a>", "+a[xmlns:p=u2] /{u1}p:b -a"},  // first to resolve, last to see
    {"<p:a xmlns:p='u'><p:b xmlns:p='v'><p:c/></p:b><p:d/></p:a>",
     "+{u}p:a[xmlns:p=u] +{v}p:b[xmlns:p=v] /{v}p:c -{v}p:b /{u}p:d -{u}p:a"},
    {"<a xmlns:p='u'><p:b xmlns:p='v'/><p:b/></a>", "+a[xmlns:p=u] /{v}p:b[xmlns:p=v] /{u}p:b -a"},
    {"<a p:x='1' q:x='2' x='3' xmlns:q='u' xmlns:p='u'/>",
     "/a[xmlns:p=u xmlns:q=u x=3 {u}p:x=1 {u}q:x=2]"},  // equal names after resolving: both stay
    {"<a x='1' x='2' x='3'/>", "/a[x=3]"},              // the last value wins
    {"<a p:x='1' b='' p:x='2'/>", "/a[b= p:x=2]"},
    {"<a xmlns='v' xmlns='u'><b/></a>", "+{v}a[xmlns=u xmlns=v] /{v}b -{v}a"},  // in the order of their values
    {"<a xmlns='p' p:xmlns='1' p:xmlns='2'/>", "/{p}a[xmlns=2]"},  // one entry: the placeholders are the same
    {"<a :x='1' x='2'/>", "/a[x=2]"},
    {"<:a xmlns='u'/>", "/{u}a[xmlns=u]"},             // an empty prefix is none
    {"<a:b:c xmlns:a='u'/>", "/{u}a:b:c[xmlns:a=u]"},  // split at the first colon
    {"<a xmlns:='u'/>", "/{u}a[xmlns:=u]"},
    {"<xmlns:a xmlns:xmlns='u' xmlns:p='v'/>", "/{u}xmlns:a[{u}xmlns:p=v {u}xmlns:xmlns=u]"},
    {"<a xmlns:p='a&amp;b'><p:c/></a>", "+a[xmlns:p=a&b] /{a&b}p:c -a"},  // expanded before it binds
    {"<r xmlns:longprefix='u'><longprefix:a/><longprefix:a xmlns:longprefix='v'/><longprefix:a/></r>",
     "+r[xmlns:longprefix=u] /{u}longprefix:a /{v}longprefix:a[xmlns:longprefix=v] /{u}longprefix:a -r"},
    // What one tag left in a slot must not show in the next.
    {"<r><a p:x='1'/><a p:x='1' xmlns:p='u'/><a p:x='1'/><a x='1'/><p:x/><x/></r>",
     "+r /a[p:x=1] /a[xmlns:p=u {u}p:x=1] /a[p:x=1] /a[x=1] /p:x /x -r"},
    {"<r xmlns:p='u'><p:a p:x='' q:y=''/><q:a q:x='' p:y=''/></r>",
     "+r[xmlns:p=u] /{u}p:a[{u}p:x= q:y=] /q:a[q:x= {u}p:y=] -r"},
    {"<r><p:a xmlns:p='u' p:x=''></p:a><p:a xmlns:p='w'/><p:a xmlns:p='w'/><p:a xmlns:p='u'/></r>",
     "+r +{u}p:a[xmlns:p=u {u}p:x=] -{u}p:a /{w}p:a[xmlns:p=w] /{w}p:a[xmlns:p=w] /{u}p:a[xmlns:p=u] -r"},
    {"<r><a x='1' x='2'/><a x='1' x='2'/><a x='3' x='4'/></r>", "+r /a[x=2] /a[x=2] /a[x=4] -r"},
    {"<r><a y=''/><b y=''/><a xmlns:p='u' p:x=''/><b xmlns:p='v' p:x=''/><a xmlns:p='w' p:x=''/></r>",
     "+r /a[y=] /b[y=] /a[xmlns:p=u {u}p:x=] /b[xmlns:p=v {v}p:x=] /a[xmlns:p=w {w}p:x=] -r"},
    {"<r><item p:x='1'/><item p:x='1'/><w xmlns:p='v'><item p:x='1'/></w></r>",
     "+r /item[p:x=1] /item[p:x=1] +w[xmlns:p=v] /item[{v}p:x=1] -w -r"},
    // Nor does what a name meant inside the tag in front.
    {"<p:a xmlns:p='u'><p:a xmlns:p='v'/></p:a>", "+{u}p:a[xmlns:p=u] /{v}p:a[xmlns:p=v] -{u}p:a"},
    {"<r xmlns='u' xmlns:p='u'><a/><p:a/><a/></r>", "+{u}r[xmlns:p=u xmlns=u] /{u}a /{u}p:a /{u}a -{u}r"},
    {"<r xmlns:prefixes1='u' xmlns:prefixes2='v'><prefixes1:a/><prefixes2:a/></r>",
     "+r[xmlns:prefixes1=u xmlns:prefixes2=v] /{u}prefixes1:a /{v}prefixes2:a -r"},
    {"<p:\xC3\xA9:b xmlns:p='u'/>", "/{u}p:\xC3\xA9:b[xmlns:p=u]"},
    {"<a></a></a><b/>", "+a -a -a /b"},  // more ends than starts
};

}  // namespace

TEST(XmlReader, ResolvesNames) {
    for (const auto& [xml, nodes] : Names) {
        EXPECT_EQ(trace(xml), nodes) << xml;
        EXPECT_EQ(trace(withLongURIs(xml)), withLongURIs(nodes)) << xml;
    }
}

// Many attributes go through the general sort, few through the ordered case: same result, whatever the order.
TEST(XmlReader, SortsManyAttributes) {
    std::string forward, backward, expected;
    for (int i = 100; i < 300; ++i) {
        const std::string name = "a" + std::to_string(i), value = std::to_string(i);
        forward += " " + name + "='" + value + "'";
        backward = " " + name + "='" + value + "'" + backward;
        expected += (expected.empty() ? "" : " ") + name + "=" + value;
    }
    EXPECT_EQ(trace("<r" + forward + "/>"), "/r[" + expected + "]");
    EXPECT_EQ(trace("<r" + backward + "/>"), "/r[" + expected + "]");
    EXPECT_EQ(trace("<r" + backward + forward + "/>"), "/r[" + expected + "]");
}

// More prefixes than the reader remembers, in turn.
TEST(XmlReader, ResolvesManyPrefixes) {
    std::string declarations, tags, nodes;
    for (const char letter : std::string("abcdefghijklmnopqrstuvwxyz")) {
        const std::string prefix(1, letter);
        declarations += " xmlns:" + prefix + "='" + prefix + "'";
        tags += "<" + prefix + ":a/>";
        nodes += " /{" + prefix + "}" + prefix + ":a";
    }
    const std::string found = trace("<r" + declarations + ">" + tags + tags + "</r>");
    EXPECT_EQ(found.substr(found.find(']') + 1), nodes + nodes + " -r");
}

// The bindings of one element after the other stand in the same place, and have hashes that are kept.
TEST(XmlReader, TellsLongUrisApartThatFollowOneAnother) {
    const auto uri = [](int number) {
        return std::string(150, 'u') + std::to_string(100 + number) + std::string(150, 'u');
    };
    const auto name = [&](int number) {
        return QeXmlName("a", QeXmlNamespace("p", QeCString(std::string_view(uri(number)))));
    };
    std::string text;
    for (int i = 0; i < 10; ++i)
        text += "<p:a xmlns:p='" + uri(i) + "'/>";
    const Document document("<r>" + text + "</r>");
    const auto reader = document.open(Source::Span);
    reader->readElementStart();
    for (int i = 0; i < 10; ++i) {
        EXPECT_FALSE(reader->isElementNext(name(i + 1)));
        EXPECT_TRUE(reader->isElementNext(name(i)));
        reader->readElementStart();
        reader->readElementEnd();
    }
}

// A long URI is shared by the names of a reader and by their copies, until one of them changes.
TEST(XmlReader, SharesLongUrisWithCopies) {
    const std::string uri(1000, 'u');
    const Document document("<p:a xmlns:p='" + uri + "' p:x=''/>");
    auto reader = document.open(Source::Span);
    reader->readElementStart("p:a");
    const QeXmlName name = reader->getLastName();
    QeXmlName changed = name;
    EXPECT_EQ(changed.getNamespace().getURI().data(), reader->getLastName().getNamespace().getURI().data());
    changed.getNamespace().setURI(QeCString(std::string_view(uri)) + "!");
    const QeXmlAttributeSet attributes = reader->getLastAttributes();
    reader.reset();
    EXPECT_EQ(describe(name), "{" + uri + "}p:a");
    EXPECT_EQ(describe(attributes), "[xmlns:p=" + uri + " {" + uri + "}p:x=]");
}
