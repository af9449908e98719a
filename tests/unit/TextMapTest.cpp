// The map of texts against the standard library's.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <string>

#include "support/uFewOf.h"
#include "support/uTextMap.h"

namespace varcolin {
namespace {

std::u16string TextOfNumber(unsigned ANumber, bool AUpper) {
  // lengths from nothing on, and many texts with the same beginning
  const std::u16string text = ANumber == 0 ? u"" : std::u16string(ANumber % 40, u'é') + u"key" + IntToStr(ANumber);
  return AUpper ? UpperCase(text) : text;
}

TEST(TextMapTest, AddingAndRemovingInAnyOrderKeepsWhatTheOtherTextsHave) {
  // few texts are searched without a table, the others with one
  for (const unsigned texts : {7U, 900U}) {
    std::mt19937 random(texts);
    TTextMap<std::shared_ptr<unsigned>> map;
    std::map<std::u16string, unsigned, TTextLess> expected;
    for (unsigned step = 0; step < 20'000; ++step) {
      const std::u16string text = TextOfNumber(random() % texts, random() % 2 == 0);
      if (random() % 2 == 0) {
        ASSERT_EQ(map.Remove(text), expected.erase(text) == 1);
      } else {
        const auto [value, isNew] = map.Add(text, std::make_shared<unsigned>(step));
        ASSERT_EQ(isNew, expected.emplace(text, step).second);
        ASSERT_EQ(**value, expected[text]);
      }
      const std::u16string other = TextOfNumber(random() % texts, true);
      const auto known = expected.find(other);
      const auto* const found = map.Find(other);
      ASSERT_EQ(found != nullptr, known != expected.end());
      if (found != nullptr) {
        ASSERT_EQ(**found, known->second);
      }
      ASSERT_EQ(map.Empty(), expected.empty());
    }
    map.Clear();
    EXPECT_TRUE(map.Empty() && map.Find(TextOfNumber(1, false)) == nullptr);
  }
}

TEST(TextMapTest, TheFirstOfSeveralUnderATextGivesWayToTheNext) {
  TTextMap<TFewOf<int>> map;
  for (const int element : {1, 2, 3}) AddUnder(map, u"name", element);
  TFewOf<int>& few = *map.Find(u"NAME");
  EXPECT_TRUE(few.Remove(1));
  EXPECT_EQ(few.First(), 2);
  EXPECT_EQ(*few.Find([](int AElement) { return AElement > 2; }), 3);
  EXPECT_TRUE(few.Remove(3));
  EXPECT_FALSE(few.Remove(2)) << "the only one stays";
}

}  // namespace
}  // namespace varcolin
