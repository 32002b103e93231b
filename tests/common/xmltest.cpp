#include "common/callback/callbackfilestream.h"
#include "common/memory/objectcreation.h"
#include "common/parser/xml/xmlparser.h"
#include "common/parser/xml/xmltreereader.h"
#include "common/parser/xml/xmlwriter.h"
#include "tests/support/foundation.h"
#include "tests/support/memoryfiles.h"

#include <memory>

namespace ZUNO::Tests {

using namespace Common;
using namespace Common::Parser::XML;

class XmlTest : public FoundationTest {
protected:
    XmlTest() {
        mFiles = new MemoryFiles;
        mFileCallback = mFiles;
        mParser.reset(Memory::createManaged<XMLParser>(gObjectAllocator));
    }

    const XMLNodeElements* parse(const std::string& document) {
        mFiles->mFiles["d"] = document;
        Callback::CallbackFileStream stream(mFileCallback);
        stream.open("d", 1);
        return mParser->parse(&stream);
    }

    /// The tree as one line: name{attributes}[children] or name{attributes}'text'.
    static std::string describe(const XMLNode* node) {
        std::string text = node->mName;
        for (const auto& [name, value] : node->mAttributes)
            text += std::string("{") + name + "=" + value + "}";
        if (node->mKind == NODE_TEXT)
            return text + "'" + node->mText + "'";
        if (node->mKind == NODE_EMPTY)
            return text + "/";
        text += "[";
        for (const XMLNode* const child : static_cast<const XMLNodeElements*>(node)->children())
            text += describe(child) + " ";
        return text + "]";
    }

