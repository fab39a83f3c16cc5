#include <contestants.h>

namespace tessit::benchmarks {

// Each is defined in the source of its own library.
using AddContestants = void(Contestants&);
AddContestants addTessit, addFloors;

// One line PEER(Name) for each peer that was found when the build was configured.
#define PEER(name) AddContestants add##name;
#include <peers.inc>
#undef PEER

Contestants allContestants() {
    Contestants all;
    addTessit(all);
#define PEER(name) add##name(all);
#include <peers.inc>
#undef PEER
    addFloors(all);
    return all;
}

}  // namespace tessit::benchmarks
