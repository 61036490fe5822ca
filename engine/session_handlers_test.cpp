#include "engine/session_handlers.h"

#include <cstring>

#include "engine/request_kit.h"
#include "engine/session.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SessionRequests = RequestTest;

TEST_F(SessionRequests, TellWhatTheEngineIs) {
  EXPECT_EQ(ask(Command::IsUTF8mode).FirstLong(), 1);
  EXPECT_EQ(ask(Command::IsDistributedMode).FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetNestDepth).FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetKovaOutputWidth).FirstLong(), 80);
  EXPECT_STREQ(ask(Command::GetKOVALocale).FirstString(), "C.UTF-8");
  EXPECT_STREQ(ask(Command::GetCLocale).FirstString(), "C");
}

TEST_F(SessionRequests, TellWhetherTheEngineIsDriven) {
  EXPECT_EQ(ask(Command::IsXDriven).FirstLong(), 0);
  state_.session.isDriven = true;
  EXPECT_EQ(ask(Command::IsXDriven).FirstLong(), 1);
}

TEST_F(SessionRequests, TellTheLowestAndTheHighestNumber) {
  const CleXDSmb reply = ask(Command::GetKOVALowHigh);
  ASSERT_EQ(reply.Doubles().Size(), 2);
  unsigned char bytes[8];
  std::memcpy(bytes, &reply.Doubles()[0], sizeof bytes);
  EXPECT_THAT(bytes, ElementsAre(0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xEF, 0xFF)) << "next to system-missing";
  std::memcpy(bytes, &reply.Doubles()[1], sizeof bytes);
  EXPECT_THAT(bytes, ElementsAre(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xEF, 0x7F));
}

TEST_F(SessionRequests, KeepTheOutputLanguage) {
  EXPECT_STREQ(ask(Command::GetOutputLanguage).FirstString(), "English");
  EXPECT_EQ(tell(Command::SetOutputLanguage, "pt-BR"), 0);
  EXPECT_STREQ(ask(Command::GetOutputLanguage).FirstString(), "pt-BR");
  const std::string forty(40, 'x');
  for (const std::string& text : {std::string(), forty + "x", std::string("a b"), std::string("fran\u00E7ais"),
                                  std::string("a\0", 2), std::string("<b>")}) {
    EXPECT_EQ(tell(Command::SetOutputLanguage, text), 98062) << text;
  }
  EXPECT_STREQ(ask(Command::GetOutputLanguage).FirstString(), "pt-BR");
  EXPECT_EQ(tell(Command::SetOutputLanguage, forty), 0);
}

TEST_F(SessionRequests, KeepModes) {
  struct Row {
    Command setter;
    Command getter;
  };
  const Row rows[] = {{Command::SetXDriveMode, Command::GetXDriveMode},
                      {Command::SetZenthorServerMode, Command::GetZenthorServerMode}};
  for (const Row& row : rows) {
    EXPECT_EQ(ask(row.getter).FirstLong(), 0);
    EXPECT_EQ(tell(row.setter, 2147483647), 0);
    EXPECT_EQ(tell(row.setter, -1), 98061);
    EXPECT_EQ(ask(row.getter).FirstLong(), 2147483647);
  }
  EXPECT_EQ(tell(Command::SetMode, 3), 0);
  EXPECT_EQ(tell(Command::SetMode, -3), 98061);
  EXPECT_STREQ(ask(Command::GetSetting, "Mode", "Run").FirstString(), "3");
}

TEST_F(SessionRequests, KeepTheHost) {
  EXPECT_THAT(textsOf(ask(Command::GetHostAppNameAndVersion)), ElementsAre("KovaDX", engineVersion()));
  EXPECT_EQ(tell(Command::SetHostAppNameAndVersion, "Viewer \"2\"", ""), 0);
  EXPECT_THAT(textsOf(ask(Command::GetHostAppNameAndVersion)), ElementsAre("Viewer \"2\"", ""));
  EXPECT_EQ(tell(Command::SetHostAppNameAndVersion, "Viewer", "\xFF"), 98012);
  EXPECT_THAT(textsOf(ask(Command::GetHostAppNameAndVersion)), ElementsAre("Viewer \"2\"", "")) << "both or none";
  EXPECT_EQ(ask(Command::GetHostAppCopyright).Strings().Size(), 1) << "an empty text at first";
  EXPECT_EQ(tell(Command::SetHostAppCopyright, "\u00A9 2024"), 0);
  EXPECT_EQ(tell(Command::SetHostAppCopyright, std::string("\0", 1)), 98013);
  EXPECT_STREQ(ask(Command::GetHostAppCopyright).FirstString(), "\u00A9 2024");
}

