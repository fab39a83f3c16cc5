#include "attempt.h"

#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include <tessit/errors/xml_error.h>

#include "input.h"

namespace {

std::string positionIn(std::string_view file, const QeXmlParseError& error) {
    return std::string(file) + ':' + std::to_string(error.getLineNumber()) + ':' +
           std::to_string(error.getColumnNumber());
}

}  // namespace

bool attempt(Console& console, std::string_view file, ExitStatus refusal, const std::function<void()>& read) {
    const std::string_view name = displayName(file);
    const auto complainOfMemory = [&] { console.complain(name, "not enough memory", ExitStatus::Failed); };
    try {
        read();
        return true;
    } catch (const QeXmlParseError& error) {
        console.complain(positionIn(name, error), error.what(), refusal);
    } catch (const InputError& failure) {
        console.complain(name, std::generic_category().message(failure.error), ExitStatus::Failed);
    } catch (const std::bad_alloc&) {
        complainOfMemory();
    } catch (const std::length_error&) {  // more than any program can have
        complainOfMemory();
    }
    return false;
}
