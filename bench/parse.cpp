// From bytes to events, touching every name and text.

#include "Contest.h"
#include "Lum.h"
#ifdef LUM_PEER_EXPAT
#include "peers/Expat.h"
#endif
#ifdef LUM_PEER_LIBXML2
#include "peers/Libxml.h"
#endif

int main(int argc, char* argv[]) {
    using namespace LumBench;
    enter<LumParse>("parse");
#ifdef LUM_PEER_EXPAT
    enter<ExpatParse>("parse");
#endif
#ifdef LUM_PEER_LIBXML2
    enter<LibxmlSax2>("parse");
    enter<LibxmlReader>("parse");
#endif
    return runContest(argc, argv);
}
