#include "Inflate.h"
#include "Names.h"
#include "OwnDocument.h"
#include "Parse.h"
#include "Tree.h"
#include "Uses.h"

namespace LumBench {

using OurTree = Tree<lum::LumDocument>;

std::vector<Entry> entries() {
    constexpr const char* label = "lumcommon";
    std::vector<Entry> all{
        {"events", label, make<EventsTrial<Parse, false>>},
        {"events", "lumcommon conforming", make<EventsTrial<ConformingParse, false>>},
        {"events-kept", label, make<EventsTrial<Parse, true>>},
        {"tree", label, make<TreeTrial<OurTree>>},
        {"tree-own", label, make<TreeTrial<Tree<OwnDocument>>>},
        {"save", label, make<SaveTrial<OurTree>>},
        {"walk", label, make<WalkTrial<OurTree>>},
        {"attribute", label, make<AttributeTrial<OurTree, LookUp>>},
        {"names", label, make<NamesTrial>},
        {"inflate", label, make<InflateTrial>},
    };
    for (const Entry& entry : useEntries()) all.push_back(entry);
    return all;
}

}  // namespace LumBench
