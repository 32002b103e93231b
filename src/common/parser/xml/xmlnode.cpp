#include "common/parser/xml/xmlnode.h"

#include "common/report/report.h"

#include <cctype>

namespace ZUNO::Common::Parser::XML {

namespace {

/// Whether `text` begins with `lowered`, whatever its case.
bool beginsWith(const char* text, const char* lowered) {
    for (; *lowered != '\0'; ++text, ++lowered)
        if (std::tolower(static_cast<unsigned char>(*text)) != *lowered)
            return false;
    return true;
}

bool isText(const char* text, const char* other) {
    return std::strcmp(text, other) == 0;
}

} // namespace

const char* XMLAttributes::find(const char* name) const {
    if (mMap == nullptr)
        return nullptr;
    const auto place = mMap->find(name);
    return place != mMap->end() ? place->second : nullptr;
}

XMLAttributes::Map& XMLAttributes::open(Memory::Arena& arena) {
    if (mMap == nullptr)
        mMap = ::new (arena.allocate(sizeof(Map))) Map(Memory::ArenaAllocator<std::byte>(arena));
    return *mMap;
}

const char* XMLNode::getAttribute(const char* name) const {
    return mAttributes.find(name);
}

bool XMLNode::getAttribute(int& out, const char* name) const {
    const char* const value = getAttribute(name);
    if (value != nullptr)
        out = ValueText<std::int32_t>::read(value);
    return value != nullptr;
}

bool XMLNode::getAttribute(unsigned int& out, const char* name) const {
    const char* const value = getAttribute(name);
    if (value != nullptr)
        out = ValueText<std::uint32_t>::read(value);
    return value != nullptr;
}

bool XMLNode::getAttribute(float& out, const char* name) const {
    const char* const value = getAttribute(name);
    if (value != nullptr)
        out = ValueText<float>::read(value);
    return value != nullptr;
}

bool XMLNode::getAttribute(bool& out, const char* name) const {
    const char* const value = getAttribute(name);
    if (value == nullptr)
        return false;
    // of longer values the first five characters count
    const bool isTrue = isText(value, "1") || (beginsWith(value, "true") && value[4] == '\0');
    const bool isFalse = isText(value, "0") || beginsWith(value, "false");
    if (isTrue || isFalse)
        out = isTrue;
    return isTrue || isFalse;
}

const XMLNode* XMLNodeElements::getChild(const char* name) const {
    if (mCursor == nullptr || std::strcmp(mCursor->mName, name) != 0)
        return nullptr;
    return getNextElement();
}

const XMLNodeElements* XMLNodeElements::getChildElements(const char* name) const {
    const XMLNode* const child = getChild(name);
    const bool isElements =
        child != nullptr && (child->mKind == NODE_ELEMENTS || child->mKind == NODE_EMPTY);
    return isElements ? static_cast<const XMLNodeElements*>(child) : nullptr;
}

bool XMLNodeElements::getChildText(const char*& out, const char* name) const {
    const XMLNode* const child = getChild(name);
    if (child == nullptr)
        return false;
    if (child->mKind == NODE_ELEMENTS &&
        !static_cast<const XMLNodeElements*>(child)->mChildren.empty())
        return false;
    out = child->mText;
    return true;
}

const XMLNode* XMLNodeElements::getValueChild(const char* name) const {
    const XMLNode* const child = getChild(name);
    const bool hasValue =
        child != nullptr && (child->mKind == NODE_TEXT || child->mKind == NODE_EMPTY);
    return hasValue ? child : nullptr;
}

const XMLNode* XMLNodeElements::getNextElement() const {
    const XMLNode* const next = mCursor;
    if (next != nullptr)
        mCursor = next->mNext;
    return next;
}

const XMLNode* XMLNodeElements::getLastReadElement() const {
    return mCursor != nullptr ? mCursor->mPrevious : mChildren.mLast;
}

XMLNode* XMLNodeElements::getLastElement() const {
    ZUNO_CHECK_AS(!mChildren.empty(), "!elements.empty()",
                  "Cannot get last element from an empty elements node");
    return mChildren.mLast;
}

XMLNode* XMLNodeElements::removeLastElement() {
    if (!ZUNO_CHECK_AS(!mChildren.empty(), "!elements.empty()",
                       "Cannot remove last element from an empty node list"))
        return nullptr;
    XMLNode* const last = mChildren.mLast;
    mChildren.mLast = last->mPrevious;
    (last->mPrevious != nullptr ? last->mPrevious->mNext : mChildren.mFirst) = nullptr;
    last->mPrevious = nullptr;
    --mChildren.mCount;
    if (mCursor == last)
        mCursor = nullptr; // all that is left was read
    return last;
}

void XMLNodeElements::addChild(XMLNode* child) {
    child->mPrevious = mChildren.mLast;
    (mChildren.mLast != nullptr ? mChildren.mLast->mNext : mChildren.mFirst) = child;
    mChildren.mLast = child;
    ++mChildren.mCount;
    resetCursor();
}

} // namespace ZUNO::Common::Parser::XML
