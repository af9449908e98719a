// What every implementation of XML documents has to do.
#include "platform/Xml.h"

#include <gtest/gtest.h>

#include <thread>

#include "contract/MachineUnderTest.h"
#include "platform/Com.h"
#include "support/uText.h"

namespace varcolin {
namespace {

class XmlContract : public ::testing::Test {
 protected:
  IXml& Xml = testing::MachineUnderTest().Xml;
  const TComScope Com{testing::MachineUnderTest().Com, ECom::Apartment};

  std::unique_ptr<IXmlCursor> Root(std::string_view ADocument) {
    std::unique_ptr<IXmlCursor> root;
    EXPECT_EQ(Xml.Parse(std::as_bytes(std::span(ADocument)), root), WinError::Success) << ADocument.substr(0, 200);
    return root;
  }
  TWinError Error(std::string_view ADocument) {
    std::unique_ptr<IXmlCursor> root;
    const TWinError error = Xml.Parse(std::as_bytes(std::span(ADocument)), root);
    EXPECT_EQ(error == WinError::Success, root != nullptr);
    return error;
  }
  static std::string Attribute(const IXmlCursor* AElement, TXmlName AName) {
    std::u16string value = u"untouched";
    if (AElement == nullptr) return "no element";
    return AElement->GetAttribute(AName, value) ? ToUtf8(value) : "none, " + ToUtf8(value);
  }
  /// The elements alone from the cursor's on, each with its children in brackets.
  static std::string TreeOf(IXmlCursor& ACursor) {
    std::string text = ToUtf8(ACursor.Name());
    if (!ACursor.MoveToFirstChild()) return text;
    std::string children = TreeOf(ACursor);
    while (ACursor.MoveToNext()) children += " " + TreeOf(ACursor);
    EXPECT_TRUE(ACursor.MoveToParent());
    return text + "[" + children + "]";
  }
};

TEST_F(XmlContract, ElementsAreFoundAmongEverythingElse) {
  const auto root = Root(
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<!-- before --><?go on?>\n"
      "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v3\">text<!-- c --><?target data?><b><package/></b>\n"
      "<![CDATA[<package/>]]><package n='1'><c/></package><Package n='2'/><package n='3'/>tail</assembly><!-- z -->\n");
  ASSERT_TRUE(root);
  EXPECT_EQ(TreeOf(*root), "assembly[b[package] package[c] Package package]");
  EXPECT_FALSE(root->MoveToParent());
  EXPECT_FALSE(root->MoveToChild("c")) << "no child of its own";
  EXPECT_FALSE(root->MoveToChild("target")) << "an instruction is no element";
  EXPECT_FALSE(root->MoveToChild(""));
  EXPECT_EQ(TreeOf(*root), "assembly[b[package] package[c] Package package]") << "what finds nothing moves nothing";
  ASSERT_TRUE(root->MoveToChild("package"));
  EXPECT_EQ(Attribute(root.get(), "n"), "1");
  EXPECT_TRUE(root->MoveToNext());
  EXPECT_EQ(Attribute(root.get(), "n"), "2");
  EXPECT_TRUE(root->MoveToNext());
  EXPECT_FALSE(root->MoveToNext());
  EXPECT_EQ(Attribute(root.get(), "n"), "3") << "behind the last one nothing moves";
  EXPECT_TRUE(root->MoveToParent());
  ASSERT_TRUE(root->MoveToChild("Package"));
  EXPECT_EQ(Attribute(root.get(), "n"), "2");
  EXPECT_FALSE(root->MoveToFirstChild());
  EXPECT_TRUE(root->MoveToParent());
  EXPECT_EQ(root->Name(), u"assembly");
}

TEST_F(XmlContract, NamesAreThoseThatAreWritten) {
  const auto root = Root(
      "<asm:assembly xmlns:asm='urn:a' xmlns:other='urn:a' xmlns='urn:b' asm:name='1' name='2' Name='3'>"
      "<other:package/><asm:package/><package/></asm:assembly>");
  ASSERT_TRUE(root);
  EXPECT_EQ(TreeOf(*root), "asm:assembly[other:package asm:package package]");
  EXPECT_EQ(Attribute(root.get(), "asm:name"), "1");
  EXPECT_EQ(Attribute(root.get(), "name"), "2");
  EXPECT_EQ(Attribute(root.get(), "Name"), "3");
  EXPECT_EQ(Attribute(root.get(), "other:nothing"), "none, untouched");
  EXPECT_TRUE(root->MoveToChild("package"));
  EXPECT_FALSE(root->MoveToNext()) << "the one without a prefix is the last";
}

TEST_F(XmlContract, ValuesAreResolvedAndNormalised) {
  const auto root = Root(
      "<a empty='' refs='&lt;&amp;&gt;&quot;&apos;&#65;&#x42;&#x20AC;&#x1F600;' blanks=' x\ty\r\nz ' "
      "kept='x&#9;&#10;y' "
      "quotes=\"it's\"/>");
  EXPECT_EQ(Attribute(root.get(), "empty"), "");
  EXPECT_EQ(Attribute(root.get(), "refs"), "<&>\"'AB\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(Attribute(root.get(), "blanks"), " x y z ");
  EXPECT_EQ(Attribute(root.get(), "kept"), "x\t\ny");
  EXPECT_EQ(Attribute(root.get(), "quotes"), "it's");
}

TEST_F(XmlContract, EncodingsOfTheMarkAndOfTheDeclaration) {
  const std::string wanted = "Gr\xC3\xBC\xC3\x9F";  // "Grüß"
  const auto wide = [](std::string_view AText, bool ABigEndian) {
    std::string bytes;
    for (const char16_t unit : FromUtf8(AText)) {
      const char low = static_cast<char>(unit & 0xFF);
      const char high = static_cast<char>(unit >> 8);
      bytes += ABigEndian ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
  };
  const std::string element = "<a v='" + wanted + "'/>";
  const std::string documents[] = {
      element,
      "\xEF\xBB\xBF" + element,
      "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?>" + element,
      "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>" + element,
      "<?xml version='1.0' encoding='iso-8859-1'?><a v='Gr\xFC\xDF'/>",
      wide("\xEF\xBB\xBF" + element, false),
      wide("\xEF\xBB\xBF" + element, true),
      wide("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-16'?>" + element, false),
  };
  for (const std::string& document : documents) {
    EXPECT_EQ(Attribute(Root(document).get(), "v"), wanted) << document;
  }
}

TEST_F(XmlContract, WhatIsNoDocumentIsRefused) {
  using namespace std::string_view_literals;
  for (const std::string_view document : {""sv,
                                          "   \n"sv,
                                          "text"sv,
                                          "<"sv,
                                          "<a"sv,
                                          "<a>"sv,
                                          "<a></b>"sv,
                                          "<a><b></a></b>"sv,
                                          "<a/><b/>"sv,
                                          "<a/>text"sv,
                                          "text<a/>"sv,
                                          "<a x=1/>"sv,
                                          "<a x='1/>"sv,
                                          "<a x/>"sv,
                                          "</a>"sv,
                                          "<!-- only --><?and this?>"sv,
                                          "<a><!-- </a>"sv,
                                          "<a><![CDATA[</a>"sv,
                                          "\0\0\0\0"sv,

                                          "MZ\x90\0\x03\0\0\0\x04"sv,
                                          "\xFF\xFE<"sv,
                                          "\xEF\xBB\xBF"sv,
                                          "\xFF\xFE\x3C\xD8\x3C\xD8"sv}) {
    EXPECT_EQ(Error(document), WinError::BadFormat) << document;
  }
}

TEST_F(XmlContract, DeclarationsOfTypesAreRefusedBeforeTheyDoAnything) {
  std::string bomb = "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY e0 'ha'>";
  for (int level = 1; level <= 40; ++level) {
    const std::string inner = "&e" + std::to_string(level - 1) + ";";
    bomb += "<!ENTITY e" + std::to_string(level) + " '" + inner + inner + inner + inner + "'>";
  }
  bomb += "]><a v='&e40;'>&e40;</a>";
  EXPECT_EQ(Error(bomb), WinError::BadFormat);
  for (const std::string_view document :
       {"<!DOCTYPE a><a/>", "<!DOCTYPE a SYSTEM 'file:///C:/Windows/win.ini'><a/>",
        "<!DOCTYPE a SYSTEM 'http://localhost:1/a.dtd'><a/>",
        "<!-- --><!DOCTYPE a [<!ENTITY x SYSTEM 'C:\\Windows\\win.ini'>]><a>&x;</a>"}) {
    EXPECT_EQ(Error(document), WinError::BadFormat) << document;
  }
}

TEST_F(XmlContract, OutlandishDocumentsEnd) {
  constexpr int Many = 100'000;
  std::string deep;
  for (int level = 0; level < Many; ++level) deep += "<a>";
  for (int level = 0; level < Many; ++level) deep += "</a>";
  const TWinError error = Error(deep);  // a parser may limit the depth
  EXPECT_TRUE(error == WinError::Success || error == WinError::BadFormat) << error;

  std::string broad = "<a v='" + std::string(1'000'000, 'x') + "'>";
  for (int index = 0; index < Many; ++index) broad += "<b/>";
  const auto root = Root(broad + "</a>");
  ASSERT_TRUE(root);
  EXPECT_EQ(Attribute(root.get(), "v").size(), 1'000'000U);
  EXPECT_FALSE(root->MoveToChild("c"));
}

TEST_F(XmlContract, AThreadThatHasNotJoinedComParsesNothing) {
  TWinError error = WinError::Success;
  std::thread([&] { error = Error("<a/>"); }).join();
  EXPECT_NE(error, WinError::Success);
  EXPECT_NE(error, WinError::BadFormat);
}

}  // namespace
}  // namespace varcolin
