#pragma once

#include "common/report/reporttext.h"
#include "navmesh/meshdefects.h"

namespace ZUNO::NavMesh {

/// One look over a mesh. Each check hands what it finds to `found`, piece by piece; once the
/// listener has heard enough, it is told nothing more.
/// Lifetime: mesh and listener must outlive this object.
class Examination {
protected:
    Examination(const NavMeshContainer& mesh, const DefectListener& listener)
        : mMesh(mesh), mListener(listener) {}

    template <typename... Pieces>
    void found(const Pieces&... pieces) {
        mIsClean = false;
        if (!mGoesOn)
            return;
        Common::Debug::ReportText text;
        (text << ... << pieces);
        mGoesOn = mListener(text.text());
    }

    const NavMeshContainer& mMesh;
    const DefectListener& mListener;
    bool mIsClean = true;
    bool mGoesOn = true;
};

} // namespace ZUNO::NavMesh
