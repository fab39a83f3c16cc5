#include "attempt.h"

#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include <tessit/errors/xml_error.h>

#include "input.h"

namespace {

std::string placeIn(std::string_view file, std::uint64_t line, std::uint64_t column) {
    return std::string(file) + ':' + std::to_string(line) + ':' + std::to_string(column);
}

void complainOfRefusal(Console& console, std::string_view name, const QeXmlParseError& error, ExitStatus refusal) {
    const auto orName = [name](std::string_view source) { return source.empty() ? name : source; };
    const QeCString source = error.getSourceFile();
    console.complain(placeIn(orName(source), error.getLineNumber(), error.getColumnNumber()), error.what(), refusal);
    if (const QeXmlNote* note = error.getNote())
        console.note(placeIn(orName(note->place.sourceFile), note->place.line, note->place.column), note->text);
}

}  // namespace

bool attempt(Console& console, std::string_view file, ExitStatus refusal, const std::function<void()>& read) {
    const std::string_view name = displayName(file);
    const auto complainOfMemory = [&] { console.complain(name, "not enough memory", ExitStatus::Failed); };
    try {
        read();
        return true;
    } catch (const QeXmlParseError& error) {
        complainOfRefusal(console, name, error, refusal);
    } catch (const InputError& failure) {
        console.complain(name, std::generic_category().message(failure.error), ExitStatus::Failed);
    } catch (const std::bad_alloc&) {
        complainOfMemory();
    } catch (const std::length_error&) {  // more than any program can have
        complainOfMemory();
    }
    return false;
}
