// A sink of one's own: a writer whose output goes to a stream as it is written.

#include <iostream>
#include <sstream>

#include <tessit/tessit.h>

namespace {

class StreamWriter : public QeXmlWriter {
public:
    explicit StreamWriter(std::ostream& out) : stream(out) {}

    void writeToSink(char byte) override { put(&byte, 1); }
    void writeToSink(const char* bytes, unsigned length) override { put(bytes, length); }
    void writeToSink(const QeCString& text) override { put(text.data(), text.length()); }
    void flush() override { stream.flush(); }

private:
    // What a sink throws comes out of the call that wrote.
    void put(const char* bytes, std::size_t length) {
        if (!stream.write(bytes, static_cast<std::streamsize>(length)))
            throw std::ios_base::failure("The document cannot be written");
    }

    std::ostream& stream;
};

}  // namespace

int main() {
    std::ostringstream out;
    StreamWriter writer(out);
    const QeXmlName log("log");
    writer.writeElementStart(log, QeXmlAttributeSet(), false);
    writer.writeSimpleElement("line", "5 > 4", "", false);
    writer.writeElementEnd(log);
    writer.flush();
    std::cout << out.str() << '\n';
    return out.str() == "<log><line>5 &gt; 4</line>\n</log>" ? 0 : 1;
}
