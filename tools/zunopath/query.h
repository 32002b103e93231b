#pragma once

#include "common/math/vec2.h"
#include "common/math/vec3.h"
#include "tools/output/toolmain.h"
#include "tools/picture/meshpicture.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace ZUNO::Tools {

/// A question to the world.
struct Query {
    enum class Kind { PATH, RAY, BLOCKED, HEIGHT, BOUNDS };

    Kind mKind = Kind::BOUNDS;
    std::vector<float> mFrom; ///< three coordinates, or two for what is asked in the plane
    std::vector<float> mTo;
    unsigned int mBudget = 0; ///< expansions per call; 0: all in one
};

/// What the world said.
struct Answer {
    nlohmann::ordered_json mJson;
    std::string mText;
    ExitStatus mStatus = STATUS_OK; ///< STATUS_NOTHING: no path, or a point on no node
    DrawnPath mPath;                ///< of a path query
};

/// A point's coordinates, as a list.
nlohmann::ordered_json coordinatesOf(const Common::Math::Vec2<float>& p);
nlohmann::ordered_json coordinatesOf(const Common::Math::Vec3<float>& p);

/// "x,y" or "x,y,z": `least` to `most` numbers. Raises a std::invalid_argument that says what was
/// expected.
std::vector<float> parsePoint(const std::string& text, std::size_t least, std::size_t most);

/// The words of a script's line, without its comment, which begins with a "#".
std::vector<std::string> splitLine(const std::string& line);

/// Reads a query from its words: "path FROM TO [BUDGET]", "ray FROM TO", "blocked AT",
/// "height AT", "bounds". Raises a std::invalid_argument that says what was expected.
Query parseQuery(const std::vector<std::string>& words);

/// Asks the world that runs. Raises what the exports raise.
Answer ask(const Query& query);

} // namespace ZUNO::Tools
