// From a tree to bytes, which are discarded.

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
    enter<LumSave>("save");
#ifdef LUM_PEER_LIBXML2
    enter<LibxmlSave>("save");
#endif
#ifdef LUM_PEER_PUGIXML
    enter<PugixmlSave>("save");
#endif
    return runContest(argc, argv);
}
