// The input side of the reader: takes in the document, finds out its encoding,
// converts it to UTF-8, and raises every error with its position.

#include <algorithm>
#include <bit>
#include <climits>
#include <istream>
#include <voxal/converter.h>

#include <corvel/byte_scan.h>
#include <tessit/reader/open_elements.h>
#include <tessit/reader/raw_copy.h>
#include <tessit/reader/transcode.h>
#include <tessit/reader/xml_reader.h>

constinit const QeXmlName QeXmlReader::NullName;

namespace {

// Each XML declaration in a document converts the rest once more, and a
// conversion can double it: a few of them would make a small document huge.
// All conversions together may produce this many times the input's length, and
// a constant for small documents; those with one declaration never come near it.
constexpr std::uint64_t ConversionFactor = 16;
constexpr std::uint64_t ConversionGrace = 4096;
constexpr char TooManyConversions[] = "the document's encoding declarations make it grow too much";

}  // namespace

QeXmlReader::QeXmlReader(std::istream& in) {
    ownedDocument.readFile(in);
    takeInput(ownedDocument);
}

QeXmlReader::QeXmlReader(const QeCString& document) : ownedDocument(document) {
    takeInput(ownedDocument);
}

QeXmlReader::QeXmlReader(unsigned char* bytes, unsigned int length)
    : QeXmlReader(std::span<const unsigned char>(bytes, bytes == nullptr ? 0 : length)) {}

QeXmlReader::QeXmlReader(std::span<const unsigned char> document) {
    takeInput({reinterpret_cast<const char*>(document.data()), document.size()});
}

QeXmlReader::~QeXmlReader() = default;

void QeXmlReader::takeInput(std::string_view document) {
    cursor = bufferStart = document.data();
    bufferEnd = bufferStart + document.size();
    conversionAllowance = ConversionFactor * (document.size() + ConversionGrace);
    namespaceStack.pushScope();  // the document's own
    readDocument();
}

namespace {

struct ByteOrderMark {
    std::string_view bytes;
    const char* encoding;
};

// The longer marks first: a UTF-32LE mark begins like a UTF-16LE one.
constexpr ByteOrderMark Marks[] = {
    {{"\x00\x00\xFE\xFF", 4}, "UTF-32BE"}, {{"\xFF\xFE\x00\x00", 4}, "UTF-32LE"}, {{"\x00\x00\xFF\xFE", 4}, "UTF-32"},
    {{"\xFE\xFF\x00\x00", 4}, "UTF-32"},   {{"\xFE\xFF", 2}, "UTF-16BE"},         {{"\xFF\xFE", 2}, "UTF-16LE"},
    {{"\xEF\xBB\xBF", 3}, "UTF-8"},
};

// How "<" or "<?xm" begin in the encodings that a document without a mark can be told apart by.
constexpr ByteOrderMark FirstBytes[] = {
    {{"\x00\x00\x00\x3C", 4}, "UTF-32BE"}, {{"\x3C\x00\x00\x00", 4}, "UTF-32LE"}, {{"\x00\x00\x3C\x00", 4}, "UTF-32"},
    {{"\x00\x3C\x00\x00", 4}, "UTF-32"},   {{"\x00\x3C\x00\x3F", 4}, "UTF-16BE"}, {{"\x3C\x00\x3F\x00", 4}, "UTF-16LE"},
    {{"\x3C\x3F\x78\x6D", 4}, "UTF-8"},    {{"\x4C\x6F\xA7\x94", 4}, "EBCDIC"},
};

const ByteOrderMark* findMark(std::span<const ByteOrderMark> marks, std::string_view document) {
    const auto found = std::find_if(marks.begin(), marks.end(),
                                    [&](const ByteOrderMark& mark) { return document.starts_with(mark.bytes); });
    return found == marks.end() ? nullptr : &*found;
}

bool beginsAsUtf8(std::string_view first) {
    return (first[0] == '<' && first[1] != '\0') || first[0] == ' ' || first[0] == '\t' || first[0] == '\n' ||
           first[0] == '\r';
}

}  // namespace

// A document that no row matches keeps an empty encoding: what follows fails at its first byte or name.
void QeXmlReader::readAndProcessBOM() {
    const std::string_view first = rd(4);
    cursor = bufferStart;
    if (beginsAsUtf8(first)) {
        encoding = "UTF-8";
    } else if (const ByteOrderMark* mark = findMark(Marks, first)) {
        cursor += mark->bytes.size();
        transcodeDocument(mark->encoding);
    } else if (const ByteOrderMark* row = findMark(FirstBytes, first)) {
        transcodeDocument(row->encoding);
    }
}

