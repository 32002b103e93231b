#pragma once

#include "navmesh/meshdefects.h"

namespace ZUNO::NavMesh {

/// One look over a mesh. Each check streams what it finds; once the listener has had enough,
/// nothing is found any more.
class Examination {
protected:
    Examination(const NavMeshContainer& mesh, DefectListener& listener)
        : mMesh(mesh), mListener(listener) {}

    template <typename... Pieces>
    void found(const Pieces&... pieces) {
        mIsClean = false;
        if (!mGoesOn)
            return;
        Common::Debug::ReportText text;
        (text << ... << pieces);
        mGoesOn = mListener.onDefect(text.text());
    }

    const NavMeshContainer& mMesh;
    DefectListener& mListener;
    bool mIsClean = true;
    bool mGoesOn = true;
};

} // namespace ZUNO::NavMesh