    MemoryFiles* mFiles;
    SharedPtr<Callback::FileIOCallback> mFileCallback;
    std::unique_ptr<XMLParser> mParser;
};

TEST_F(XmlTest, BuildsTreesOfWhatItAccepts) {
    struct Case {
        std::string mDocument;
        const char* mTree;
    };
    const Case cases[] = {
        {"<a></a>", "a[]"},
        {"\xEF\xBB\xBF junk <?xml version='1'?><!-- c --> <a>\n<!-- <x> --><?p ?><b/> </a>rest <",
         "a[b/ ]"},
        {"<a><b>t</b><c> two words </c><d x=\"1\" y = \"2\">3</d></a>",
         "a[b't' c' two words ' d{x=1}{y=2}'3' ]"},
        {"<a z=\"1\" b=\"2\" z=\"3\"><x/></a>", "a{b=2}{z=3}[x/ ]"},
        {"<a><x/><xi/><xi:in/></a>", "a[x/ xi/ xi:in/ ]"},
        {"<a><b>&amp;&#228;</b></a>", "a[b'&amp;&#228;' ]"},
        {"<a\nb=\"\n\"\t><c\n/></a\n>", "a{b=\n}[c/ ]"},
        {"<a><b/><c></c><d>\n</d></a>", "a[b/ c[] d[] ]"},
        {"<a><n.1,2-3:4/></a>", "a[n.1,2-3:4/ ]"},
        // a zero is white space and a name's character: it ends the name for all readers
        {std::string("<a><\0b/>\0<c\0d/></a>", 20), "a[/ c/ ]"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.mDocument);
        const XMLNodeElements* root = nullptr;
        EXPECT_EQ(raisedBy([&] { root = parse(row.mDocument); }), "");
        if (root != nullptr) {
            EXPECT_EQ(describe(root), row.mTree);
        }
    }
}

TEST_F(XmlTest, SaysWhatIsWrongAndWhere) {
    struct Case {
        const char* mDocument;
        const char* mMessage;
        int mLine;
        int mRow;
    };
    const char* const end = "XMLParser: End of buffer reached.";
    const char* const first = "name has invalid first char '1' , must be in "
                              "'abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_'";
    const Case cases[] = {
        {"", end, 1, 0},
        {"no markup", end, 1, 0},
        {"<a", end, 1, 0},
        {"<a/>", "XMLParser: First tag must be a root node", 1, 0},
        {"<a>text</a>", "XMLParser: First tag must be a root node", 1, 0},
        {"</a>", "XMLParser: Invalid XML format. Found nodetype : -3", 1, 0},
        {"<!DOCTYPE a><a></a>", "XMLParser: Invalid XML format. Found nodetype : -4", 1, 0},
        {"<? <a></a>", "XMLParser: Invalid XML format. Found nodetype : -4", 1, 0},
        {"<a><b></c></a>", "XMLParser: Name in starttag and endtag are not equal", 1, 8},
        {"<a>\n<b>\n</c></a>", "XMLParser: Name in starttag and endtag are not equal", 3, 3},
        {"<a>\n  <1/></a>", first, 2, 4},
        {"<a><b x='1'/></a>", "XMLParser: Expected envelop char '\"' , found '''", 1, 8},
        {"<a><b x 1/></a>", "XMLParser: Expected assign operator '=' but found '1'", 1, 8},
        {"<a><b x=\"1></b></a>", end, 1, 8},
        {"<a><b c=\"1\"/x></a>", "XMLParser: Invalid character 'x' in starttag.", 1, 11},
        {"<a><b$></b></a>", "XMLParser: Invalid character '$' in name.", 1, 5},
        {"<a><b>t<c/></b></a>", "XMLParser: Expected '/' but found 'c'", 1, 7},
        {"<a><b>t", end, 1, 6},
        {"<a><b></b>", end, 1, 8},
        {"<a><></a>", "name has invalid first char '>' ", 1, 4},
        // line feeds count once each: in front of a text, between tags, within them, at the place
        {"<a><b>\n\nt</b></c>", "XMLParser: Name in starttag and endtag are not equal", 3, 8},
        {"<a\n>\n<b>\n<c/></b></x>", "XMLParser: Name in starttag and endtag are not equal", 4, 11},
        {"<a><b>t</b\n", end, 2, 0},
        {"<a>x</a>", "XMLParser: First tag must be a root node", 1, 0},
        {"<a><b/>x</a>", "XMLParser: Invalid tag found.", 1, 7},
        {"<a><b>t</b x></a>", "XMLParser: Invalid character 'x' in starttag.", 1, 11},
        {"<a><xi:include href=\"b\"/></a>",
         "XMLParser: We have no FileSystem defined, but there is an xi:include tag in the current "
         "xml definition",
         -1, -1},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.mDocument);
        const std::string raised = raisedBy([&] { parse(row.mDocument); });
        const std::string message = std::string("XMLParserException: ") + row.mMessage;
        EXPECT_EQ(raised.substr(0, message.size()), message);
        if (row.mLine >= 0) {
            EXPECT_EQ(raised.substr(raised.find(" {Line")),
                      " {Line=" + std::to_string(row.mLine) + "} {Row=" + std::to_string(row.mRow) +
                          "}");
        }
    }
    mFiles->mLength = -1;
    EXPECT_EQ(raisedBy([&] { parse(""); }),
              "IOException: XMLParser: Cannot read complete file from stream");
    EXPECT_EQ(raisedBy([&] { mParser->parse(nullptr); }),
              "ArgumentNullException: XMLParser: Stream is a null pointer {ArgumentName=stream}");
}

TEST_F(XmlTest, NestsAsDeepAsItPromises) {
    const auto nested = [](int depth) {
        std::string document;
        for (int i = 0; i < depth; ++i)
            document += "<a>";
        for (int i = 0; i < depth; ++i)
            document += "</a>";
        return document;
    };
    Callback::CallbackFileStream out(mFileCallback);
    out.open("o", 3);
    EXPECT_EQ(raisedBy([&] { XMLWriter().write(out, parse(nested(4096))); }), "");
    EXPECT_NE(mFiles->mFiles["o"].find('\n' + std::string(1024, '\t') + "<a>"), std::string::npos);
    EXPECT_EQ(raisedBy([&] { parse(nested(4097)); }).substr(0, 76),
              "XMLParserException: XMLParser: Elements are nested deeper than 4096 levels {");
}

