#include "tools/zunopath/surfacequery.h"

#include "hostkit/explain.h"
#include "hostkit/pathpoints.h"
#include "navmesh/navmeshcontainer.h"
#include "tools/output/wording.h"
#include "tools/zunopath/answertext.h"

#include <charconv>
#include <stdexcept>

namespace ZUNO::Tools {

using HostKit::Explanation;
using HostKit::Place;
using HostKit::Position;
using HostKit::StraightForm;
using nlohmann::ordered_json;

namespace {

Position positionOf(const std::string& text) {
    const std::vector<float> numbers = parsePoint(text, 3, 3);
    return {numbers[0], numbers[1], numbers[2]};
}

float reachOf(const std::string& text) {
    float reach = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), reach);
    if (error != std::errc() || end != text.data() + text.size() || !(reach >= 0))
        throw std::invalid_argument("expected a distance of 0 or more instead of '" + shown(text) +
                                    "'");
    return reach;
}

SurfaceQuery parseNearest(const std::vector<std::string>& words) {
    if (words.size() < 2 || words.size() > 4)
        throw std::invalid_argument("expected 'nearest X,Y,Z [RADIUS [HEIGHT]]'");
    SurfaceQuery query{SurfaceQuery::Kind::NEAREST, positionOf(words[1])};
    if (words.size() > 2)
        query.mRadius = reachOf(words[2]);
    if (words.size() > 3)
        query.mHeight = reachOf(words[3]);
    return query;
}

StraightChoice parseChoice(const std::vector<std::string>& words) {
    const std::string name = words.size() == 2 ? words[1] : "";
    if (name == "improved")
        return {StraightForm::IMPROVED};
    if (name == "plain")
        return {StraightForm::PLAIN};
    if (name == "off")
        return {};
    throw std::invalid_argument("expected 'straight improved', 'straight plain' or 'straight off'");
}

ordered_json json(const Place& place) {
    return {{"node", place.mNode}, {"position", coordinatesOf(place.mPosition)}};
}
ordered_json json(const HostKit::NearestPlace& place) {
    ordered_json json = Tools::json(static_cast<const Place&>(place));
    json["distance"] = place.mDistance;
    return json;
}
ordered_json json(const Explanation::End& end) {
    ordered_json json = {{"node", nullptr}};
    if (end.mNode != HostKit::NO_NODE)
        json = {{"node", end.mNode}, {"island", end.mIsland}, {"islandSize", end.mIslandSize}};
    if (end.mFloor) {
        json["floor"] = Tools::json(end.mFloor);
        json["above"] = end.mAbove;
    }
    if (end.mNearest)
        json["nearest"] = Tools::json(end.mNearest);
    return json;
}

const char* nameOf(Explanation::Answer answer) {
    switch (answer) {
    case Explanation::Answer::POSSIBLE:
        return "possible";
    case Explanation::Answer::OFF_MESH:
        return "off the mesh";
    case Explanation::Answer::OTHER_ISLAND:
        return "other island";
    case Explanation::Answer::ONLY_ONE_WAY:
        break;
    }
    return "only one way";
}

} // namespace

AnyQuery parseAnyQuery(const std::vector<std::string>& words) {
    const std::string kind = words.empty() ? "" : words[0];
    if (kind == "nearest")
        return parseNearest(words);
    if (kind == "straight")
        return parseChoice(words);
    if (kind == "explain") {
        if (words.size() != 3)
            throw std::invalid_argument("expected 'explain X,Y,Z X,Y,Z'");
        return SurfaceQuery{SurfaceQuery::Kind::EXPLAIN, positionOf(words[1]),
                            positionOf(words[2])};
    }
    if (kind == "height" && words.size() == 2 && parsePoint(words[1], 2, 3).size() == 3)
        return SurfaceQuery{SurfaceQuery::Kind::HEIGHT, positionOf(words[1])};
    return parseQuery(words);
}

std::optional<Answer> Questioner::ask(const AnyQuery& query) {
    if (const auto* const choice = std::get_if<StraightChoice>(&query)) {
        mChoice = *choice;
        return {};
    }
    if (const auto* const surface = std::get_if<SurfaceQuery>(&query))
        return askSurface(*surface);
    Answer answer = Tools::ask(std::get<Query>(query));
    if (std::get<Query>(query).mKind == Query::Kind::PATH && !answer.mPath.mIsFound)
        addReason(answer);
    else if (mChoice.mForm.has_value() && answer.mPath.mIsFound)
        straighten(answer);
    return answer;
}

