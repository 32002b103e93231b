#pragma once

#include "common/memory/arena.h"
#include "common/parser/xml/xmlvalue.h"

#include <cstdint>
#include <cstring>
#include <map>

namespace ZUNO::Common::Parser::XML {

/// Kinds of nodes; the numbers are those of the parser's classification.
enum NodeKind : std::int32_t {
    NODE_EMPTY = 0,   ///< attributes alone
    NODE_TEXT = 1,    ///< attributes and one text
    NODE_ELEMENTS = 2 ///< attributes and child nodes
};

class XMLNodeElements;

/// A node's attributes, ordered by name. A node without any holds no more than a pointer.
class XMLAttributes {
public:
    struct StringComp {
        bool operator()(const char* a, const char* b) const { return std::strcmp(a, b) < 0; }
    };
    using Map = std::map<const char*, const char*, StringComp,
                         Memory::ArenaAllocator<std::pair<const char* const, const char*>>>;
    using Iterator = Map::const_iterator;

    Iterator begin() const { return mMap != nullptr ? mMap->begin() : Iterator(); }
    Iterator end() const { return mMap != nullptr ? mMap->end() : Iterator(); }
    /// Returns the value, or null when there is no such attribute.
    const char* find(const char* name) const;
    /// Returns the map itself, made in the arena when there is none.
    Map& open(Memory::Arena& arena);

private:
    Map* mMap = nullptr;
};

/// A node of a document's tree. Lifetime: it belongs to the tree builder that made it, and lies in
/// that builder's arena. Its strings lie in the parsed document, or are the builder's copies.
class XMLNode {
public:
    /// What a name or a text is until it is set.
    static constexpr char noString[] = "";

    XMLNode(std::int32_t kind, XMLNodeElements* parent) : mKind(kind), mParent(parent) {}
    XMLNode(const XMLNode&) = delete;
    XMLNode& operator=(const XMLNode&) = delete;

    /// Returns the attribute's value, or null when there is none of that name.
    const char* getAttribute(const char* name) const;
    /// Reads an attribute as a number or a truth ("1", "0", "true", "false" in any case). Returns
    /// false, with `out` untouched, when it is missing or is no truth.
    bool getAttribute(int& out, const char* name) const;
    bool getAttribute(unsigned int& out, const char* name) const;
    bool getAttribute(float& out, const char* name) const;
    bool getAttribute(bool& out, const char* name) const;

    /// Reads the text as a value. A node without a text gives zeros.
    template <XMLValue T>
    void getValue(T& out) const {
        out = static_cast<T>(ValueText<TextType<T>>::read(mText));
    }

    std::int32_t mKind;           ///< a NodeKind
    XMLNode* mPrevious = nullptr; ///< siblings; null at the ends of the list of children
    XMLNode* mNext = nullptr;
    XMLNodeElements* mParent;
    const char* mName = noString;
    XMLAttributes mAttributes;
    const char* mText = noString; ///< empty but for text nodes
};

/// A node that may have children, with a cursor over them: children are read strictly in the
/// order in which they stand. Reading moves the cursor of const nodes too.
class XMLNodeElements : public XMLNode {
public:
    /// The children in their order, as a range.
    class Children {
    public:
        class Iterator {
        public:
            explicit Iterator(XMLNode* node = nullptr) : mNode(node) {}
            XMLNode* operator*() const { return mNode; }
            Iterator& operator++() {
                mNode = mNode->mNext;
                return *this;
            }
            bool operator==(const Iterator&) const = default;

        private:
            XMLNode* mNode;
        };

        Iterator begin() const { return Iterator(mFirst); }
        static Iterator end() { return Iterator(); }
        bool empty() const { return mFirst == nullptr; }
        std::size_t size() const { return mCount; }
        XMLNode* back() const { return mLast; }

    private:
        friend class XMLNodeElements;

        XMLNode* mFirst = nullptr;
        XMLNode* mLast = nullptr;
        std::size_t mCount = 0;
    };

    using XMLNode::XMLNode;

    /// Returns the next unread child, and moves the cursor past it, if it has that name; else null.
    const XMLNode* getChild(const char* name) const;
    /// As getChild, for an element that may have children. Returns null for a text node, which
    /// counts as read all the same.
    const XMLNodeElements* getChildElements(const char* name) const;
    /// As getChild, for a text. Returns whether there was one; an element without content has the
    /// empty text.
    bool getChildText(const char*& out, const char* name) const;
    /// As getChild, for the value of a text or of an element without content, which gives zeros.
    /// Returns whether there was one; an element with children, or "<a></a>", has none.
    template <XMLValue T>
    bool getChildValue(T& out, const char* name) const {
        const XMLNode* const child = getValueChild(name);
        if (child != nullptr)
            child->getValue(out);
        return child != nullptr;
    }

    /// Returns the next unread child, whatever its name, or null at the end.
    const XMLNode* getNextElement() const;
    /// Returns the child that was read last, or null.
    const XMLNode* getLastReadElement() const;
    /// Returns the last child, or null. Reports an element without children.
    XMLNode* getLastElement() const;
    /// Takes the last child off the list and returns it, or null. The cursor stays where it is.
    /// Reports an element without children.
    XMLNode* removeLastElement();

    /// Appends a child and resets the cursor. Needs no memory.
    void addChild(XMLNode* child);
    void resetCursor() { mCursor = mChildren.mFirst; }

    const Children& children() const { return mChildren; }

private:
    /// As getChild, for a node that has a value.
    const XMLNode* getValueChild(const char* name) const;

    Children mChildren;
    mutable XMLNode* mCursor = nullptr; ///< the next unread child; null behind the last
};

} // namespace ZUNO::Common::Parser::XML
