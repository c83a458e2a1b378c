#include "Inflate.h"
#include "Names.h"
#include "OwnDocument.h"
#include "Parse.h"
#include "Tree.h"

namespace LumBench {

using OurTree = Tree<lum::LumDocument>;

std::vector<Entry> entries() {
    constexpr const char* label = "lumcommon";
    return {
        {"events", label, make<EventsTrial<Parse, false>>},
        {"events-kept", label, make<EventsTrial<Parse, true>>},
        {"tree", label, make<TreeTrial<OurTree>>},
        {"tree-own", label, make<TreeTrial<Tree<OwnDocument>>>},
        {"save", label, make<SaveTrial<OurTree>>},
        {"walk", label, make<WalkTrial<OurTree>>},
        {"attribute", label, make<AttributeTrial<OurTree, LookUp>>},
        {"names", label, make<NamesTrial>},
        {"inflate", label, make<InflateTrial>},
    };
}

}  // namespace LumBench
