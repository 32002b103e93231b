#include "tools/zunopath/query.h"

#include "pathfinder/interface.h"
#include "tools/output/table.h"
#include "tools/output/wording.h"
#include "tools/zunopath/answertext.h"

#include <charconv>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace ZUNO::Tools {

using Common::Math::Vec2;
using Common::Math::Vec3;
using nlohmann::ordered_json;
using Pathfinder::Interface;

namespace {

Vec2<float> planeOf(const std::vector<float>& point) {
    return {point[0], point[1]};
}
Vec3<float> spaceOf(const std::vector<float>& point) {
    return {point[0], point[1], point[2]};
}

Answer askPath(const Query& query) {
    Answer answer;
    answer.mPath.mStart = spaceOf(query.mFrom);
    answer.mPath.mGoal = spaceOf(query.mTo);
    const int search = Interface::initPathSearch(answer.mPath.mStart, answer.mPath.mGoal);
    if (search == Pathfinder::noSearch) {
        answer.mStatus = STATUS_NOTHING;
        answer.mText = "off the mesh";
        answer.mJson = {{"query", "path"}, {"result", "off the mesh"}};
        return answer;
    }
    const unsigned int budget =
        query.mBudget != 0 ? query.mBudget : std::numeric_limits<unsigned int>::max();
    int result = Pathfinder::PATH_RUNNING;
    unsigned int calls = 0;
    for (; result == Pathfinder::PATH_RUNNING; ++calls)
        result = Interface::runPathSearch(search, budget);
    answer.mPath.mIsFound = result == Pathfinder::PATH_FOUND;
    answer.mStatus = answer.mPath.mIsFound ? STATUS_OK : STATUS_NOTHING;
    ordered_json waypoints = ordered_json::array();
    Vec3<float> waypoint;
    while (Interface::getNextWaypoint(search, waypoint)) {
        answer.mPath.mWaypoints.push_back(waypoint);
        waypoints.push_back(coordinatesOf(waypoint));
    }
    const float cost = Interface::getPathCost(search);
    Interface::closePathSearch(search);
    answer.mJson = {{"query", "path"},
                    {"result", answer.mPath.mIsFound ? "found" : "no path"},
                    {"calls", calls}};
    if (!answer.mPath.mIsFound) {
        answer.mText = "no path";
        return answer;
    }
    answer.mJson["cost"] = cost;
    answer.mJson["waypoints"] = waypoints;
    answer.mText = "found: cost " + numberText(cost) + ", " +
                   std::to_string(answer.mPath.mWaypoints.size()) + " waypoints, " +
                   std::to_string(calls) + (calls == 1 ? " call\n" : " calls\n") +
                   wayText("waypoint", answer.mPath.mStart, answer.mPath.mWaypoints);
    return answer;
}

Answer askRay(const Query& query) {
    float distance = 0;
    if (query.mFrom.size() == 3) {
        Common::Geom::Ray3D<float, float> ray(spaceOf(query.mFrom), spaceOf(query.mTo));
        Interface::traceRay(ray);
        distance = ray.mHitDistance;
    } else {
        Common::Geom::Ray2D<float, float> ray(planeOf(query.mFrom), planeOf(query.mTo));
        Interface::traceRay(ray);
        distance = ray.mHitDistance;
    }
    Answer answer;
    const bool isHit = distance != Pathfinder::noHit;
    answer.mJson = {{"query", "ray"}, {"hit", isHit}};
    if (isHit)
        answer.mJson["distance"] = distance;
    answer.mText = isHit ? "hit at " + lengthText(distance) : "no hit";
    return answer;
}

Answer askBlocked(const Query& query) {
    const bool isBlocked = Interface::isBlocked(planeOf(query.mFrom));
    Answer answer;
    answer.mJson = {{"query", "blocked"}, {"blocked", isBlocked}};
    answer.mText = isBlocked ? "blocked" : "free";
    return answer;
}

Answer askHeight(const Query& query) {
    const float height = Interface::getGroundHeight(planeOf(query.mFrom));
    Answer answer;
    answer.mJson = {{"query", "height"}, {"height", nullptr}};
    if (height == Pathfinder::noGround) {
        answer.mStatus = STATUS_NOTHING;
        answer.mText = "no ground";
        return answer;
    }
    answer.mJson["height"] = height;
    answer.mText = lengthText(height);
    return answer;
}

Answer askBounds() {
    Vec2<float> min;
    Vec2<float> max;
    Interface::getBoundingRectangle(min, max);
    Answer answer;
    answer.mJson = {{"query", "bounds"}, {"min", coordinatesOf(min)}, {"max", coordinatesOf(max)}};
    answer.mText = textOf(min) + " to " + textOf(max) + " units";
    return answer;
}

} // namespace

