// Compares documents: what formatting changes is tolerated, what the documents say is not.

#include <algorithm>
#include <functional>
#include <iostream>

#include <tessit/tessit.h>

namespace {

constexpr char Expected[] = R"(<?xml version="1.0"?>
<order id="17" currency="GBP">
  <item>Tea &amp; biscuits</item>
  <gift/>
</order>)";

struct Answer {
    const char* what;
    const char* document;
    bool isSame;
};

constexpr Answer Answers[] = {
    {"other indentation, attribute order and quotes",
     "<order currency='GBP' id='17'>\n  <item>Tea &amp; biscuits</item><gift/></order>", true},
    {"other ways to write a character",
     "<order id='17' currency='GBP'><item>Tea <![CDATA[&]]> biscuits</item><gift/></order>", true},
    {"a comment, and a start and an end tag",
     "<order id='17' currency='GBP'><!-- new --><item>Tea &#38; biscuits</item> <gift></gift></order>", true},
    {"another value", "<order id='18' currency='GBP'><item>Tea &amp; biscuits</item><gift/></order>", false},
    {"a blank in a text", "<order id='17' currency='GBP'><item>Tea  &amp; biscuits</item><gift/></order>", false},
    {"something missing", "<order id='17' currency='GBP'><item>Tea &amp; biscuits</item></order>", false},
};

bool compare(const Answer& answer) {
    const bool same = QeXmlUtils::compareXml(Expected, answer.document);
    std::cout << (same ? "same:      " : "different: ") << answer.what << '\n';
    return same == answer.isSame;
}

bool refusesWhatIsNoDocument() {
    try {
        QeXmlUtils::compareXml(Expected, "<order id='17' currency=GBP/>");
        return false;
    } catch (const QeXmlParseError& error) {
        std::cout << "refused:   line " << error.getLineNumber() << ", column " << error.getColumnNumber() << ": "
                  << error.what() << '\n';
        return true;
    }
}

}  // namespace

int main() {
    const auto wrong = std::count_if(std::begin(Answers), std::end(Answers), std::not_fn(compare));
    return wrong == 0 && refusesWhatIsNoDocument() ? 0 : 1;
}
