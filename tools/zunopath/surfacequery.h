#pragma once

#include "hostkit/straightpath.h"
#include "tools/zunopath/query.h"

#include <optional>
#include <variant>

namespace ZUNO::NavMesh {
class NavMeshContainer;
} // namespace ZUNO::NavMesh

namespace ZUNO::Tools {

/// A question that the host's view of the mesh answers, and not the world.
struct SurfaceQuery {
    enum class Kind { NEAREST, EXPLAIN, HEIGHT };

    Kind mKind = Kind::NEAREST;
    HostKit::Position mFrom{0, 0, 0};
    HostKit::Position mTo{0, 0, 0};
    float mRadius = std::numeric_limits<float>::infinity(); ///< for what is nearest
    float mHeight = std::numeric_limits<float>::infinity();
};

/// How the paths are straightened that are asked for from now on; nothing: not at all.
struct StraightChoice {
    std::optional<HostKit::StraightForm> mForm;
};

using AnyQuery = std::variant<Query, SurfaceQuery, StraightChoice>;

/// Reads what `parseQuery` reads, and "nearest AT [RADIUS [HEIGHT]]", "explain FROM TO", "height
/// AT" with three coordinates, "straight improved", "straight plain", "straight off". Raises a
/// std::invalid_argument that says what was expected.
AnyQuery parseAnyQuery(const std::vector<std::string>& words);

/// Answers questions to the world that runs and to the host's view of its mesh, which is made when
/// the first question needs it.
class Questioner {
public:
    /// With a step above 0 straight paths have places along them, too, for pictures.
    explicit Questioner(const NavMesh::NavMeshContainer& mesh, float trailStep = 0)
        : mMesh(mesh), mTrailStep(trailStep) {}

    /// Nothing for a choice, which has no answer.
    std::optional<Answer> ask(const AnyQuery& query);

private:
    const HostKit::MeshView& view();
    HostKit::PathStraightener& straightener();
    void straighten(Answer& answer);
    void addReason(Answer& answer);
    Answer askSurface(const SurfaceQuery& query);
    Answer askNearest(const SurfaceQuery& query);
    Answer askExplain(const SurfaceQuery& query);
    Answer askHeight(const SurfaceQuery& query);

    const NavMesh::NavMeshContainer& mMesh;
    float mTrailStep;
    StraightChoice mChoice;
    std::optional<HostKit::MeshView> mView;
    std::optional<HostKit::PathStraightener> mStraightener;
};

} // namespace ZUNO::Tools
