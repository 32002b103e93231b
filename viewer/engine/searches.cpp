// What the page draws of a search: which nodes it has seen, and why it found nothing.
#include "capi/mesh.h"
#include "capi/search.h"
#include "hostkit/explain.h"
#include "pathfinder/navmeshinstance.h"
#include "viewer/engine/answers.h"

using namespace ZUNO;
using namespace ZUNO::CInterface;

extern "C" {

/// Leaves "states", a byte for each node. 0: not visited, 1: open, 2: closed.
zuno_status ZUNO_PAGE_EXPORT(zuno_tool_node_states)(zuno_search* search) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Search> open = get(search);
        auto* const world = Pathfinder::NavMeshInstance::getInstance();
        auto* const inspected = world->inspectSearch(open->mId);
        std::vector<std::uint8_t> states(world->getNavMesh()->mNodes.size());
        for (std::uint32_t node = 0; node < states.size(); ++node)
            states[node] = static_cast<std::uint8_t>(inspected->stateOf(node));
        Viewer::leave("states", states);
        return ZUNO_OK;
    });
}

/// Gives the two places where the islands of two points come nearest to each other; NONE when they
/// stand on one, or on none.
zuno_status ZUNO_PAGE_EXPORT(zuno_tool_shores)(zuno_mesh* mesh, const zuno_point* start,
                                               const zuno_point* goal, zuno_point* shores) {
    return guarded(__func__, [&] {
        const auto explanation = HostKit::explain(get(mesh)->view(), pointOf(start, "the start"),
                                                  pointOf(goal, "the goal"));
        if (!explanation.mStartShore || !explanation.mGoalShore)
            return ZUNO_NONE;
        shores[0] = toC(explanation.mStartShore.mPosition);
        shores[1] = toC(explanation.mGoalShore.mPosition);
        return ZUNO_OK;
    });
}
}
