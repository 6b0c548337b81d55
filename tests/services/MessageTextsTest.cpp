#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "services/MessageTexts.h"

namespace kestrivon::test {
namespace {

TEST(MessageTexts, AreIdentifierTextsInIdentifierOrder) {
  const std::regex shape("~[0-9a-f]{5} [^ ].*");
  std::set<std::string> identifiers;
  std::string previous;
  for (const char* text : messages::kAll) {
    EXPECT_TRUE(std::regex_match(text, shape)) << text;
    const std::string identifier = std::string(text).substr(0, 6);
    EXPECT_TRUE(identifiers.insert(identifier).second) << text;
    EXPECT_LT(previous, identifier) << text;
    previous = identifier;
  }
  EXPECT_EQ(identifiers.size(), 42u);
  EXPECT_STREQ(messages::kFolderInUse,
               "~026ef Ein anderer Revisionsvorgang druckt zur Zeit in Ihr Ausgabeverzeichnis.");
  EXPECT_STREQ(messages::kPortsProperty, "~02827 'Anschlüsse|Anschluß'");
}

}  // namespace
}  // namespace kestrivon::test
