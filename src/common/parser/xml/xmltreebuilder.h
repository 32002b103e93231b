#pragma once

#include "common/memory/memorymanaged.h"
#include "common/memory/stlallocator.h"
#include "common/parser/xml/xmlnode.h"

#include <vector>

namespace ZUNO::Common::Parser::XML {

/// Builds the tree of one document and owns it: until it begins another, or ends.
/// Strings are either kept as pointers (a parser's, into its document) or copied (a writer's).
class XMLTreeBuilder : public Memory::MemoryManaged {
public:
    XMLTreeBuilder();
    ~XMLTreeBuilder() override;

    /// Begins a document whose first node comes with `beginNode`.
    void begin(bool copyStrings);
    /// Begins a document with a root of that name, which is then the open element.
    void begin(const char* rootName, bool copyStrings);

    /// A new node in the open element, or the root; kind 2 becomes the open element. Another kind
    /// is reported and makes nothing.
    void beginNode(std::int32_t kind);
    /// The name and the text of the current node, the one made last. A text for a node of another
    /// kind is reported and dropped.
    void setName(const char* name);
    void setText(const char* text);

    void beginElements(const char* name);
    void addEmptyNode(const char* name);
    void addTextNode(const char* name, const char* text);
    /// A text node with the value in decimal, "%g", "true" or "false"; vectors with "/" between.
    /// Without copied strings this is reported and adds nothing.
    template <typename T>
    void addTextNode(const char* name, const T& value);

    /// An attribute of the current node; a second one of the same name takes its place.
    void addAttribute(const char* name, const char* value);
    /// The value in decimal, "%f", "1" or "0". Without copied strings as `addTextNode`.
    void addAttribute(const char* name, int value);
    void addAttribute(const char* name, unsigned int value);
    void addAttribute(const char* name, bool value);
    void addAttribute(const char* name, float value);

    /// Closes the open element and returns true; the root stays open and gives false. With a name
    /// that is not the open element's nothing happens and the result is false.
    bool endElement(const char* name = nullptr);

    /// Destroys the last child of the open element.
    void removeLastNode();

    /// Takes the tree of another builder as the last child of the open element. Both must have the
    /// same allocator and the same way with strings; else this is reported and nothing happens.
    void addTree(XMLTreeBuilder* tree);

    /// The root, or null.
    XMLNodeElements* getRoot() const { return mRoot; }
    /// The node made or taken last, or null.
    XMLNode* getCurrent() const { return mCurrent; }
    /// The element into which nodes go, or null.
    XMLNodeElements* getOpenElement() const {
        return mOpenElements.empty() ? nullptr : mOpenElements.back();
    }
    /// How many elements are open.
    std::size_t getDepth() const { return mOpenElements.size(); }

private:
    static constexpr std::size_t scratchSize = 128;

    const char* keep(const char* string);
    void release(const char* string);
    Memory::Arena& arena();
    template <typename Node>
    Node* createNode(std::int32_t kind);
    void attach(XMLNode* node);
    void releaseStrings(XMLNode* node);
    void releaseStringsBelow(XMLNode* root);
    void destroyTree();
    /// Whether values may be formatted; reports when not.
    bool canFormat() const;

    bool mCopyStrings = false;
    XMLNodeElements* mRoot = nullptr;
    XMLNode* mCurrent = nullptr;
    std::vector<XMLNodeElements*, Memory::STLAllocator<XMLNodeElements*>> mOpenElements;
    SharedPtr<Memory::Arena> mArena; ///< holds the nodes; null before the first
    /// Those of the trees that were taken in.
    std::vector<SharedPtr<Memory::Arena>, Memory::STLAllocator<SharedPtr<Memory::Arena>>> mAdopted;
    char mScratch[scratchSize];
};

} // namespace ZUNO::Common::Parser::XML
