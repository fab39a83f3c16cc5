#include "beside_resolver.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>
#include <vector>

#include "input.h"

namespace fs = std::filesystem;

namespace {

// Why an entity is not read.
struct NotBeside {
    const char* reason;
};

constexpr NotBeside LeadsOut{"it is not in the document's folder"};

bool isLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

// Whether it begins with the name of a scheme and a colon, as "http:" does.
bool hasScheme(std::string_view uri) {
    const auto isNamePart = [](char byte) {
        return isLetter(byte) || (byte >= '0' && byte <= '9') || byte == '+' || byte == '-' || byte == '.';
    };
    const auto end = std::find_if_not(uri.begin(), uri.end(), isNamePart);
    return !uri.empty() && isLetter(uri.front()) && end != uri.end() && *end == ':';
}

// The byte that "%20" and its like in front of the text stand for.
std::optional<char> escapedByte(std::string_view text) {
    unsigned value = 0;
    if (text.size() < 3 || text[0] != '%') return std::nullopt;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 3, value, 16);
    if (error != std::errc() || end != text.data() + 3 || value == 0) return std::nullopt;  // 0 ends a file's name
    return static_cast<char>(value);
}

std::string unescaped(std::string_view uri) {
    std::string path;
    while (!uri.empty()) {
        const std::optional<char> byte = escapedByte(uri);
        path += byte.value_or(uri.front());
        uri.remove_prefix(byte ? 3 : 1);
    }
    return path;
}

fs::path withoutLinks(const fs::path& path) {
    std::error_code error;
    fs::path result = fs::canonical(path, error);
    if (error) throw InputError{error.value()};
    return result;
}

bool isIn(const fs::path& folder, const fs::path& file) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

}  // namespace

BesideResolver::BesideResolver(Console& notes, std::string_view document)
    : console(notes), hasFolder(document != StandardInput), folder(fs::path(document).parent_path()) {}

bool BesideResolver::resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) {
    const auto leaveUnread = [&](const std::string& reason) {
        const std::string name(id.getSystemId());
        console.note(id.getPlace(), '"' + name + "\" was not read: " + reason);
        return false;
    };
    try {
        const fs::path file = folder / pathInFolder(id);
        const std::vector<unsigned char> bytes = readInput(targetInFolder(file).native());
        entity.setBytes(QeCString(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
        entity.setName(file.c_str());
        return true;
    } catch (const NotBeside& failure) {
        return leaveUnread(failure.reason);
    } catch (const InputError& failure) {
        return leaveUnread(std::generic_category().message(failure.error));
    }
}

// Where the identifier leads, by its letters alone: nothing is asked of a folder outside.
fs::path BesideResolver::pathInFolder(const QeXmlExternalId& id) const {
    if (!hasFolder) throw NotBeside{"nothing stands beside standard input"};
    const fs::path path(unescaped(id.getSystemId()));
    if (hasScheme(id.getSystemId()) || path.is_absolute()) throw LeadsOut;
    const fs::path base = fs::path(std::string_view(id.getBase())).lexically_relative(folder);
    fs::path inFolder = (base.parent_path() / path).lexically_normal();
    if (inFolder.begin() != inFolder.end() && *inFolder.begin() == "..") throw LeadsOut;
    return inFolder;
}

// The file without links: what they lead to counts. A pipe or a device could keep the reader waiting.
fs::path BesideResolver::targetInFolder(const fs::path& file) const {
    std::error_code ignored;
    fs::path target = withoutLinks(file);
    if (!isIn(withoutLinks(folder.empty() ? "." : folder), target)) throw LeadsOut;
    if (!fs::is_regular_file(target, ignored)) throw NotBeside{"it is not a file"};
    return target;
}
