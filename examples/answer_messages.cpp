// Two programs that talk in XML over a socket: each message is answered as soon as its last byte is there, and the
// document that they stand in goes on as long as the two do.

#include <cerrno>
#include <iostream>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

#include <tessit/tessit.h>

namespace {

void send(int socket, std::string_view text) {
    if (write(socket, text.data(), text.size()) < 0)
        throw std::system_error(errno, std::generic_category(), "the socket");
}

// Reads from the socket what is there, and waits for something.
QeXmlInput inputFrom(int socket) {
    return QeXmlInput::callback([socket](std::span<char> room) {
        const ssize_t count = read(socket, room.data(), room.size());
        if (count < 0) throw std::system_error(errno, std::generic_category(), "the socket");
        return static_cast<std::size_t>(count);
    });
}

void answerOne(QeXmlReader& reader, int socket) {
    const QeCString text = reader.readElementStart("ask").find(QeXmlName("text"))->getValue();
    reader.readElementEnd("ask");
    send(socket, "<answer>" + std::string(text) + "!</answer>");
}

}  // namespace

int main() {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets) != 0) return 1;
    const auto [client, server] = sockets;
    send(client, "<talk>");
    send(server, "<talk>");
    QeXmlReader questions(inputFrom(server)), answers(inputFrom(client));
    questions.readElementStart("talk");
    answers.readElementStart("talk");
    for (const char* text : {"tea", "milk"}) {
        send(client, std::string("<ask text='") + text + "'/>");
        answerOne(questions, server);
        answers.readElementStart("answer");
        std::cout << answers.readElementValue() << "\n";
        answers.readElementEnd("answer");
    }
    try {
        questions.reset(QeXmlInput::file("no-such-file.xml"));
    } catch (const QeXmlInputError& error) {
        std::cout << error.why() << "\n";
    }
    close(client);
    close(server);
}
