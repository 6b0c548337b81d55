// The revision messages through COM: the component's document seam over
// the host kit's document class, as registered in the test prefix.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "RecordingHost.h"
#include "WineComTest.h"
#include "core/TraceLog.h"
#include "host/Documents.h"
#include "host/win/ComHostObject.h"
#include "services/RevisionMessages.h"

namespace kestrivon::test {
namespace {

constexpr const char* kText = "~026ef Ein anderer Revisionsvorgang druckt zur Zeit.";

std::wstring LogPath() {
  wchar_t temp[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, temp);
  return std::wstring(temp) + L"kestrivon-messages-" + std::to_wstring(GetCurrentProcessId()) +
         L".log";
}

// The MESSAGE entries of the host kit's log: description and object name.
std::vector<std::vector<std::string>> LoggedMessages() {
  std::ifstream in{std::filesystem::path(LogPath())};
  std::vector<std::vector<std::string>> messages;
  std::string line;
  while (std::getline(in, line)) {
    std::vector<std::string> fields = hostkit::SplitEntry(line);
    if (fields.size() >= 2 && fields[1] == "MESSAGE") {
      messages.emplace_back(fields.begin() + 2, fields.end());
    }
  }
  return messages;
}

// A host kit document whose owner has the option as given (nullptr: none).
host::HostObjectRef NewDocument(const wchar_t* showRevisionMessages) {
  SetEnvironmentVariableW(L"VEMRA_DOCUMENT_NAME", L"A-100");
  SetEnvironmentVariableW(L"VEMRA_SHOW_REVISION_MESSAGES", showRevisionMessages);
  CLSID clsid;
  if (FAILED(CLSIDFromProgID(L"VemraHostKit.Document", &clsid))) return nullptr;
  comkit::ComPtr<IDispatch> document;
  CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, document.PutVoid());
  return host::win::WrapHostObject(document.Get());
}

class MessagesThroughCom : public ::testing::Test {
 protected:
  RecordingHost host;
  size_t before = LoggedMessages().size();
};

TEST_F(MessagesThroughCom, WithoutTheOptionABoxIsShown) {
  const auto document = NewDocument(nullptr);
  ASSERT_TRUE(document);
  ShowMessage(kText, 16, "~003c1 Revision", document);
  EXPECT_EQ(host.messageBoxes.size(), 1u);  // the box itself: RevisionMessagesTest
  EXPECT_EQ(LoggedMessages().size(), before);
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(MessagesThroughCom, TheOptionFalseFillsTheMessagePack) {
  for (const wchar_t* value : {L"false", L"0"}) {
    const auto document = NewDocument(value);
    ASSERT_TRUE(document);
    ShowMessage(kText, 16, "~003c1 Revision", document);
  }
  EXPECT_TRUE(host.messageBoxes.empty());
  const auto messages = LoggedMessages();
  ASSERT_EQ(messages.size(), before + 2);
  EXPECT_EQ(messages.back(), (std::vector<std::string>{kText, "A-100"}));
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(MessagesThroughCom, OwnersAnswerThroughTheirSlots) {
  const auto shown = NewDocument(L"true");
  const auto hidden = NewDocument(L"false");
  ASSERT_TRUE(shown && hidden);
  EXPECT_TRUE(ShowRevMessages(host::AsVemraObject(shown)->Owner()));
  EXPECT_FALSE(ShowRevMessages(host::AsVemraObject(hidden)->Owner()));
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(MessagesThroughCom, AnObjectWithoutTheBaseInterfaceIsReported) {
  const auto document = NewDocument(L"false");
  ASSERT_TRUE(document);
  const host::HostObjectRef owner = host::AsVemraObject(document)->Owner();
  ShowMessage(kText, 16, "t", owner);
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|Sub ShowMessage"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{static_cast<int32_t>(E_NOINTERFACE)});
  EXPECT_EQ(LoggedMessages().size(), before);
}

}  // namespace
}  // namespace kestrivon::test

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  SetEnvironmentVariableW(L"VEMRA_TRACE_LOG", kestrivon::test::LogPath().c_str());
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int result = RUN_ALL_TESTS();
  if (kestrivon::wine_test::StrictHostFindings() != 0) result = 1;
  CoUninitialize();
  DeleteFileW(kestrivon::test::LogPath().c_str());
  return result;
}
