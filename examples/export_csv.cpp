// An export of any size as CSV, in constant memory: read from a pipe, or unpacked on the way from gzip by a stream's
// buffer. Without arguments it makes a small one and reads it in both ways; otherwise
//
//     export_csv FILE       reads that file; "-" is standard input
//     export_csv -z FILE    the same for one that is packed

#include <array>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <istream>
#include <optional>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <unistd.h>
#include <zlib.h>

#include <tessit/tessit.h>

namespace {

// What a packed file holds, a piece at a time.
class GzipBuffer : public std::streambuf {
public:
    explicit GzipBuffer(gzFile opened) : file(opened) {
        if (file == nullptr) throw std::runtime_error("the file cannot be unpacked");
    }
    ~GzipBuffer() override { gzclose_r(file); }
    GzipBuffer(const GzipBuffer&) = delete;
    GzipBuffer& operator=(const GzipBuffer&) = delete;

protected:
    // An error is not the end: a reader would take what is missing for a document that was cut short.
    int_type underflow() override {
        const int count = gzread(file, piece.data(), static_cast<unsigned>(piece.size()));
        int error = Z_OK;
        const char* const reason = gzerror(file, &error);
        if (count < 0 || error != Z_OK) throw std::runtime_error(reason);
        setg(piece.data(), piece.data(), piece.data() + count);
        return count == 0 ? traits_type::eof() : traits_type::to_int_type(piece[0]);
    }

private:
    gzFile file;
    std::array<char, 16'384> piece;
};

void printField(std::ostream& out, std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        out << text;
        return;
    }
    out << '"';
    for (const char byte : text) {
        if (byte == '"') out << '"';
        out << byte;
    }
    out << '"';
}

// How much of a file is left, one knows; of a pipe, nobody does.
void showProgress(const QeXmlReader& reader) {
    std::cerr << reader.getBytesRead() / 1'000'000 << " MB";
    if (const std::optional<std::uint64_t> size = reader.getInputSize())
        std::cerr << " of " << *size / 1'000'000 << " MB";
    std::cerr << '\n';
}

// A line for each item: its number, its name, its price.
void exportItems(QeXmlInput input, std::ostream& out) {
    constexpr std::size_t Some = 1'000'000;
    const QeXmlName id("id"), name("name");
    std::size_t items = 0;
    QeXmlReader reader(std::move(input), {.rules = QeXmlRules::Conforming});
    reader.readElementStart("list");
    while (reader.isElementNext("item")) {
        const QeXmlAttributeSet& attributes = reader.readElementStart("item");
        for (const QeXmlName& field : {id, name}) {
            const QeXmlAttribute* const attribute = attributes.find(field);
            printField(out, attribute == attributes.end() ? "" : std::string_view(attribute->getValue()));
            out << ',';
        }
        reader.readElementStart("price");
        printField(out, reader.readElementValue());
        out << '\n';
        reader.readElementEnd("price");
        while (reader.isElementNext("note"))
            reader.readElement("note");
        reader.readElementEnd("item");
        if (++items % Some == 0) showProgress(reader);
    }
    reader.readElementEnd("list");
}

void exportPacked(gzFile file, std::ostream& out) {
    GzipBuffer buffer(file);
    std::istream in(&buffer);
    exportItems(QeXmlInput::stream(in), out);
}

constexpr std::string_view Small =
    "<list><item id='1' name='tea, green'><price>3.20</price></item>"
    "<item id='2' name='milk &quot;fresh&quot;'><price>1.10</price><note>cold</note></item></list>";

// Written into one end of a pipe, plain or packed, it is read from the other.
void showBoth() {
    for (const bool isPacked : {false, true}) {
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("there is no pipe");
        const gzFile writer = gzdopen(ends[1], isPacked ? "wb" : "wbT");
        gzwrite(writer, Small.data(), static_cast<unsigned>(Small.size()));
        gzclose(writer);
        if (isPacked) {
            exportPacked(gzdopen(ends[0], "rb"), std::cout);
        } else {
            exportItems(QeXmlInput::descriptor(ends[0], "the pipe"), std::cout);
            close(ends[0]);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::ios_base::sync_with_stdio(false);
    const bool isPacked = argc > 2 && std::string_view(argv[1]) == "-z";
    const std::string file = argc > 1 ? argv[argc - 1] : "";
    try {
        if (argc < 2)
            showBoth();
        else if (isPacked)
            exportPacked(file == "-" ? gzdopen(dup(STDIN_FILENO), "rb") : gzopen(file.c_str(), "rb"), std::cout);
        else
            exportItems(file == "-" ? QeXmlInput::descriptor(STDIN_FILENO, "standard input") : QeXmlInput::file(file),
                        std::cout);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
