#include "attempt.h"

#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include <tessit/errors/xml_error.h>

#include "input.h"

bool attempt(Console& console, std::string_view file, ExitStatus refusal, const std::function<void()>& read) {
    const std::string_view name = displayName(file);
    const auto complainOfMemory = [&] { console.complain(name, "not enough memory", ExitStatus::Failed); };
    try {
        read();
        return true;
    } catch (const QeXmlParseError& error) {
        const QeCString source = error.getSourceFile();
        console.complain(source.empty() ? name : std::string_view(source), error, refusal);
    } catch (const QeXmlInputError& failure) {
        console.complain(name, failure.getReason(), ExitStatus::Failed);
    } catch (const InputError& failure) {
        console.complain(name, std::generic_category().message(failure.error), ExitStatus::Failed);
    } catch (const std::bad_alloc&) {
        complainOfMemory();
    } catch (const std::length_error&) {  // more than any program can have
        complainOfMemory();
    }
    return false;
}
