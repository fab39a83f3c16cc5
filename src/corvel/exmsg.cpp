#include <corvel/exmsg.h>

Qexmsg::~Qexmsg() = default;

const char* Qexmsg::why() const noexcept {
    return text.data();
}

void Qexmsg::raise() const {
    throw Qexmsg(*this);
}

QeBoundsError::~QeBoundsError() = default;
