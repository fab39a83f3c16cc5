// Two programs that talk in XML over a socket: each message is answered as soon as its last byte is there, and the
// document that they stand in goes on as long as the two do. Then one reads what was asked in a file.

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

#include <tessit/tessit.h>

namespace {

void send(int socket, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(socket, text.data(), text.size());
        if (count < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "the socket");
        if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
    }
}

// Reads what is there, and waits for something, as `QeXmlInput::descriptor` does. What is decrypted on its way needs
// such a callback.
QeXmlInput inputFrom(int socket) {
    return QeXmlInput::callback([socket](std::span<char> room) {
        for (;;) {
            const ssize_t count = read(socket, room.data(), room.size());
            if (count >= 0) return static_cast<std::size_t>(count);
            if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "the socket");
        }
    });
}

// The other side may have left it out.
const QeCString& textOfLast(const QeXmlReader& reader) {
    const QeXmlAttributeSet& attributes = reader.getLastAttributes();
    const QeXmlAttribute* const text = attributes.find(QeXmlName("text"));
    if (text == attributes.end()) reader.err("There is no text");
    return text->getValue();
}

void answerOne(QeXmlReader& reader, int socket) {
    reader.readElementStart("ask");
    QeXmlStringWriter answer;
    answer.writeSimpleElement("answer", textOfLast(reader) + "!", "", false);
    reader.readElementEnd("ask");
    send(socket, std::move(answer).getString());
}

void printQuestions(const std::filesystem::path& file) {
    try {
        QeXmlReader reader(QeXmlInput::file(file), {.rules = QeXmlRules::Conforming});
        reader.readElementStart("talk");
        while (reader.isElementNext("ask")) {
            reader.readElementStart("ask");
            std::cout << textOfLast(reader) << '\n';
            reader.readElementEnd("ask");
        }
        reader.readElementEnd("talk");
        while (!reader.eof())
            reader.readNextNode();  // throws what is wrong behind the root element
    } catch (const QeXmlInputError& error) {
        std::cerr << error.why() << '\n';  // begins with the file's name
    } catch (const QeXmlParseError& error) {
        std::cerr << file.string() << ':' << error.getLineNumber() << ": " << error.why() << '\n';
    }
}

}  // namespace

int main() {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets) != 0) return 1;
    const auto [client, server] = sockets;
    send(client, "<talk>");
    send(server, "<talk>");
    QeXmlReader questions(QeXmlInput::descriptor(server, "the client")), answers(inputFrom(client));
    questions.readElementStart("talk");
    answers.readElementStart("talk");
    for (const char* text : {"tea", "milk"}) {
        send(client, std::string("<ask text='") + text + "'/>");
        answerOne(questions, server);
        answers.readElementStart("answer");
        std::cout << answers.readElementValue() << "\n";
        answers.readElementEnd("answer");
    }
    close(client);
    close(server);

    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("talk-" + std::to_string(getpid()) + ".xml");
    std::ofstream(file) << "<talk>\n<ask text='tea'/>\n<ask text='milk'/>\n</talk>\n";
    printQuestions(file);
    std::filesystem::remove(file);
    printQuestions(file);  // it is not there any more
}
