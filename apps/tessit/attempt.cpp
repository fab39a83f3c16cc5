#include "attempt.h"

#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include <tessit/errors/xml_error.h>

#include "input.h"

std::string placeText(const QeXmlPlace& place) {
    return std::string(place.sourceFile) + ':' + std::to_string(place.position.line) + ':' +
           std::to_string(place.position.column);
}

namespace {

void complainOfRefusal(Console& console, std::string_view name, const QeXmlParseError& error, ExitStatus refusal) {
    QeXmlPlace place{error.getSourceFile(), error.getPosition()};
    if (place.sourceFile.empty()) place.sourceFile = QeCString(name);
    console.complain(placeText(place), error.what(), refusal);
    if (const QeXmlNote* note = error.getNote()) console.note(placeText(note->place), note->text);
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
