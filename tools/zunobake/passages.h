#pragma once

#include "hostkit/meshview.h"
#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/scene.h"

#include <array>
#include <optional>

namespace ZUNO::Tools {

/// A way between two parts of a mesh that is there, and too low or too narrow to be walked.
struct Passage {
    enum class Flaw { LOW, NARROW };

    Flaw mFlaw;
    HostKit::Position mPlace{0, 0, 0}; ///< on its floor, where it is lowest or narrowest
    double mMeasure = 0;               ///< how high or wide it is; a width in whole cells
    double mNeeded = 0;                ///< by the lowest agent, in whole cells
};

/// Looks for what closes the way between parts of a mesh, by making the mesh of the scene again for
/// an agent of two thirds the height, and for one of less than half the radius.
class PassageFinder {
public:
    /// All of them must outlive the finder. `mesh` is the scene's mesh, with y up.
    PassageFinder(const Scene& scene, const BakeSettings& settings, const HostKit::MeshView& mesh);

    /// Returns the passage that nearly leads from a node to one of another island. When there are
    /// several, those that are short are preferred.
    /// Raises what making a mesh raises. Cost: the first call makes the scene's mesh twice.
    std::optional<Passage> find(std::uint32_t from, std::uint32_t to);

private:
    using View = std::optional<HostKit::MeshView>;
    /// What can be walked when an agent is let through more easily; empty when it can't be.
    struct Lenient {
        bool mIsMade = false;
        BakeSettings mSettings;
        View mView;
    };
    struct Sample {
        HostKit::Position mPosition{0, 0, 0};
        std::uint32_t mIsland = 0; ///< of the mesh, or NO_NODE beside it
    };

    Lenient& lenient(Passage::Flaw flaw);
    View bakeLeniently(const BakeSettings& settings) const;
    std::optional<Passage> findIn(const Lenient& lenient, Passage::Flaw flaw, std::uint32_t from,
                                  std::uint32_t to) const;
    std::vector<HostKit::Position> findWay(const HostKit::MeshView& view, std::uint32_t from,
                                           std::uint32_t to) const;
    void appendSamples(const HostKit::Position& from, const HostKit::Position& to,
                       std::vector<Sample>& out) const;
    std::vector<HostKit::Position> findGap(const std::vector<HostKit::Position>& way,
                                           std::uint32_t from) const;
    double costOf(const HostKit::Position& from, const HostKit::Position& to) const;
    double heightAt(HostKit::Position& place, double least) const;

    const Scene& mScene;
    const BakeSettings& mSettings;
    CellSettings mCells;
    const HostKit::MeshView& mMesh;
    std::array<Lenient, 2> mLenient; ///< by flaw
};

} // namespace ZUNO::Tools