ordered_json coordinatesOf(const Vec2<float>& p) {
    return {p.mX, p.mY};
}

ordered_json coordinatesOf(const Vec3<float>& p) {
    return {p.mX, p.mY, p.mZ};
}

std::vector<float> parsePoint(const std::string& text, std::size_t least, std::size_t most) {
    std::vector<float> numbers;
    const char* position = text.data();
    const char* const end = position + text.size();
    bool isWhole = false;
    while (!isWhole && numbers.size() <= most) {
        float number = 0;
        const auto [behind, error] = std::from_chars(position, end, number);
        if (error != std::errc())
            break;
        numbers.push_back(number);
        isWhole = behind == end;
        if (!isWhole && *behind != ',')
            break;
        position = behind + 1;
    }
    if (!isWhole || numbers.size() < least || numbers.size() > most)
        throw std::invalid_argument(std::string("expected ") +
                                    (least == 3 ? "x,y,z" : (most == 3 ? "x,y or x,y,z" : "x,y")) +
                                    " instead of '" + shown(text) + "'");
    return numbers;
}

std::vector<std::string> splitLine(const std::string& line) {
    std::istringstream stream(line.substr(0, line.find('#')));
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

Query parseQuery(const std::vector<std::string>& words) {
    const std::string kind = words.empty() ? "" : words[0];
    const auto require = [&](std::size_t least, std::size_t most, const char* usage) {
        if (words.size() - 1 < least || words.size() - 1 > most)
            throw std::invalid_argument(std::string("expected '") + usage + "'");
    };
    Query query;
    if (kind == "path") {
        require(2, 3, "path X,Y,Z X,Y,Z [BUDGET]");
        query = {Query::Kind::PATH, parsePoint(words[1], 3, 3), parsePoint(words[2], 3, 3), 0};
        if (words.size() == 4) {
            const std::string& budget = words[3];
            const auto [end, error] =
                std::from_chars(budget.data(), budget.data() + budget.size(), query.mBudget);
            if (error != std::errc() || end != budget.data() + budget.size() || query.mBudget == 0)
                throw std::invalid_argument("expected a budget of 1 or more instead of '" +
                                            shown(budget) + "'");
        }
    } else if (kind == "ray") {
        require(2, 2, "ray X,Y X,Y' or 'ray X,Y,Z X,Y,Z");
        query = {Query::Kind::RAY, parsePoint(words[1], 2, 3), parsePoint(words[2], 2, 3), 0};
        if (query.mFrom.size() != query.mTo.size())
            throw std::invalid_argument("expected both ends of the ray with two coordinates, or "
                                        "both with three");
    } else if (kind == "blocked" || kind == "height") {
        require(1, 1, kind == "blocked" ? "blocked X,Y" : "height X,Y");
        query.mKind = kind == "blocked" ? Query::Kind::BLOCKED : Query::Kind::HEIGHT;
        query.mFrom = parsePoint(words[1], 2, 2);
    } else if (kind == "bounds") {
        require(0, 0, "bounds");
    } else {
        throw std::invalid_argument("expected path, ray, blocked, height or bounds instead of '" +
                                    shown(kind) + "'" +
                                    suggestion(kind, {"path", "nearest", "explain", "ray",
                                                      "blocked", "height", "bounds", "straight"}));
    }
    return query;
}

Answer ask(const Query& query) {
    switch (query.mKind) {
    case Query::Kind::PATH:
        return askPath(query);
    case Query::Kind::RAY:
        return askRay(query);
    case Query::Kind::BLOCKED:
        return askBlocked(query);
    case Query::Kind::HEIGHT:
        return askHeight(query);
    case Query::Kind::BOUNDS:
        break;
    }
    return askBounds();
}

} // namespace ZUNO::Tools
