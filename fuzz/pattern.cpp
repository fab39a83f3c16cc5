// A line for a pattern, then the value that it is held against. It matches or not,
// both times the same, or cannot be used; the fuzzer's own limit ends the run when
// that takes long.

#include <corvel/exmsg.h>
#include <tessit/schema/xml_validator.h>

#include "fuzzing.h"

using tessit::fuzz::require;

namespace {

enum class Outcome { Found, NotFound, Unusable };

Outcome check(QeXmlValidator& validator, const QeCString& value, const QeCString& pattern) {
    try {
        return validator.checkPattern(value, pattern) ? Outcome::Found : Outcome::NotFound;
    } catch (const Qexmsg&) {
        return Outcome::Unusable;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tessit::fuzz::Input input(data, size);
    const QeCString pattern(input.line()), value(input.rest());
    QeXmlValidator validator("value");
    const Outcome outcome = check(validator, value, pattern);
    require(validator.isValid() == (outcome != Outcome::NotFound), "what cannot be used does not count");
    require(check(validator, value, pattern) == outcome, "the same outcome again");
    return 0;
}
