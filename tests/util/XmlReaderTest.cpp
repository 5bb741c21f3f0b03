#include "kvsig/util/XmlReader.h"

#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

TEST(XmlReader, WalksOneLevelAtATimeAndGivesInnerDocuments) {
    XmlReader xml;
    ASSERT_TRUE(xml.setDocument("<?xml version='1.0'?><!-- a --><Top><A n='1'><B n='2'/></A>"
                                "<C/><A n='3' m='a&amp;b'/>"
                                "<N> a &amp; b </N><D><A x='&lt;&quot;'/><A/></D></Top>"));
    EXPECT_FALSE(xml.findElement("A"));
    ASSERT_TRUE(xml.findElement("Top") && xml.intoElement());
    ASSERT_TRUE(xml.findElement("A"));
    EXPECT_EQ(xml.attribute("n"), "1");
    ASSERT_TRUE(xml.intoElement());
    ASSERT_TRUE(xml.findElement("B"));
    EXPECT_EQ(xml.attribute("n"), "2");
    EXPECT_FALSE(xml.findElement("A"));
    ASSERT_TRUE(xml.outOfElement());
    EXPECT_EQ(xml.attribute("n"), "1");
    ASSERT_TRUE(xml.findElement("A"));
    EXPECT_THAT(xml.attributes(), ElementsAre(Pair("n", "3"), Pair("m", "a&b")));
    EXPECT_FALSE(xml.findElement("A"));
    EXPECT_EQ(xml.attribute("n"), "3");
    xml.resetPosition();
    ASSERT_TRUE(xml.findElement("A"));
    EXPECT_EQ(xml.attribute("n"), "1");
    ASSERT_TRUE(xml.findElement("N"));
    EXPECT_EQ(xml.innerDocument(), " a & b ");
    ASSERT_TRUE(xml.findElement("D"));
    XmlReader inner;
    ASSERT_TRUE(inner.setDocument(xml.innerDocument()) && inner.findElement("A"));
    EXPECT_EQ(inner.attribute("x"), "<\"");
    EXPECT_TRUE(inner.findElement("A"));
    ASSERT_TRUE(xml.outOfElement());
    EXPECT_FALSE(xml.outOfElement());
}

TEST(XmlReader, RefusesHostileDocumentsAndStaysUsable) {
    const test::TempDir dir;
    const std::string secret = dir.write("secret", "told");
    std::string bomb = "<!DOCTYPE t [<!ENTITY a 'xxxxxxxxxx'>";
    for (char c = 'b'; c <= 'z'; ++c)
        bomb += std::string("<!ENTITY ") + c + " '&" + char(c - 1) + ";&" + char(c - 1) + ";'>";
    XmlReader xml;
    std::string reason;
    std::string deep;
    for (int i = 0; i < 65; ++i)
        deep = "<a>" + deep + "</a>";
    EXPECT_FALSE(xml.setDocument(deep, &reason));
    EXPECT_THAT(reason, HasSubstr("deeper"));
    EXPECT_FALSE(xml.findElement("a"));
    ASSERT_TRUE(xml.setDocument(bomb + "]><t v='&z;'/>"));
    ASSERT_TRUE(xml.findElement("t"));
    EXPECT_EQ(xml.attribute("v"), "&z;");
    ASSERT_TRUE(
        xml.setDocument("<!DOCTYPE t [<!ENTITY s SYSTEM 'file://" + secret + "'>]><t>&s;</t>"));
    ASSERT_TRUE(xml.findElement("t"));
    EXPECT_EQ(xml.innerDocument(), "&s;");
    for (const char* broken : {"<a", "<a></b>", "<a x=1/>", "<a x='1", "<![CDATA[", "<!DOCTYPE [["})
        EXPECT_FALSE(xml.setDocument(broken, &reason)) << broken;
    EXPECT_THAT(reason, HasSubstr("not well-formed XML at byte"));
    EXPECT_FALSE(xml.loadFile(dir.file("absent").c_str(), &reason));
    EXPECT_FALSE(xml.loadFile(dir.file("").c_str(), &reason));
    EXPECT_FALSE(xml.intoElement() || xml.outOfElement() || xml.findElement(nullptr));
    EXPECT_EQ(xml.attribute(nullptr) + xml.innerDocument(), "");
}

} // namespace
} // namespace kvsig
