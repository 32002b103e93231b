// The mesh's XML form.
#include "common/parser/xml/xmltreebuilder.h"
#include "common/parser/xml/xmltreereader.h"
#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

using namespace Common::Parser::XML;

namespace {

/// Appends the values that the list begins with; the first child of another kind ends it.
template <typename T>
void readValues(NavMeshContainer::Vector<T>& values, const XMLNodeElements* list,
                const char* name) {
    values.reserve(list->children().size());
    T value{};
    while (list->getChildValue(value, name))
        values.push_back(value);
}

/// Numbers of 16 bits are read as 32 bits and cut.
bool readRequired(std::uint16_t& out, const XMLNodeElements* parent, const char* name) {
    std::uint32_t value = 0;
    const bool isThere = getRequiredValue(value, parent, name);
    out = static_cast<std::uint16_t>(value);
    return isThere;
}

bool readRequired(Common::String& out, const XMLNodeElements* parent, const char* name) {
    const char* text = nullptr;
    const bool isThere = getRequiredText(text, parent, name);
    out = text;
    return isThere;
}

bool readHeights(NavMeshContainer& mesh, const XMLNodeElements& navmesh) {
    const XMLNodeElements* list = nullptr;
    if (!getRequiredElements(list, &navmesh, "heightmap"))
        return false;
    float height = 0;
    while (list->getChildValue(height, "height")) {
        const XMLNode* const element = list->getLastReadElement();
        if (element->getAttribute("id") == nullptr) {
            reportMissingAttribute(element, "id");
            return false;
        }
        mesh.mHeights.push_back(height);
    }
    return true;
}

bool readVertices(NavMeshContainer& mesh, const XMLNodeElements& navmesh) {
    const XMLNodeElements* list = nullptr;
    if (!getRequiredElements(list, &navmesh, "vertices"))
        return false;
    readValues(mesh.mVertices, list, "pos");
    return true;
}

bool readNode(NavMeshContainer::NavNode& node, const XMLNodeElements* element) {
    const XMLNodeElements* polygon = nullptr;
    const XMLNodeElements* neighbours = nullptr;
    if (!getRequiredValue(node.mHeightClass, element, "heightclass") ||
        !getRequiredElements(polygon, element, "polygon"))
        return false;
    readValues(node.mPolygon, polygon, "vert_id");
    if (!getRequiredElements(neighbours, element, "neighbour"))
        return false;
    readValues(node.mNeighbours, neighbours, "node_id");
    std::uint32_t surfaceType = 0;
    if (element->getChildValue(surfaceType, "surfacetypeid"))
        node.mSurfaceTypeID = static_cast<std::uint16_t>(surfaceType);
    return true;
}

bool readNodes(NavMeshContainer& mesh, const XMLNodeElements& navmesh) {
    const XMLNodeElements* list = nullptr;
    if (!getRequiredElements(list, &navmesh, "nodes"))
        return false;
    mesh.mNodes.reserve(list->children().size());
    while (const XMLNodeElements* const element = list->getChildElements("node"))
        if (!readNode(mesh.mNodes.emplace_back(mesh.getAllocator()), element))
            return false;
    return true;
}

bool readCharacters(NavMeshContainer& mesh, const XMLNodeElements& navmesh) {
    const XMLNodeElements* list = nullptr;
    if (!getOptionalElements(list, &navmesh, "characters"))
        return true;
    mesh.mCharacters.clear();
    while (const XMLNodeElements* const element = list->getChildElements("character")) {
        NavMeshContainer::CharacterInfo info;
        if (!readRequired(info.mName, element, "name") ||
            !getRequiredValue(info.mUserID, element, "userid") ||
            !getRequiredValue(info.mPhysicalHeight, element, "physicalheight") ||
            !getRequiredValue(info.mJumpHeight, element, "jumpheight") ||
            !getRequiredValue(info.mFallHeight, element, "fallheight") ||
            !getRequiredValue(info.mMaxHeightClassID, element, "maxheightclassid"))
            return false;
        mesh.mCharacters.push_back(info);
    }
    return true;
}

bool readSurfaceTypes(NavMeshContainer& mesh, const XMLNodeElements& navmesh) {
    const XMLNodeElements* list = nullptr;
    if (!getOptionalElements(list, &navmesh, "surfacetypes"))
        return true;
    mesh.mSurfaceTypes.clear();
    while (const XMLNodeElements* const element = list->getChildElements("surfacetype")) {
        NavMeshContainer::SurfaceType type;
        if (!readRequired(type.mName, element, "name") || !readRequired(type.mID, element, "id"))
            return false;
        mesh.mSurfaceTypes.push_back(type);
    }
    return true;
}

} // namespace

