#include "hostkit/exports.h"

namespace ZUNO::HostKit {

using Pathfinder::Interface;

bool Exports::initWorldRepresentation(const Common::String& navMeshFile, const Memory& cbMemory,
                                      const Files& cbFileIO,
                                      const Common::String& blockingMapFile) {
    return Interface::initWorldRepresentation(navMeshFile, cbMemory, cbFileIO, blockingMapFile);
}

void Exports::close() {
    Interface::close();
}

int Exports::initPathSearch(const Vec3& start, const Vec3& goal) {
    return Interface::initPathSearch(start, goal);
}

int Exports::runPathSearch(int searchID, unsigned int budget) {
    return Interface::runPathSearch(searchID, budget);
}

bool Exports::getNextWaypoint(int searchID, Vec3& waypoint) {
    return Interface::getNextWaypoint(searchID, waypoint);
}

float Exports::getPathCost(int searchID) {
    return Interface::getPathCost(searchID);
}

bool Exports::closePathSearch(int searchID) {
    return Interface::closePathSearch(searchID);
}

bool Exports::isBlocked(const Vec2& position) {
    return Interface::isBlocked(position);
}

void Exports::traceRay(Ray2D& ray) {
    Interface::traceRay(ray);
}

void Exports::traceRay(Ray3D& ray) {
    Interface::traceRay(ray);
}

float Exports::getGroundHeight(const Vec2& position) {
    return Interface::getGroundHeight(position);
}

void Exports::getBoundingRectangle(Vec2& min, Vec2& max) {
    Interface::getBoundingRectangle(min, max);
}

bool Exports::saveBlockingMap(const Common::String& filename) {
    return Interface::saveBlockingMap(filename);
}

} // namespace ZUNO::HostKit