// A declared name that only spells the encoding in force differently converts
// nothing: the text is UTF-8 by now, and a second conversion would garble it.
void QeXmlReader::declareEncoding(const QeCString& name) {
    encodingDeclared = true;
    if (name == encoding) return;
    if (QeUToUnicodeConverter::sameEncoding(name, encoding)) {
        encoding = name;
    } else {
        transcodeDocument(name);
    }
}

void QeXmlReader::transcodeDocument(const QeCString& name) {
    encoding = name;
    QeCString upperName = name;
    upperName.toUpper();
    if (upperName == "UTF-8" || upperName == "US-ASCII") return;
    if (upperName == "ISO-8859-1") {
        replaceDocument(transcode8859_1());
    } else if (upperName == "UTF-16" || upperName == "UTF-16BE") {
        replaceDocument(transcodeUTF16BE());
    } else if (upperName == "UTF-16LE") {
        replaceDocument(transcodeUTF16LE());
    } else {
        replaceDocument(transcodeOther(name));
    }
}

// The text before the cursor is not carried over, so positions count from here.
void QeXmlReader::replaceDocument(QeCString&& converted) {
    if (converted.length() > conversionAllowance) raiseTranscoding(TooManyConversions);
    conversionAllowance -= converted.length();
    if (rawCopy != nullptr) rawCopy->keepUpTo(cursor);
    if (openElements != nullptr) openElements->keepNames();
    forgetWrittenNames();  // they point into the old buffer
    counted = {};
    ownedDocument = std::move(converted);
    cursor = bufferStart = ownedDocument.begin();
    bufferEnd = ownedDocument.end();
    if (rawCopy != nullptr) rawCopy->continueAt(cursor);
}

QeCString QeXmlReader::transcode8859_1() const {
    return tessit::latin1ToUtf8({cursor, bufferEnd});
}

QeCString QeXmlReader::transcodeUTF16BE() const {
    return tessit::utf16ToUtf8<std::endian::big>({cursor, bufferEnd});
}

QeCString QeXmlReader::transcodeUTF16LE() const {
    return tessit::utf16ToUtf8<std::endian::little>({cursor, bufferEnd});
}

QeCString QeXmlReader::transcodeOther(const QeCString& name) const {
    try {
        return QeUToUnicodeConverter(name).toUtf8({cursor, bufferEnd});
    } catch (const Qexmsg& error) {
        raiseTranscoding(error.why());
    }
}

void QeXmlReader::raiseTranscoding(const char* reason) const {
    QeCString message("Couldn't transcode from input encoding '");
    message += encoding;
    message += "': ";
    message += reason;
    err(message);
}

std::string_view QeXmlReader::rd(std::size_t count) {
    if (static_cast<std::size_t>(bufferEnd - cursor) < count) raise("Premature EOF");
    cursor += count;
    return {cursor - count, count};
}

void QeXmlReader::err(const QeCString& message) const {
    const LineCount& here = countLines();
    const auto fromOne = [](std::size_t count) {
        return static_cast<unsigned>(std::min<std::size_t>(count, UINT_MAX - 1) + 1);
    };
    const auto column = static_cast<std::size_t>(cursor - here.lineStart);
    throw QeXmlParseError(message, QeCString(), fromOne(here.lines), fromOne(column));
}

// Goes on from where the last error was counted: a caller may raise any number of them.
const QeXmlReader::LineCount& QeXmlReader::countLines() const {
    const bool goesOn = counted.upTo != nullptr && counted.upTo <= cursor;
    if (!goesOn) counted = {bufferStart, bufferStart, 0};
    for (const char* at = counted.upTo; (at = corvel::findByte(at, cursor, '\n')) != cursor; counted.lineStart = ++at)
        ++counted.lines;
    counted.upTo = cursor;
    return counted;
}

void QeXmlReader::raise(const char* message) const {
    err(message);
}

void QeXmlReader::raiseWith(const char* message, std::string_view found) const {
    err(QeCString(message) + found);
}

void QeXmlReader::raiseEnd() {
    cursor = bufferEnd;
    raise("Premature EOF");
}
