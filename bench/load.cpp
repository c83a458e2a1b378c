// From bytes to a tree that can be walked, including the destruction of the tree.

#include "Contest.h"
#include "Lum.h"
#ifdef LUM_PEER_LIBXML2
#include "peers/Libxml.h"
#endif
#ifdef LUM_PEER_PUGIXML
#include "peers/Pugixml.h"
#endif

int main(int argc, char* argv[]) {
    using namespace LumBench;
    enter<LumLoad>("load");
#ifdef LUM_PEER_LIBXML2
    enter<LibxmlLoad>("load");
#endif
#ifdef LUM_PEER_PUGIXML
    enter<PugixmlLoad>("load");
#endif
    return runContest(argc, argv);
}