const HostKit::MeshView& Questioner::view() {
    if (!mView.has_value())
        mView.emplace(mMesh);
    return *mView;
}

HostKit::PathStraightener& Questioner::straightener() {
    if (!mStraightener.has_value())
        mStraightener.emplace(view());
    return *mStraightener;
}

void Questioner::addReason(Answer& answer) {
    const Answer reason =
        askExplain({SurfaceQuery::Kind::EXPLAIN, answer.mPath.mStart, answer.mPath.mGoal});
    answer.mText += '\n' + reason.mText;
    for (const char* const key : {"start", "goal", "text"})
        answer.mJson[key] = reason.mJson[key];
}

void Questioner::straighten(Answer& answer) {
    HostKit::StraightPath path;
    if (!straightener().straighten(answer.mPath.mStart, answer.mPath.mGoal, answer.mPath.mWaypoints,
                                   *mChoice.mForm, path))
        throw std::runtime_error("the path is none on the host's view of the mesh");
    ordered_json corners = ordered_json::array();
    for (const HostKit::StraightPath::Corner& corner : path.mCorners) {
        corners.push_back(coordinatesOf(corner.mPosition));
        answer.mPath.mCorners.push_back(corner.mPosition);
    }
    if (mTrailStep > 0)
        answer.mPath.mPlaces = placesAlong(view(), path, mTrailStep);
    answer.mJson["straight"] = corners;
    answer.mJson["straightLength"] = path.mLength;
    answer.mText += "\nstraight: length " + lengthText(path.mLength) + ", " +
                    std::to_string(corners.size()) + " corners\n" +
                    wayText("corner", answer.mPath.mStart, answer.mPath.mCorners);
}

Answer Questioner::askSurface(const SurfaceQuery& query) {
    switch (query.mKind) {
    case SurfaceQuery::Kind::NEAREST:
        return askNearest(query);
    case SurfaceQuery::Kind::EXPLAIN:
        return askExplain(query);
    case SurfaceQuery::Kind::HEIGHT:
        break;
    }
    return askHeight(query);
}

Answer Questioner::askNearest(const SurfaceQuery& query) {
    const auto place = findNearest(view(), query.mFrom, query.mRadius, query.mHeight);
    Answer answer;
    answer.mJson = {{"query", "nearest"}, {"nearest", nullptr}};
    if (!place) {
        answer.mText = "nothing so near";
        answer.mStatus = STATUS_NOTHING;
        return answer;
    }
    answer.mJson["nearest"] = json(place);
    answer.mText = textOf(place.mPosition) + " on node " + std::to_string(place.mNode) + ", " +
                   lengthText(place.mDistance) + " away";
    return answer;
}

Answer Questioner::askExplain(const SurfaceQuery& query) {
    const Explanation explanation = explain(view(), query.mFrom, query.mTo);
    Answer answer;
    answer.mText = describe(view(), explanation);
    answer.mText.pop_back(); // the last line's end
    answer.mJson = {{"query", "explain"},
                    {"answer", nameOf(explanation.mAnswer)},
                    {"start", json(explanation.mStart)},
                    {"goal", json(explanation.mGoal)}};
    if (explanation.mAnswer == Explanation::Answer::OTHER_ISLAND) {
        answer.mJson["shores"] = {json(explanation.mStartShore), json(explanation.mGoalShore)};
        answer.mJson["gap"] = explanation.mGap;
    }
    answer.mJson["text"] = answer.mText;
    answer.mStatus =
        explanation.mAnswer == Explanation::Answer::POSSIBLE ? STATUS_OK : STATUS_NOTHING;
    return answer;
}

Answer Questioner::askHeight(const SurfaceQuery& query) {
    const Place ground = findGround(view(), query.mFrom);
    Answer answer;
    answer.mJson = {{"query", "height"}, {"height", nullptr}};
    if (!ground) {
        answer.mText = "no ground";
        answer.mStatus = STATUS_NOTHING;
        return answer;
    }
    const float height = ground.mPosition[mMesh.mNormal.getDominantAxis()];
    answer.mJson = {{"query", "height"},
                    {"height", height},
                    {"node", ground.mNode},
                    {"position", coordinatesOf(ground.mPosition)}};
    answer.mText = lengthText(height) + " on node " + std::to_string(ground.mNode);
    return answer;
}

} // namespace ZUNO::Tools
