// The OLE strings of the library boundary.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "intf/intf_Base.h"

namespace varcolin {
namespace {

TEST(OleStrings, KeepTheTextAndTheSystemsLayout) {
  using namespace std::string_view_literals;
  const std::u16string longText(100'000, u'x');
  for (const std::u16string_view text :
       {u""sv, std::u16string_view(), u"a"sv, u"a\0b\0"sv, u"\xD800"sv, u"Grüße"sv, std::u16string_view(longText)}) {
    const TOleText owned(AllocOleString(text));
    const char16_t* const raw = owned.View().data();
    ASSERT_NE(raw, nullptr);  // an empty text is not the null string
    EXPECT_TRUE(owned.View() == text);
    EXPECT_EQ(raw[text.size()], u'\0');
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char*>(raw) - sizeof(bytes), sizeof(bytes));
    EXPECT_EQ(bytes, text.size() * sizeof(char16_t));
  }
}

TEST(OleStrings, NullAndImpossibleLengths) {
  EXPECT_EQ(OleStringLength(nullptr), 0u);
  FreeOleString(nullptr);
  // no memory is touched: the length alone is too large
  EXPECT_EQ(AllocOleString({u"x", std::size_t{0x7FFFFFFF}}), nullptr);
}

}  // namespace
}  // namespace varcolin
