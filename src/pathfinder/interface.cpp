#include "pathfinder/interface.h"

#include "common/debug/trace.h"
#include "common/parser/parserexception.h"
#include "navmesh/interface.h"
#include "pathfinder/hostground.h"
#include "pathfinder/navmeshinstance.h"
#include "pathfinder/raytracer/blockingmap.h"
#include "pathfinder/resourceinterface.h"

namespace ZUNO::Pathfinder {

using namespace Common;

static_assert(int{PATH_FOUND} == Astar::SEARCH_FOUND &&
              int{PATH_RUNNING} == Astar::SEARCH_RUNNING &&
              int{PATH_NONE} == Astar::SEARCH_NO_PATH);

namespace {

void makeResources(const SharedPtr<Memory::Allocator>& allocator,
                   const SharedPtr<Callback::FileIOCallback>& cbFileIO) {
    auto* const resources = Memory::createManaged<ResourceInterface>(allocator, cbFileIO);
    ResourceInterface::createInstance(resources);
    if (ResourceInterface::getInstance() != resources)
        delete resources;
}

/// The world, or null after a report.
NavMeshInstance* findWorld() {
    NavMeshInstance* const world = NavMeshInstance::getInstance();
    ZUNO_CHECK_AS(world != nullptr, "world", "no world: call initWorldRepresentation first");
    return world;
}

/// Tells the trace viewer why there is no world. Takes no memory of the host's: there may be none.
void traceFailedStart(const BasicString<char>& navMeshFile, const Exceptions::Exception& cause) {
    Debug::ReportText text;
    text << "the world over " << navMeshFile.getConstCharPtr()
         << " can't be started: " << cause.getMessage().getConstCharPtr();
    if (const auto* const parsing = dynamic_cast<const Parser::ParserException*>(&cause))
        text << " (line " << parsing->getLine() << ", row " << parsing->getRow() << ")";
    Debug::Trace::send(Debug::TRACE_ERROR, text.text());
}

/// Starts the library and loads the world; false after a report.
bool startWorld(const BasicString<char>& navMeshFile,
                const SharedPtr<Callback::MemoryCallback>& cbMemory,
                const SharedPtr<Callback::FileIOCallback>& cbFileIO,
                const BasicString<char>& blockingMapFile) {
    enterHostGround(cbMemory);
    const SharedPtr<Memory::Allocator>& allocator = getWorldAllocator();
    NavMesh::initLibrary(cbMemory, cbFileIO, allocator);
    makeResources(allocator, cbFileIO);
    NavMeshInstance::createInstance(allocator);
    NavMeshInstance* const world = NavMeshInstance::getInstance();
    if (world == nullptr) {
        ZUNO_REPORT("false", "initWorldRepresentation couldn't make NavMeshInstance");
        return false;
    }
    if (!world->load(navMeshFile, blockingMapFile)) {
        ZUNO_REPORT("false",
                    "Cannot initialise the world representation, error in file: " << navMeshFile);
        return false;
    }
    return true;
}

} // namespace

Interface& Interface::operator=(const Interface&) {
    return *this;
} // NOLINT: nothing to copy

bool Interface::initWorldRepresentation(const BasicString<char>& navMeshFile,
                                        const SharedPtr<Callback::MemoryCallback>& cbMemory,
                                        const SharedPtr<Callback::FileIOCallback>& cbFileIO,
                                        const BasicString<char>& blockingMapFile) {
    try {
        return startWorld(navMeshFile, cbMemory, cbFileIO, blockingMapFile);
    } catch (const Exceptions::Exception* cause) {
        traceFailedStart(navMeshFile, *cause);
        throw; // it is the host's
    }
}

void Interface::close() {
    if (!isOnHostGround())
        return;
    NavMeshInstance::destroyInstance();
    ResourceInterface::destroyInstance();
    NavMesh::closeLibrary();
    leaveHostGround();
}

int Interface::initPathSearch(const Math::Vec3<float>& start, const Math::Vec3<float>& goal) {
    NavMeshInstance* const world = findWorld();
    return world != nullptr ? world->initPathSearch(start, goal) : noSearch;
}

int Interface::runPathSearch(int searchID, unsigned int budget) {
    NavMeshInstance* const world = findWorld();
    return world != nullptr ? world->runPathSearch(searchID, budget) : PATH_NONE;
}

bool Interface::getNextWaypoint(int searchID, Math::Vec3<float>& waypoint) {
    NavMeshInstance* const world = findWorld();
    return world != nullptr && world->getNextWaypoint(searchID, waypoint);
}

float Interface::getPathCost(int searchID) {
    NavMeshInstance* const world = findWorld();
    return world != nullptr ? world->getPathCost(searchID) : 0.0F;
}

bool Interface::closePathSearch(int searchID) {
    NavMeshInstance* const world = findWorld();
    return world != nullptr && world->closePathSearch(searchID);
}

bool Interface::isBlocked(const Math::Vec2<float>& position) {
    NavMeshInstance* const world = findWorld();
    return world == nullptr || world->isBlocked(position);
}

void Interface::traceRay(Geom::Ray2D<float, float>& ray) {
    ray.mHitDistance = noHit;
    if (NavMeshInstance* const world = findWorld(); world != nullptr)
        world->traceRay(ray);
}

void Interface::traceRay(Geom::Ray3D<float, float>& ray) {
    ray.mHitDistance = noHit;
    if (NavMeshInstance* const world = findWorld(); world != nullptr)
        world->traceRay(ray);
}

float Interface::getGroundHeight(const Math::Vec2<float>& position) {
    NavMeshInstance* const world = findWorld();
    return world != nullptr ? world->getGroundHeight(position) : noGround;
}

void Interface::getBoundingRectangle(Math::Vec2<float>& min, Math::Vec2<float>& max) {
    min = max = {0, 0};
    if (NavMeshInstance* const world = findWorld(); world != nullptr)
        world->getBoundingRectangle(min, max);
}

bool Interface::saveBlockingMap(const BasicString<char>& filename) {
    ZUNO_CHECK(!filename.isEmpty(), "Filename for saving the blocking map cannot be empty");
    NavMeshInstance* const world = findWorld();
    return world != nullptr && world->saveBlockingMap(filename);
}

} // namespace ZUNO::Pathfinder
