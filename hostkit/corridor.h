#pragma once

#include "hostkit/chainportals.h"
#include "hostkit/surface.h"

namespace ZUNO::HostKit {

/// What a moving character keeps of its path: the nodes from where it is to where it wants to get.
/// It is moved, and pushed, along the surface; the corridor follows, gives the next corner to steer
/// to, and says when only a new search helps.
/// Keeps its lists: once they have grown, no memory is taken any more.
/// Thread: each character its own; all may share the view, which must outlive them.
class Corridor {
public:
    explicit Corridor(const MeshView& view) : mView(view), mPortals(view) {
        mAhead.reserve(lookAhead);
        mPortals.reserve(lookAhead);
        mFunnel.reserve(lookAhead);
    }

    /// Puts the character on a place, without a path.
    void place(const Place& position);
    /// Begins to follow a path: a chain from the character's node, or from one that it has left
    /// for a neighbour since the search began, to a goal in its last node. Returns false, and
    /// changes nothing, for a chain that the character doesn't stand at.
    bool follow(const std::vector<std::uint32_t>& chain, const Position& goal);

    const Place& position() const { return mPosition; }
    const Place& goal() const { return mGoal; }
    /// The nodes from the goal's back to the character's; empty without a path.
    const std::vector<std::uint32_t>& nodes() const { return mNodes; }

    bool hasPath() const { return !mNodes.empty(); }
    /// Whether the character was pushed off its path, or the goal moved to where the path doesn't
    /// lead, or so far about that a search may find a shorter way. What is left of the path stays
    /// of use until `follow` brings a new one.
    bool needsSearch() const { return mNeedsSearch; }
    /// Whether the character stands within the distance of the goal in the plane, on its floor.
    bool isAtGoal(float within) const;

    /// Returns where to steer: the next place where the way to the goal bends, or the goal; the
    /// character's own place without a path. A bend nearer than `reached` counts as passed once
    /// one can walk straight on from there. Looks some way ahead.
    Position nextCorner(float reached);
    /// Moves the character towards a point, along the surface and its walls.
    void move(const Position& target);
    /// Moves the goal, along the surface where that is possible. Otherwise the corridor keeps its
    /// end, and needs a search.
    void moveGoal(const Position& target);
    /// Shortens the corridor where one can walk straight to a point farther on; worth a call every
    /// few frames after pushes.
    void shorten();

private:
    static constexpr std::size_t lookAhead = 32; ///< nodes

    /// The nodes ahead, the character's first, and no more than `lookAhead`.
    std::span<const std::uint32_t> ahead();
    PlanePoint aimOf(std::span<const std::uint32_t> nodes) const;
    void passBorders();
    bool canSkip(std::span<const std::uint32_t> behind, const Position& next) const;
    void makeRoom(const SurfaceMove& walked);
    void enter(const SurfaceMove& walked);
    void loseWay();

    const MeshView& mView;
    ChainPortals mPortals;
    Funnel mFunnel;
    std::vector<std::uint32_t> mNodes; ///< the goal's first, so that the front is cheap to change
    std::vector<std::uint32_t> mAhead;
    Place mPosition;
    Place mGoal;
    double mGoalWander = 0; ///< how far the goal moved since the last search
    bool mNeedsSearch = false;
};

} // namespace ZUNO::HostKit
