#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include <tessit/writer/xml_string_writer.h>

/// A sink that logs its calls as "c:BYTE", "b:BYTES" and "s:STRING", one by one
/// behind a bar, and can be told to fail. Over a string writer, it takes the place of all its slots.
template <typename Base>
class Logging : public Base {
public:
    void writeToSink(char byte) override { log("c:", {&byte, 1}); }
    void writeToSink(const char* bytes, unsigned length) override { log("b:", {bytes, length}); }
    void writeToSink(const QeCString& text) override { log("s:", text); }
    void flush() override { log("flush", ""); }

    std::string calls;   // all of them
    std::string output;  // the bytes alone

    /// How many calls from now on go well; the one after them throws, before it logs anything.
    int callsUntilFailure = -1;

private:
    void log(std::string_view slot, std::string_view bytes) {
        if (callsUntilFailure-- == 0) throw std::runtime_error("sink");
        calls.append("|").append(slot).append(bytes);
        output.append(bytes);
    }
};

using LoggingWriter = Logging<QeXmlWriter>;