bool NavMeshContainer::readXML(const XMLNodeElements& element) {
    clearGeometry();
    return readHeights(*this, element) && getRequiredValue(mNormal, &element, "normal") &&
           readVertices(*this, element) && readNodes(*this, element) &&
           getRequiredValue(mXAxis, &element, "xaxis") &&
           getRequiredValue(mYAxis, &element, "yaxis") &&
           getRequiredValue(mCubeSize, &element, "cubesize") && readCharacters(*this, element) &&
           readSurfaceTypes(*this, element);
}

namespace {

template <typename T>
void writeValues(XMLTreeBuilder& builder, const char* list, const char* name,
                 const NavMeshContainer::Vector<T>& values) {
    builder.beginElements(list);
    for (const T& value : values)
        builder.addTextNode(name, value);
    builder.endElement(list);
}

void writeHeights(XMLTreeBuilder& builder, const NavMeshContainer::Vector<float>& heights) {
    builder.beginElements("heightmap");
    int id = 0;
    for (const float height : heights) {
        builder.addTextNode("height", height);
        builder.addAttribute("id", id++);
    }
    builder.endElement("heightmap");
}

void writeNode(XMLTreeBuilder& builder, const NavMeshContainer::NavNode& node) {
    builder.beginElements("node");
    builder.addTextNode("heightclass", node.mHeightClass);
    writeValues(builder, "polygon", "vert_id", node.mPolygon);
    writeValues(builder, "neighbour", "node_id", node.mNeighbours);
    builder.addTextNode("surfacetypeid", std::uint32_t{node.mSurfaceTypeID});
    builder.endElement("node");
}

void writeCharacter(XMLTreeBuilder& builder, const NavMeshContainer::CharacterInfo& info) {
    builder.beginElements("character");
    builder.addTextNode("name", info.mName.getConstCharPtr());
    builder.addTextNode("userid", info.mUserID);
    builder.addTextNode("physicalheight", info.mPhysicalHeight);
    builder.addTextNode("jumpheight", info.mJumpHeight);
    builder.addTextNode("fallheight", info.mFallHeight);
    builder.addTextNode("maxheightclassid", info.mMaxHeightClassID);
    builder.endElement("character");
}

void writeSurfaceType(XMLTreeBuilder& builder, const NavMeshContainer::SurfaceType& type) {
    builder.beginElements("surfacetype");
    builder.addTextNode("name", type.mName.getConstCharPtr());
    builder.addTextNode("id", std::uint32_t{type.mID});
    builder.endElement("surfacetype");
}

} // namespace

void NavMeshContainer::writeXML(XMLTreeBuilder& builder) const {
    const auto writeAll = [&](const char* list, const auto& records, auto write) {
        builder.beginElements(list);
        for (const auto& record : records)
            write(builder, record);
        builder.endElement(list);
    };
    builder.beginElements("navmesh");
    builder.addAttribute("version", "2.5.0");
    writeHeights(builder, mHeights);
    builder.addTextNode("normal", mNormal);
    writeValues(builder, "vertices", "pos", mVertices);
    writeAll("nodes", mNodes, writeNode);
    builder.addTextNode("xaxis", mXAxis);
    builder.addTextNode("yaxis", mYAxis);
    builder.addTextNode("cubesize", mCubeSize);
    writeAll("characters", mCharacters, writeCharacter);
    writeAll("surfacetypes", mSurfaceTypes, writeSurfaceType);
    builder.endElement("navmesh");
}

} // namespace ZUNO::NavMesh