TEST_F(XmlTest, ReadsChildrenInTheirOrder) {
    const XMLNodeElements* const root =
        parse("<r i=\"12x\" t=\"TRUE\" u=\"trueish\" n=\"-5\" "
              "f=\"falsehood\" one=\"1\" zero=\"0\"><a>12abc</a><b/><c>1/2.5/-3</c>"
              "<d>7/8</d><e>True or "
              "so</e><e>1</e><e>tru</e><e>10</e><f><g/></f><h>18446744073709551615</h><u>-5</u>"
              "<u>4294967299</u><k></k><l>-9</l></r>");
    int number = 0;
    bool truth = false;
    EXPECT_TRUE(root->getAttribute(number, "i"));
    EXPECT_EQ(number, 12);
    EXPECT_TRUE(root->getAttribute(truth, "t"));
    EXPECT_TRUE(truth);
    EXPECT_FALSE(root->getAttribute(truth, "u"));
    unsigned int natural = 0;
    EXPECT_TRUE(root->getAttribute(natural, "n"));
    EXPECT_EQ(natural, 4294967291U);
    for (const auto& [name, expected] : {std::pair("f", false), {"one", true}, {"zero", false}}) {
        EXPECT_TRUE(root->getAttribute(truth, name));
        EXPECT_EQ(truth, expected) << name;
    }
    float real = 0;
    EXPECT_TRUE(root->getAttribute(real, "n"));
    EXPECT_EQ(real, -5);
    EXPECT_FALSE(root->getAttribute(real, "x") || root->getAttribute(truth, "x") ||
                 root->getAttribute(number, "x") || root->getAttribute(natural, "x"));
    EXPECT_EQ(root->getChild("b"), nullptr) << "not its turn";
    EXPECT_EQ(root->getLastReadElement(), nullptr);
    EXPECT_TRUE(root->getChildValue(number, "a"));
    EXPECT_EQ(number, 12);
    EXPECT_TRUE(root->getChildValue(number, "b"));
    EXPECT_EQ(number, 0) << "an empty element";
    EXPECT_STREQ(root->getLastReadElement()->mName, "b");
    Math::Vec3<float> space;
    EXPECT_TRUE(root->getChildValue(space, "c"));
    EXPECT_EQ(space, Math::Vec3<float>(1, 2.5F, -3));
    Math::Vec3<int> whole;
    EXPECT_TRUE(root->getChildValue(whole, "d"));
    EXPECT_EQ(whole, Math::Vec3<int>(7, 8, 0)) << "what is missing is 0";
    for (const bool expected : {true, true, false, false}) {
        EXPECT_TRUE(root->getChildValue(truth, "e"));
        EXPECT_EQ(truth, expected);
    }
    EXPECT_FALSE(root->getChildValue(number, "f")) << "it has children";
    std::uint64_t large = 0;
    EXPECT_TRUE(root->getChildValue(large, "h"));
    EXPECT_EQ(large, 18446744073709551615U);
    for (const unsigned int expected : {4294967291U, 3U}) {
        EXPECT_TRUE(root->getChildValue(natural, "u"));
        EXPECT_EQ(natural, expected) << "cut to 32 bits";
    }
    const char* text = nullptr;
    EXPECT_TRUE(root->getChildText(text, "k"));
    EXPECT_STREQ(text, "");
    long long any = 0;
    root->getNextElement()->getValue(any);
    EXPECT_EQ(any, -9);
    EXPECT_EQ(root->getNextElement(), nullptr);
    EXPECT_EQ(root->getChildElements("a"), nullptr);
}

TEST_F(XmlTest, ReportsTheWholePathOfWhatIsMissing) {
    std::string document;
    std::string path;
    for (char name = 'a'; name <= 't'; ++name) {
        document += std::string("<") + name + ">";
        path += std::string(path.empty() ? "'" : "->'") + name + "'";
    }
    for (char name = 't'; name >= 'a'; --name)
        document += std::string("</") + name + ">";
    const XMLNodeElements* node = parse(document);
    while (!node->children().empty())
        node = static_cast<const XMLNodeElements*>(node->children().back());
    int number = 0;
    EXPECT_FALSE(getRequiredValue(number, node, "z"));
    EXPECT_EQ(Reports::take(), Texts{"|In " + path + " the tag 'z' is required !"});
}

