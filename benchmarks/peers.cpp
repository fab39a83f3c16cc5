#include <reader.h>

namespace tessit::benchmarks {

AddReaders addTessitReaders, addFloors;

// One line PEER(Name) for each peer that was found when the build was configured.
#define PEER(name) AddReaders add##name##Readers;
#include <peers.inc>
#undef PEER

std::vector<Reader> allReaders() {
    std::vector<Reader> readers;
    addTessitReaders(readers);
#define PEER(name) add##name##Readers(readers);
#include <peers.inc>
#undef PEER
    addFloors(readers);
    return readers;
}

}  // namespace tessit::benchmarks
