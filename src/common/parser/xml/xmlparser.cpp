#include "common/parser/xml/xmlparser.h"

#include "common/exceptions/argumentexceptions.h"
#include "common/io/ioexceptions.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparserexception.h"

namespace ZUNO::Common::Parser::XML {

XMLParser::XMLParser() : mScanner(mAllocator), mBuilder(nullptr), mIncluded(mAllocator) {
    mBuilder = Memory::createManaged<XMLTreeBuilder>(mAllocator);
}

XMLParser::~XMLParser() {
    delete mBuilder;
    Memory::releaseBytes(mAllocator, mBuffer);
}

const XMLNodeElements* XMLParser::parse(IO::Stream* stream) {
    if (stream == nullptr)
        throw new Exceptions::ArgumentNullException("stream",
                                                    "XMLParser: Stream is a null pointer");
    readDocument(stream);
    parseBuffer();
    return mBuilder->getRoot();
}

const XMLNodeElements* XMLParser::parseFile(const String& filename, IO::FileSystem* fSystem) {
    if (fSystem == nullptr)
        throw new Exceptions::ArgumentNullException(
            "fSystem", "XMLParser: FileSystem cannot be a NULL pointer in parseFile");
    const SharedPtr<IO::Stream> stream =
        fSystem->openFile(filename, IO::FACCESS_READ, IO::FMODE_OPEN);
    mName = filename;
    struct Clear {
        XMLParser& mParser;
        ~Clear() {
            mParser.mFileSystem = nullptr;
            mParser.mName.clear();
        }
    } const clear{*this};
    mFileSystem = fSystem;
    return parse(stream.get());
}

void XMLParser::readDocument(IO::Stream* stream) {
    mBuilder->begin(false); // the former tree refers to the former buffers
    mIncluded.clear();
    mInclusions = 0;
    Memory::releaseBytes(mAllocator, mBuffer);
    mBuffer = nullptr;
    const std::int64_t length = stream->getLength();
    if (length < 0 || length >= std::int64_t{Memory::largestRequest}) // a NUL follows
        failToRead();
    const auto size = static_cast<std::size_t>(length);
    mBuffer = static_cast<char*>(Memory::allocateBytes(mAllocator, size + 1, 1));
    if (stream->read(mBuffer, size) != length)
        failToRead();
    mBuffer[size] = '\0';
    mBufferLength = size + 1;
}

void XMLParser::failToRead() const {
    if (mIncluder == nullptr)
        throw new IO::IOException("XMLParser: Cannot read complete file from stream");
    throw new IO::IOException("XMLParser: Cannot read complete file from stream '" + mName + "'");
}

void XMLParser::parseBuffer() {
    mScanner.open(mBuffer, mBufferLength, mIncluder != nullptr ? mName : String());
    char* const first = mScanner.find(mBuffer, '<');
    if (first == nullptr)
        mScanner.failAtEnd();
    mScanner.moveTo(first);
    Node node = classify();
    while (node.mCode == CODE_COMMENT || node.mCode == CODE_INSTRUCTION) {
        mScanner.moveTo(node.mEnd);
        node = classify();
    }
    if (node.mCode == CODE_END_TAG || node.mCode == CODE_INVALID) {
        const String message =
            "XMLParser: Invalid XML format. Found nodetype : " + String(int{node.mCode});
        mScanner.fail(message.getConstCharPtr());
    }
    if (node.mCode != CODE_ELEMENTS)
        mScanner.fail("XMLParser: First tag must be a root node");
    mBuilder->begin(false);
    readElements(node);
}

XMLParser::Node XMLParser::classify() {
    mScanner.skipWhitespace();
    mScanner.markPosition();
    char* const begin = mScanner.position();
    if (*begin != '<')
        return {CODE_INVALID};
    char* const behind = begin + 1;
    const auto upTo = [&](NodeCode code, const char* opening, const char* closing) {
        char* const end = mScanner.findBehind(behind + std::strlen(opening), closing);
        return end != nullptr ? Node{code, end} : Node{CODE_INVALID};
    };
    switch (*behind) { // the NUL at the document's end is behind every '<'
    case '?':
        return upTo(CODE_INSTRUCTION, "?", "?>");
    case '!':
        return mScanner.startsWith(behind, "!--") ? upTo(CODE_COMMENT, "!--", "-->")
                                                  : Node{CODE_INVALID};
    case '/':
        return {CODE_END_TAG};
    case 'x':
        if (mScanner.startsWith(behind, "xi:include "))
            return {CODE_INCLUDE, nullptr, mScanner.behindName(behind)};
        break;
    default:
        break;
    }
    return classifyElement(behind);
}

XMLParser::Node XMLParser::classifyElement(char* name) {
    char* const nameEnd = mScanner.behindName(name);
    // Quotes are not heeded: a '>' in an attribute's value counts too.
    char* const close = mScanner.find(nameEnd, '>');
    if (close == nullptr)
        mScanner.failAtEnd();
    if (close[-1] == '/')
        return {CODE_EMPTY, nullptr, nameEnd};
    // Look ahead without recording line feeds: classify passes them again. A text is not passed
    // again, so its leading ones are recorded here.
    const char* const content = mScanner.behindWhitespace(close + 1);
    if (content == mScanner.end())
        mScanner.failAtEnd();
    if (*content == '<')
        return {CODE_ELEMENTS, nullptr, nameEnd};
    for (const char* position = close + 1; position != content; ++position)
        if (*position == '\n')
            mScanner.recordNewline(position);
    return {CODE_TEXT, nullptr, nameEnd};
}

void XMLParser::readElements(const Node& root) {
    // A loop instead of a recursion: the builder knows the elements that are open, and a document
    // that nests deep costs no stack.
    beginElements(root);
    for (bool isDone = false; !isDone;) {
        const Node node = classify();
        switch (node.mCode) {
        case CODE_ELEMENTS:
            beginElements(node);
            break;
        case CODE_TEXT:
            readText(node);
            break;
        case CODE_EMPTY:
            readEmpty(node);
            break;
        case CODE_INCLUDE:
            readInclude(node);
            break;
        case CODE_COMMENT:
        case CODE_INSTRUCTION:
            mScanner.moveTo(node.mEnd);
            break;
        case CODE_END_TAG:
            isDone = endElements();
            break;
        case CODE_INVALID:
            mScanner.fail("XMLParser: Invalid tag found.");
        }
    }
}

void XMLParser::beginElements(const Node& node) {
    if (mBuilder->getDepth() == maxDepth)
        mScanner.fail("XMLParser: Elements are nested deeper than 4096 levels");
    mBuilder->beginNode(NODE_ELEMENTS);
    readStartTag(node);
}

bool XMLParser::endElements() {
    const char* const name = mBuilder->getOpenElement()->mName;
    const bool isRoot = !mBuilder->endElement();
    readEndTag(name);
    return isRoot;
}

void XMLParser::readEmpty(const Node& node) {
    mBuilder->beginNode(NODE_EMPTY);
    readStartTag(node);
}

void XMLParser::readText(const Node& node) {
    mBuilder->beginNode(NODE_TEXT);
    const char* const name = readStartTag(node);
    char* const text = mScanner.position();
    mScanner.markPosition();
    char* const textEnd = mScanner.find(text, '<');
    if (textEnd == nullptr)
        mScanner.failAtEnd();
    mScanner.moveTo(textEnd);
    readEndTag(name);
    *textEnd = '\0';
    mBuilder->setText(text);
}

void XMLParser::readInclude(const Node& node) {
    readEmpty(node);
    const XMLNode* const element = mBuilder->getCurrent();
    ZUNO_CHECK_AS(std::strcmp(element->mName, "xi:include") == 0,
                  "!strcmp(incNode->name,\"xi:include\")",
                  "Error in xi:include tag read, wrong behaviour of readNodeEmpty");
    if (mFileSystem == nullptr)
        mScanner.fail("XMLParser: We have no FileSystem defined, but there is an xi:include tag in "
                      "the current xml definition");
    const char* const form = element->getAttribute("parse");
    if (form != nullptr && std::strcmp(form, "xml") != 0)
        mScanner.fail("XMLParser: We support currently only xi:include tags with attribute "
                      "parse=\"xml\" or no parse attribute.");
    const char* const href = element->getAttribute("href");
    if (href == nullptr)
        mScanner.fail("XMLParser: xi:include tag without href attribute found");
    const String name(href);
    mBuilder->removeLastNode();
    include(name);
}

void XMLParser::include(const String& href) {
    countInclusion(href);
    mIncluded.push_back(SharedPtr<XMLParser>(Memory::createManaged<XMLParser>(mAllocator)));
    XMLParser& parser = *mIncluded.back();
    parser.mIncluder = this;
    parser.parseFile(href, mFileSystem);
    mBuilder->addTree(parser.mBuilder);
}

void XMLParser::countInclusion(const String& href) {
    // By its name as it stands. A document that includes itself under another name is read once
    // more, and there the same name comes a second time.
    unsigned int depth = 0;
    XMLParser* outermost = this;
    for (XMLParser* reading = this; reading != nullptr; reading = reading->mIncluder) {
        if (reading->mName == href) {
            const String message = "XMLParser: The document '" + href + "' is being read already";
            mScanner.fail(message.getConstCharPtr());
        }
        if (++depth == maxIncludes)
            mScanner.fail("XMLParser: Documents are included deeper than 32 levels");
        outermost = reading;
    }
    if (outermost->mInclusions++ == maxInclusions)
        mScanner.fail("XMLParser: More than 1024 documents are included");
}

const char* XMLParser::readStartTag(const Node& node) {
    mScanner.advance(); // the opening bracket, on which every classified node begins
    const XMLScanner::Range name = mScanner.readName(node.mNameEnd);
    mScanner.markPosition();
    if (mScanner.accept('>')) {
        *name.mEnd = '\0';
        mBuilder->setName(name.mBegin);
        return name.mBegin;
    }
    if (mScanner.accept('/')) {
        if (!mScanner.accept('>'))
            mScanner.failAtByte("XMLParser: Invalid character '", "' in name.");
        *name.mEnd = '\0';
        mBuilder->setName(name.mBegin);
        return name.mBegin;
    }
    if (!XMLScanner::isWhitespace(mScanner.current()))
        mScanner.failAtByte("XMLParser: Invalid character '", "' in name.");
    if (*name.mEnd == '\n')
        mScanner.recordNewline(name.mEnd); // it is overwritten now
    *name.mEnd = '\0';
    mBuilder->setName(name.mBegin);
    readAttributes();
    mScanner.markPosition();
    mScanner.accept('/');
    if (!mScanner.accept('>'))
        mScanner.failAtByte("XMLParser: Invalid character '", "' in starttag.");
    return name.mBegin;
}

void XMLParser::readAttributes() {
    for (;;) {
        mScanner.skipWhitespace();
        mScanner.markPosition();
        if (mScanner.current() == '>' || mScanner.current() == '/')
            return;
        const XMLScanner::Range name = mScanner.readName();
        mScanner.skipWhitespace();
        mScanner.markPosition();
        if (!mScanner.accept('='))
            mScanner.failAtByte("XMLParser: Expected assign operator '=' but found '", "'");
        *name.mEnd = '\0';
        mScanner.skipWhitespace();
        mScanner.markPosition();
        if (!mScanner.accept('"'))
            mScanner.failAtByte("XMLParser: Expected envelop char '\"' , found '", "'");
        char* const value = mScanner.position();
        char* const quote = mScanner.find(value, '"');
        if (quote == nullptr)
            mScanner.failAtEnd();
        mScanner.moveTo(quote);
        *quote = '\0';
        mScanner.advance();
        mBuilder->addAttribute(name.mBegin, static_cast<const char*>(value));
    }
}

void XMLParser::readEndTag(const char* startName) {
    mScanner.markPosition();
    mScanner.advance(); // the opening bracket
    if (!mScanner.accept('/'))
        mScanner.failAtByte("XMLParser: Expected '/' but found '", "'");
    if (mScanner.acceptTagEnd(startName))
        return;
    const XMLScanner::Range name = mScanner.readName();
    if (!mScanner.accept('>')) {
        mScanner.markPosition();
        if (!XMLScanner::isWhitespace(mScanner.current()))
            mScanner.failAtByte("XMLParser: Invalid character '", "' in starttag.");
        mScanner.skipWhitespace();
        mScanner.markPosition();
        if (!mScanner.accept('>'))
            mScanner.failAtByte("XMLParser: Invalid character '", "' in starttag.");
    }
    *name.mEnd = '\0';
    if (std::strcmp(name.mBegin, startName) != 0)
        mScanner.fail("XMLParser: Name in starttag and endtag are not equal");
}

} // namespace ZUNO::Common::Parser::XML
