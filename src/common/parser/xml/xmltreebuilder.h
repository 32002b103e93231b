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

    /// Adds a node of that kind to the open element (the first one is the root). A NODE_ELEMENTS
    /// node becomes the open element. Reports an unknown kind, and a root of another kind than
    /// NODE_ELEMENTS; nothing is added then.
    void beginNode(std::int32_t kind);
    /// These give the current node, the one made last, its name and its text, in place of former
    /// ones. Reports a text for a node that is no NODE_TEXT, and drops it.
    void setName(const char* name);
    void setText(const char* text);

    void beginElements(const char* name);
    void addEmptyNode(const char* name);
    void addTextNode(const char* name, const char* text);
    /// Adds a text node with the value's text: see `ValueText`. Reports a builder that does not
    /// copy its strings, and adds nothing then.
    template <XMLValue T>
    void addTextNode(const char* name, const T& value) {
        if (!canFormat())
            return;
        ValueText<TextType<T>>::write(mScratch, static_cast<TextType<T>>(value));
        addTextNode(name, static_cast<const char*>(mScratch));
    }

    /// Adds an attribute to the current node; a second one of the same name takes its place.
    void addAttribute(const char* name, const char* value);
    /// The same with a value in decimal, "%f", "1" or "0". Reports as `addTextNode`.
    void addAttribute(const char* name, int value);
    void addAttribute(const char* name, unsigned int value);
    void addAttribute(const char* name, bool value);
    void addAttribute(const char* name, float value);

    /// Closes the open element and returns true; the root stays open and gives false. With a name
    /// that is not the open element's nothing happens and the result is false.
    bool endElement(const char* name = nullptr);

    /// Destroys the last child of the open element. Reports an element without children.
    void removeLastNode();

    /// Takes the tree of another builder, which is empty then, as the last child of the open
    /// element. Reports a null builder, one of another allocator, and one that treats strings
    /// differently; nothing happens then.
    void addTree(XMLTreeBuilder* tree);

    /// Returns the root, or null.
    XMLNodeElements* getRoot() const { return mRoot; }
    /// Returns the node made or taken last, or null.
    XMLNode* getCurrent() const { return mCurrent; }
    /// Returns the element into which nodes go, or null.
    XMLNodeElements* getOpenElement() const {
        return mOpenElements.empty() ? nullptr : mOpenElements.back();
    }
    /// Returns how many elements are open.
    std::size_t getDepth() const { return mOpenElements.size(); }

private:
    const char* keep(const char* string);
    void release(const char* string);
    void replace(const char*& string, const char* value);
    Memory::Arena& arena();
    template <typename Node>
    Node* createNode(std::int32_t kind);
    void attach(XMLNode* node);
    void releaseNode(const XMLNode* node);
    /// Releases what a node and all below it hold outside the arena: children first.
    void releaseTree(XMLNode* root);
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
    char mScratch[longestValue];
};

} // namespace ZUNO::Common::Parser::XML
