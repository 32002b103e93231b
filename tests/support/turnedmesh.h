#pragma once

#include "worlds/meshmodel.h"

#include <string>

namespace ZUNO::Tests {

/// The text of a mesh whose axes lie askew, by numbers that no float holds exactly.
inline std::string turned(const Worlds::MeshModel& model) {
    std::string text = model.toXML("turned");
    for (const auto& [what, by] :
         {std::pair("<xaxis>1/0/0<", "<xaxis>0.8/0/0.6<"), {"<yaxis>0/0/1<", "<yaxis>-0.6/0/0.8<"}})
        text.replace(text.find(what), std::string(what).size(), by);
    return text;
}

} // namespace ZUNO::Tests
