#include "document_walk.h"

bool DocumentWalk::next() {
    if (!reader.eof()) {
        reader.readNextNode();
        return true;
    }
    const QeCString open = reader.getOpenElement();
    if (!open.empty()) reader.err("Missing end tag for " + open);
    return false;
}
