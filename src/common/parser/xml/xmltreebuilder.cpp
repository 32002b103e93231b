#include "common/parser/xml/xmltreebuilder.h"

#include "common/memory/objectcreation.h"
#include "common/parser/numbertext.h"

namespace ZUNO::Common::Parser::XML {

namespace {

bool isKind(std::int32_t kind) {
    return kind >= NODE_EMPTY && kind <= NODE_ELEMENTS;
}

/// Returns the first node without children that a walk down the first children comes to.
XMLNode* firstLeafOf(XMLNode* node) {
    while (node->mKind == NODE_ELEMENTS && !static_cast<XMLNodeElements*>(node)->children().empty())
        node = *static_cast<XMLNodeElements*>(node)->children().begin();
    return node;
}

} // namespace

XMLTreeBuilder::XMLTreeBuilder() : mOpenElements(mAllocator), mAdopted(mAllocator), mScratch() {}

XMLTreeBuilder::~XMLTreeBuilder() {
    destroyTree();
}

void XMLTreeBuilder::begin(bool copyStrings) {
    destroyTree();
    mCopyStrings = copyStrings;
}

void XMLTreeBuilder::begin(const char* rootName, bool copyStrings) {
    begin(copyStrings);
    beginElements(rootName);
}

void XMLTreeBuilder::beginNode(std::int32_t kind) {
    if (!isKind(kind)) {
        ZUNO_REPORT("", "Unknown node type: " << kind);
        return;
    }
    if (!ZUNO_CHECK_AS(kind == NODE_ELEMENTS || mRoot != nullptr, "root",
                       "The root must be an element with children"))
        return;
    XMLNode* const node =
        kind == NODE_TEXT ? createNode<XMLNode>(kind) : createNode<XMLNodeElements>(kind);
    attach(node);
    mCurrent = node;
}

template <typename Node>
Node* XMLTreeBuilder::createNode(std::int32_t kind) {
    return ::new (arena().allocate(sizeof(Node))) Node(kind, getOpenElement());
}

Memory::Arena& XMLTreeBuilder::arena() {
    if (mArena == nullptr)
        mArena = SharedPtr<Memory::Arena>(Memory::createManaged<Memory::Arena>(mAllocator));
    return *mArena;
}

void XMLTreeBuilder::attach(XMLNode* node) {
    const bool isElements = node->mKind == NODE_ELEMENTS;
    XMLNodeElements* const open = getOpenElement();
    if (isElements)
        mOpenElements.push_back(static_cast<XMLNodeElements*>(node));
    if (mRoot == nullptr) {
        mRoot = static_cast<XMLNodeElements*>(node);
        return;
    }
    open->addChild(node);
}

void XMLTreeBuilder::replace(const char*& string, const char* value) {
    const char* const former = string;
    string = keep(value);
    release(former);
}

void XMLTreeBuilder::setName(const char* name) {
    if (mCurrent != nullptr)
        replace(mCurrent->mName, name);
}

void XMLTreeBuilder::setText(const char* text) {
    if (mCurrent == nullptr)
        return;
    if (mCurrent->mKind != NODE_TEXT)
        ZUNO_REPORT("", "Cannot set text for node of type : " << mCurrent->mKind);
    else
        replace(mCurrent->mText, text);
}

void XMLTreeBuilder::beginElements(const char* name) {
    beginNode(NODE_ELEMENTS);
    setName(name);
}

void XMLTreeBuilder::addEmptyNode(const char* name) {
    beginNode(NODE_EMPTY);
    setName(name);
}

void XMLTreeBuilder::addTextNode(const char* name, const char* text) {
    beginNode(NODE_TEXT);
    setName(name);
    setText(text);
}

void XMLTreeBuilder::addAttribute(const char* name, const char* value) {
    if (mCurrent == nullptr)
        return;
    XMLAttributes::Map& attributes = mCurrent->mAttributes.open(arena());
    const auto place = attributes.find(name);
    if (place != attributes.end()) {
        replace(place->second, value);
        return;
    }
    const char* const keptName = keep(name);
    const char* keptValue = nullptr;
    try {
        keptValue = keep(value);
        attributes.emplace(keptName, keptValue);
    } catch (...) {
        release(keptName);
        if (keptValue != nullptr)
            release(keptValue);
        throw;
    }
}

void XMLTreeBuilder::addAttribute(const char* name, int value) {
    if (!canFormat())
        return;
    formatNumber(mScratch, std::int32_t{value});
    addAttribute(name, static_cast<const char*>(mScratch));
}

void XMLTreeBuilder::addAttribute(const char* name, unsigned int value) {
    if (!canFormat())
        return;
    formatNumber(mScratch, std::uint32_t{value});
    addAttribute(name, static_cast<const char*>(mScratch));
}

void XMLTreeBuilder::addAttribute(const char* name, bool value) {
    if (canFormat())
        addAttribute(name, value ? "1" : "0");
}

void XMLTreeBuilder::addAttribute(const char* name, float value) {
    if (!canFormat())
        return;
    formatFixed(mScratch, value);
    addAttribute(name, static_cast<const char*>(mScratch));
}

bool XMLTreeBuilder::endElement(const char* name) {
    XMLNodeElements* const open = getOpenElement();
    if (open == nullptr || (name != nullptr && std::strcmp(name, open->mName) != 0))
        return false;
    open->resetCursor();
    if (open == mRoot)
        return false;
    mOpenElements.pop_back();
    return true;
}

void XMLTreeBuilder::removeLastNode() {
    XMLNodeElements* const open = getOpenElement();
    if (open == nullptr)
        return;
    releaseTree(open->removeLastElement());
    mCurrent = open->children().empty() ? open : open->children().back();
}

void XMLTreeBuilder::addTree(XMLTreeBuilder* tree) {
    if (!ZUNO_CHECK(tree, "Tree cannot be a NULL pointer"))
        return;
    const bool sharesAllocator =
        ZUNO_CHECK_AS(tree->mAllocator == mAllocator.get(), "tree->mAllocator == mAllocator",
                      "We cannot add a tree with a different allocator");
    const bool sharesCopying =
        ZUNO_CHECK_AS(tree->mCopyStrings == mCopyStrings, "tree->copyStrings == copyStrings",
                      "We cannot add a tree with a different copyStrings flag");
    if (!sharesAllocator || !sharesCopying || tree->mRoot == nullptr || tree == this)
        return;
    mAdopted.reserve(mAdopted.size() + tree->mAdopted.size() + 1);
    mOpenElements.reserve(mOpenElements.size() + 1);
    mAdopted.insert(mAdopted.end(), tree->mAdopted.begin(), tree->mAdopted.end());
    mAdopted.push_back(tree->mArena);
    XMLNodeElements* const grafted = tree->mRoot;
    if (XMLNodeElements* const open = getOpenElement(); open != nullptr) {
        open->addChild(grafted);
        grafted->mParent = open;
    } else {
        mOpenElements.push_back(grafted);
        mRoot = grafted;
    }
    mCurrent = grafted;
    tree->mRoot = nullptr; // the strings are ours now
    tree->destroyTree();
}

const char* XMLTreeBuilder::keep(const char* string) {
    if (!mCopyStrings)
        return string;
    const std::size_t size = std::strlen(string) + 1;
    char* const copy = static_cast<char*>(Memory::allocateBytes(mAllocator, size, 1));
    std::memcpy(copy, string, size);
    return copy;
}

void XMLTreeBuilder::release(const char* string) {
    // the empty string of a node whose name or text was never set is nobody's
    if (mCopyStrings && string != XMLNode::noString)
        Memory::releaseBytes(mAllocator, const_cast<char*>(string));
}

void XMLTreeBuilder::releaseNode(const XMLNode* node) {
    if (mCopyStrings) {
        for (const auto& [name, value] : node->mAttributes) {
            release(name);
            release(value);
        }
        release(node->mName);
        release(node->mText);
    }
    if (!isKind(node->mKind))
        ZUNO_REPORT("", "Undefined node type: " << node->mKind);
}

void XMLTreeBuilder::releaseTree(XMLNode* root) {
    if (root == nullptr)
        return;
    // Without recursion: a document may be nested deeper than the stack bears. The nodes
    // themselves stay until the arena goes.
    XMLNode* node = firstLeafOf(root);
    for (; node != root; node = node->mNext != nullptr ? firstLeafOf(node->mNext) : node->mParent)
        releaseNode(node);
    releaseNode(root);
}

void XMLTreeBuilder::destroyTree() {
    releaseTree(mRoot);
    mRoot = nullptr;
    mCurrent = nullptr;
    mOpenElements.clear();
    mAdopted.clear();
    mArena = SharedPtr<Memory::Arena>();
}

bool XMLTreeBuilder::canFormat() const {
    return ZUNO_CHECK_AS(mCopyStrings, "copyStrings", "Used without copyStrings enabled !");
}

} // namespace ZUNO::Common::Parser::XML