TEST_F(XmlTest, RemovingAChildLeavesTheCursor) {
    XMLTreeBuilder builder;
    builder.begin("r", false);
    for (const char* name : {"a", "b", "c"})
        builder.addEmptyNode(name);
    XMLNodeElements* const root = builder.getRoot();
    root->getNextElement();
    builder.addEmptyNode("d"); // begins anew
    EXPECT_EQ(root->children().size(), 4U);
    root->removeLastElement();
    EXPECT_STREQ(root->getNextElement()->mName, "a");
    EXPECT_STREQ(root->removeLastElement()->mName, "c");
    EXPECT_STREQ(root->getNextElement()->mName, "b");
    EXPECT_EQ(root->getNextElement(), nullptr);
    root->resetCursor();
    root->getNextElement();
    root->removeLastElement();
    EXPECT_EQ(root->getNextElement(), nullptr) << "the next one was removed";
    EXPECT_STREQ(root->getLastReadElement()->mName, "a");
}

TEST_F(XmlTest, BuildsTreesWithCopiedStrings) {
    XMLTreeBuilder builder;
    {
        const std::string gone = "root";
        builder.begin(gone.c_str(), true);
    }
    builder.addTextNode("v", Math::Vec3<float>(1, 2.5F, -3));
    builder.addAttribute("b", 2);
    builder.addAttribute("a", 0.5F);
    builder.addAttribute("b", true);
    builder.beginElements("list");
    builder.addTextNode("n", std::int64_t{-9000000000});
    builder.addTextNode("t", false);
    builder.addTextNode("w", Math::Vec2<unsigned int>(7, 4294967295U));
    builder.addEmptyNode("last");
    builder.removeLastNode();
    EXPECT_STREQ(builder.getCurrent()->mName, "w");
    EXPECT_FALSE(builder.endElement("other"));
    EXPECT_TRUE(builder.endElement("list"));
    EXPECT_FALSE(builder.endElement()) << "the root stays open";
    char text[] = "x";
    builder.addTextNode("s", text);
    builder.setName("long"); // in place of the former, which goes
    builder.setText("y");
    builder.addTextNode("l", -5LL);
    XMLTreeBuilder grafted;
    grafted.begin("more", true);
    builder.addTree(&grafted);
    EXPECT_EQ(grafted.getRoot(), nullptr);
    EXPECT_EQ(describe(builder.getRoot()), "root[v{a=0.500000}{b=1}'1/2.5/-3' list[n'-9000000000' "
                                           "t'false' w'7/4294967295' ] long'y' l'-5' more[] ]");
    EXPECT_EQ(Reports::take(), Texts{});

    builder.setText("x");
    builder.beginNode(5);
    grafted.beginNode(7); // without a root too
    builder.addTree(nullptr);
    grafted.begin("plain", false);
    builder.addTree(&grafted);
    grafted.addTextNode("n", 1.0);
    grafted.addAttribute("i", 1);
    grafted.addAttribute("u", 1U);
    grafted.addAttribute("b", true);
    grafted.addAttribute("f", 1.0F);
    static_cast<void>(grafted.getRoot()->getLastElement());
    grafted.getRoot()->mKind = 9;
    grafted.begin(false);
    const char* const unkept = "copyStrings|Used without copyStrings enabled !";
    EXPECT_EQ(Reports::take(),
              (Texts{"|Cannot set text for node of type : 2", "|Unknown node type: 5",
                     "|Unknown node type: 7", "tree|Tree cannot be a NULL pointer",
                     "tree->copyStrings == copyStrings|We cannot add a tree with a different "
                     "copyStrings flag",
                     unkept, unkept, unkept, unkept, unkept,
                     "!elements.empty()|Cannot get last element from an empty elements node",
                     "|Undefined node type: 9"}));
}

} // namespace ZUNO::Tests
