// Any bytes, in a block of exactly their size: read in place they give the same
// nodes, or the same error, as read from a stream.

#include "fuzzing.h"
#include "support/documents.h"

using namespace tessit::test;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Document document(tessit::fuzz::textOf(data, size));
    tessit::fuzz::require(trace(document, Source::Span) == trace(document, Source::Stream),
                          "the same nodes from memory and from a stream");
    return 0;
}
