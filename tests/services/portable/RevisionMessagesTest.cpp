#include <gtest/gtest.h>

#include "RecordingHost.h"
#include "host/portable/Documents.h"
#include "services/RevisionMessages.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::host::portable;

constexpr const char* kText =
    "~026ef Ein anderer Revisionsvorgang druckt zur Zeit in Ihr Ausgabeverzeichnis.";

class RevisionMessagesTest : public ::testing::Test {
 protected:
  RecordingHost host;
  std::shared_ptr<OwnerObject> owner = std::make_shared<OwnerObject>();
  std::shared_ptr<DocumentObject> document = std::make_shared<DocumentObject>("A-100", owner);

  void Show() { ShowMessage(kText, 16, "~003c1 Revision", document); }
  [[nodiscard]] size_t Entries() const { return owner->environment->messagePack->entries.size(); }
};

TEST_F(RevisionMessagesTest, WithoutTheOptionAMessageBoxIsShown) {
  Show();
  ASSERT_EQ(host.messageBoxes.size(), 1u);
  EXPECT_EQ(host.messageBoxes[0].prompt, kText);
  EXPECT_EQ(host.messageBoxes[0].buttons, 16);
  EXPECT_EQ(host.messageBoxes[0].title, "~003c1 Revision");
  EXPECT_EQ(Entries(), 0u);
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(RevisionMessagesTest, TheOptionFalseSendsTheMessageToThePackWithoutTitle) {
  owner->options->Set("ShowRevisionMessages", false);
  Show();
  EXPECT_TRUE(host.messageBoxes.empty());
  ASSERT_EQ(Entries(), 1u);
  const auto& entry = *owner->environment->messagePack->entries[0];
  EXPECT_EQ(entry.description, kText);
  EXPECT_EQ(entry.VemraObject(), document);
}

TEST_F(RevisionMessagesTest, TheOptionValuesThatMeanFalse) {
  for (const Variant& value :
       {Variant{false}, Variant{int32_t{0}}, Variant{int16_t{0}}, Variant{std::string("False")},
        Variant{std::string("0")}, Variant{}}) {
    owner->options->Set("SHOWREVISIONMESSAGES", value);
    EXPECT_FALSE(ShowRevMessages(owner)) << VariantToString(value);
  }
  for (const Variant& value : {Variant{true}, Variant{int32_t{1}}, Variant{std::string("True")}}) {
    owner->options->Set("ShowRevisionMessages", value);
    EXPECT_TRUE(ShowRevMessages(owner)) << VariantToString(value);
  }
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(RevisionMessagesTest, AnUnreadableOptionKeepsTheBox) {
  owner->options->Set("ShowRevisionMessages", std::string("sometimes"));
  EXPECT_TRUE(ShowRevMessages(owner));
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{13});
}

TEST_F(RevisionMessagesTest, NoOwnerMeansMessageBoxes) {
  EXPECT_TRUE(ShowRevMessages(nullptr));
  const auto orphan = std::make_shared<DocumentObject>("B-7", nullptr);
  ShowMessage(kText, 16, "t", orphan);
  EXPECT_EQ(host.messageBoxes.size(), 1u);
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(RevisionMessagesTest, FailuresLoseTheMessageAndAreReported) {
  ShowMessage(kText, 16, "t", nullptr);
  owner->options->Set("ShowRevisionMessages", false);
  owner->environment->messagePack = nullptr;
  Show();
  EXPECT_TRUE(ShowRevMessages(std::make_shared<DocumentObject>()));
  EXPECT_TRUE(host.messageBoxes.empty());
  // A document is no owner: 13.
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{91, 91, 13}));
}

TEST_F(RevisionMessagesTest, ThePackTellsItsListenerAboutCompleteEntries) {
  owner->options->Set("ShowRevisionMessages", false);
  std::vector<std::string> heard;
  owner->environment->messagePack->onEntry = [&heard](const MessageEntryObject& entry) {
    heard.push_back(entry.description);
  };
  Show();
  EXPECT_EQ(heard, (std::vector<std::string>{kText}));
}

}  // namespace
}  // namespace kestrivon::test
