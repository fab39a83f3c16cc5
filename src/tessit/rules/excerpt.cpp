#include <tessit/rules/excerpt.h>

namespace tessit {

namespace {

constexpr std::ptrdiff_t Reach = 160;

bool isContinuation(char byte) {
    return (byte & 0xC0) == 0x80;
}

bool endsLine(char byte, LineEnds lineEnds) {
    return byte == '\n' || (byte == '\r' && lineEnds == LineEnds::All);
}

}  // namespace

// Where the line goes on, no character is cut in two. The carriage return in front of a line feed belongs to the line's
// end by either count.
QeXmlExcerpt excerptAt(std::string_view text, const char* place, LineEnds lineEnds) {
    const char* const first = text.data();
    const char* const last = text.data() + text.size();
    if (place != first && place != last && *place == '\n' && place[-1] == '\r') --place;
    const char* begin = place;
    while (begin != first && place - begin != Reach && !endsLine(begin[-1], lineEnds))
        --begin;
    const char* end = place;
    while (end != last && end - place != Reach && !endsLine(*end, lineEnds))
        ++end;
    QeXmlExcerpt excerpt;
    excerpt.isCutInFront = begin != first && !endsLine(begin[-1], lineEnds);
    excerpt.isCutBehind = end != last && !endsLine(*end, lineEnds);
    while (excerpt.isCutInFront && begin != place && isContinuation(*begin))
        ++begin;
    while (excerpt.isCutBehind && end != place && isContinuation(*end))
        --end;
    if (end != last && *end == '\n' && end != place && end[-1] == '\r') --end;
    excerpt.text.assign(std::string_view(begin, static_cast<std::size_t>(end - begin)));
    excerpt.offset = static_cast<std::size_t>(place - begin);
    return excerpt;
}

}  // namespace tessit
