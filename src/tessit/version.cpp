#include <tessit/version.h>

namespace tessit {

int version() noexcept {
    return TESSIT_VERSION;
}

const char* versionString() noexcept {
    return TESSIT_VERSION_STRING;
}

}  // namespace tessit