TEST_F(SessionRequests, TellSettingsByTwoWords) {
  main().source = "/data/main.json";
  struct Row {
    const char* item;
    const char* subItem;
    const char* value;
  };
  const Row rows[] = {
      {"Data", "Active", "main"},  {"data", "SOURCE", "/data/main.json"},
      {"Data", "Weight", "score"}, {"Engine", "Encoding", "UTF-8"},
      {"Host", "Name", "KovaDX"},  {"Host", "Copyright", ""},
      {"Locale", "C", "C"},        {"Locale", "Engine", "C.UTF-8"},
      {"Mode", "Drive", "0"},      {"Mode", "Run", "0"},
      {"Mode", "Server", "0"},     {"Output", "Language", "English"},
      {"Output", "Width", "80"},
  };
  for (const Row& row : rows) {
    const CleXDSmb reply = ask(Command::GetSetting, row.item, row.subItem);
    EXPECT_EQ(reply.GetErrorCode(), 0) << row.item << row.subItem;
    EXPECT_STREQ(reply.FirstString(), row.value) << row.item << row.subItem;
  }
  EXPECT_EQ(ask(Command::GetSetting, "Engine", "Version").FirstString(), engineVersion());
  EXPECT_EQ(ask(Command::GetSetting, "Host", "Version").FirstString(), engineVersion());
  EXPECT_EQ(tell(Command::GetSetting, "Data", ""), 98060);
  EXPECT_EQ(tell(Command::GetSetting, "", ""), 98060);
  EXPECT_EQ(tell(Command::GetSetting, "\xFF", "Active"), 98060);
  state_.active = nullptr;
  EXPECT_STREQ(ask(Command::GetSetting, "Data", "Active").FirstString(), "");
}

TEST_F(SessionRequests, DataSetsFromFilesAreFileHandles) {
  EXPECT_THAT(textsOf(ask(Command::GetFileHandles)), IsEmpty());
  other().source = "/data/other/datapackage.json";
  EXPECT_THAT(textsOf(ask(Command::GetFileHandles)), ElementsAre("Other", "/data/other/datapackage.json"));
}

TEST_F(SessionRequests, TurnTextsIntoUtf8) {
  struct Row {
    const char* label;
    std::string text;
    const char* utf8;
  };
  const Row rows[] = {
      {"empty", "", ""},
      {"ASCII", "a~", "a~"},
      {"UTF-8 already", "caf\u00E9 \u20AC", "caf\u00E9 \u20AC"},
      {"one byte a letter", "caf\xE9", "caf\u00E9"},
      {"the euro sign", "\x80 5", "\u20AC 5"},
      {"quotation marks", "\x93q\x94", "\u201Cq\u201D"},
      {"an unassigned byte", "\x81", "\u0081"},
      {"the last byte", "\xFF", "\u00FF"},
      {"UTF-8 and a lone byte", "\u00E9\xE9", "\u00C3\u00A9\u00E9"},
  };
  for (const Row& row : rows) {
    EXPECT_STREQ(ask(Command::TransCode, row.text).FirstString(), row.utf8) << row.label;
  }
  EXPECT_EQ(tell(Command::TransCode, std::string("a\0", 2)), 98013);
}

TEST_F(SessionRequests, QueuedPartsStandInFrontOfTheirCommand) {
  EXPECT_EQ(tell(Command::QueueCommandPart, "compute x ="), 0);
  EXPECT_EQ(tell(Command::QueueCommandPart, std::string("1 +\0", 4)), 0);
  EXPECT_EQ(tell(Command::Submit, "2."), 98013);
  EXPECT_EQ(tell(Command::Submit, " "), 0) << "the parts are used up";
}

TEST_F(SessionRequests, TheEndOfARunIsAnswered) { EXPECT_EQ(tell(Command::StopReceiveXdApiThread), 0); }

TEST_F(SessionRequests, RequestsThatLackItemsAreRefused) {
  EXPECT_EQ(tell(Command::GetSetting, "Data"), 98003);
  EXPECT_EQ(tell(Command::SetHostAppNameAndVersion, "Viewer"), 98003);
  EXPECT_EQ(tell(Command::SetMode), 98003);
  EXPECT_EQ(tell(Command::TransCode), 98003);
}

}  // namespace
}  // namespace kova::engine
