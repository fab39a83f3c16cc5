#pragma once

#include <cstring>
#include <string_view>

namespace tessit::benchmarks {

/// The least that reading can be: finds names, values and texts as views of a
/// well-formed document, and copies, resolves, replaces and checks nothing. The
/// floor of what a reader can cost, and the record of what is written in a document.
///
/// The handler is told what a `Tally` is told.
template <typename Handler>
class Tokenizer {
public:
    Tokenizer(std::string_view document, Handler& events)
        : at(document.data()), end(document.data() + document.size()), handler(events) {}

    void run() {
        while (at != end) {
            if (*at != '<') {
                takeText(upTo('<'));
            } else if (at[1] == '!') {
                takeSection();
            } else if (at[1] == '?') {
                past("?>");
            } else if (at[1] == '/') {
                handler.elementEnd();
                --depth;
                past(">");
            } else {
                takeStartTag();
            }
        }
    }

private:
    // The bytes up to the next `stop`, which becomes the present byte.
    std::string_view upTo(char stop) {
        const char* const start = at;
        const void* const found = std::memchr(at, stop, static_cast<std::size_t>(end - at));
        at = found == nullptr ? end : static_cast<const char*>(found);
        return {start, static_cast<std::size_t>(at - start)};
    }

    // The bytes up to the next `mark`, which is passed.
    std::string_view past(std::string_view mark) {
        const std::string_view rest(at, static_cast<std::size_t>(end - at));
        const std::size_t length = rest.find(mark);
        at += length + mark.size();
        return rest.substr(0, length);
    }

    void takeText(std::string_view text) {
        if (depth > 0) handler.text(text);
    }

    void takeSection() {
        constexpr std::string_view CDataStart = "<![CDATA[";
        if (at[2] != '[') {
            at += 4;  // so that "<!-->" ends no comment
            past("-->");
        } else {
            at += CDataStart.size();
            takeText(past("]]>"));
        }
    }

    static bool endsName(char byte) {
        return byte == ' ' || byte == '>' || byte == '/' || byte == '=' || byte == '\n' || byte == '\r' || byte == '\t';
    }

    std::string_view takeName() {
        const char* const start = at;
        while (!endsName(*at))
            ++at;
        return {start, static_cast<std::size_t>(at - start)};
    }

    void takeStartTag() {
        ++at;
        handler.element(takeName());
        while (*at != '>' && *at != '/') {
            if (endsName(*at)) {
                ++at;
            } else {
                takeAttribute();
            }
        }
        const bool empty = *at == '/';
        at += empty ? 2 : 1;
        if (empty) {
            handler.elementEnd();
        } else {
            ++depth;
        }
    }

    void takeAttribute() {
        const std::string_view name = takeName();
        at += 1;  // the equals sign
        const char quote = *at++;
        handler.attribute(name, upTo(quote));
        ++at;
    }

    const char* at;
    const char* end;
    Handler& handler;
    int depth = 0;
};

}  // namespace tessit::benchmarks
