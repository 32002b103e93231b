#include "hostkit/chain.h"

namespace ZUNO::HostKit {

bool ChainFinder::find(const Position& start, const Position& goal,
                       const std::vector<Position>& waypoints, std::vector<std::uint32_t>& chain) {
    chain.clear();
    mCandidates.assign(1, {mView.findNode(start), 0});
    if (mCandidates[0].mNode == NO_NODE)
        return false;
    std::size_t first = 0;
    for (const Position& waypoint : waypoints) {
        const std::size_t next = mCandidates.size();
        extend(first, waypoint);
        first = next;
        if (first == mCandidates.size())
            return false;
    }
    const std::uint32_t last = mView.findNode(goal);
    std::size_t at = first;
    while (at < mCandidates.size() && mCandidates[at].mNode != last)
        ++at;
    if (at == mCandidates.size())
        return false;
    chain.resize(waypoints.size() + 1);
    for (std::size_t i = chain.size(); i-- > 0; at = mCandidates[at].mBefore)
        chain[i] = mCandidates[at].mNode;
    return true;
}

void ChainFinder::extend(std::size_t first, const Position& waypoint) {
    const std::size_t last = mCandidates.size();
    for (std::size_t i = first; i < last; ++i)
        for (const MeshView::Link& link : mView.linksOf(mCandidates[i].mNode)) {
            if (!(mView.centreOf(link.mTarget) == waypoint))
                continue;
            const bool isKnown = std::any_of(
                mCandidates.begin() + static_cast<std::ptrdiff_t>(last), mCandidates.end(),
                [&](const Candidate& known) { return known.mNode == link.mTarget; });
            if (!isKnown)
                mCandidates.push_back({link.mTarget, static_cast<std::uint32_t>(i)});
        }
}

} // namespace ZUNO::HostKit
