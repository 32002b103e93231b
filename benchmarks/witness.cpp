#include "benchmarks/witness.h"

#include "reference/digest.h"

namespace ZUNO::Benchmarks {

using Pathfinder::Interface;
using Reference::Digest;

namespace {

constexpr std::size_t sampleSize = 150;

std::uint64_t digestOfNumber(float number) {
    Digest digest;
    digest.add(number);
    return digest.value();
}

} // namespace

std::uint64_t Witness::bitsOf(int state, const std::vector<Vec3>& waypoints, float cost) {
    Digest digest;
    digest.add(static_cast<std::uint32_t>(state));
    digest.add(cost);
    for (const Vec3& waypoint : waypoints)
        for (const float coordinate : {waypoint.mX, waypoint.mY, waypoint.mZ})
            digest.add(coordinate);
    return digest.value();
}

std::uint64_t Witness::ask(const Question& question) {
    const Vec3& from = question.mFrom;
    const Vec3& to = question.mTo;
    if (question.mKind == Question::GROUND)
        return digestOfNumber(Interface::getGroundHeight({from.mX, from.mZ}));
    if (question.mKind == Question::RAY) {
        Ray2D ray({from.mX, from.mZ}, {to.mX, to.mZ});
        Interface::traceRay(ray);
        return digestOfNumber(ray.mHitDistance);
    }
    const int id = Interface::initPathSearch(from, to);
    int state = Pathfinder::PATH_RUNNING;
    while (id >= 0 && state == Pathfinder::PATH_RUNNING)
        state = Interface::runPathSearch(id, 1000);
    std::vector<Vec3> waypoints;
    for (Vec3 waypoint(0, 0, 0);
         state == Pathfinder::PATH_FOUND && Interface::getNextWaypoint(id, waypoint);)
        waypoints.push_back(waypoint);
    const float cost = state == Pathfinder::PATH_FOUND ? Interface::getPathCost(id) : 0;
    Interface::closePathSearch(id);
    return bitsOf(state, waypoints, cost);
}

std::uint64_t Witness::answers() const {
    return mKept[0].mAnswers + mKept[1].mAnswers + mKept[2].mAnswers;
}

std::vector<Witness::Answer> Witness::takeSample() {
    std::vector<Answer> all;
    for (Kept& kept : mKept) {
        all.insert(all.end(), kept.mSample.begin(), kept.mSample.end());
        kept = {};
    }
    return all;
}

void Witness::note(const Question& question, std::uint64_t bits) {
    Kept& kept = mKept[question.mKind];
    ++kept.mAnswers;
    if (kept.mSample.size() < sampleSize)
        kept.mSample.push_back({question, bits});
    else if (const std::uint64_t place = mRandom() % kept.mAnswers; place < sampleSize)
        kept.mSample[place] = {question, bits};
}

void Witness::close() {
    mSearches.clear();
    Exports::close();
}

int Witness::initPathSearch(const Vec3& start, const Vec3& goal) {
    const int id = Exports::initPathSearch(start, goal);
    if (id >= 0)
        mSearches[id] = {{Question::PATH, start, goal}, {}};
    return id;
}

int Witness::runPathSearch(int searchID, unsigned int budget) {
    return mSearches[searchID].mState = Exports::runPathSearch(searchID, budget);
}

bool Witness::getNextWaypoint(int searchID, Vec3& waypoint) {
    const bool isThere = Exports::getNextWaypoint(searchID, waypoint);
    Search& search = mSearches[searchID];
    if (isThere)
        search.mWaypoints.push_back(waypoint);
    else
        search.mIsRead = true;
    return isThere;
}

bool Witness::closePathSearch(int searchID) {
    const Search& search = mSearches[searchID];
    if (search.mState == Pathfinder::PATH_NONE || search.mIsRead)
        note(search.mQuestion, bitsOf(search.mState, search.mWaypoints,
                                      search.mIsRead ? Exports::getPathCost(searchID) : 0));
    mSearches.erase(searchID);
    return Exports::closePathSearch(searchID);
}

void Witness::traceRay(Ray2D& ray) {
    Exports::traceRay(ray);
    note({Question::RAY, {ray.mStart.mX, 0, ray.mStart.mY}, {ray.mEnd.mX, 0, ray.mEnd.mY}},
         digestOfNumber(ray.mHitDistance));
}

float Witness::getGroundHeight(const Vec2& position) {
    const float height = Exports::getGroundHeight(position);
    note({Question::GROUND, {position.mX, 0, position.mY}, {0, 0, 0}}, digestOfNumber(height));
    return height;
}

} // namespace ZUNO::Benchmarks
