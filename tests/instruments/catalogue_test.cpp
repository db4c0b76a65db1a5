#include "instruments/catalogue.h"

#include <gtest/gtest.h>

namespace kalmira {
namespace {

TEST(Catalogue, KeepsFilesOfEveryKindUnderItsOwnNames) {
  struct Row {
    std::string_view settings, data, documents, header;
  };
  const Row rows[] = {
      {"Storage\\KALINI\\ORLA.INI", "Storage\\DATAORLA", "My Documents\\DataOrla", "ORLA2   W230GRD"},
      {"Storage\\KALINI\\TESKB.INI", "Storage\\DATATESKB", "My Documents\\DataTeskB", "TESKB   W222GRD"},
      {"Storage\\KALINI\\TESKD.INI", "Storage\\DATATESKD", "My Documents\\DataTeskD", "TESKD   W222GRD"},
      {"Storage\\KALINI\\TESK.INI", "Storage\\DATATESK", "My Documents\\DataTesk", "TESKS   W222GRD"},
      {"Storage\\KALINI\\VARDO.INI", "Storage\\DATAVARDO", "My Documents\\DataVardo", "VARDO   W230GRD"},
      {"C_DRIVE\\KALINI\\MIRKA.INI", "C_DRIVE\\DATAMIRKA", "C_DRIVE\\DATAMIRKA", "MIRKA   W210GRD"},
      {"Storage\\KALINI\\GLACO.INI", "Storage\\DATAICE", "Storage\\DATAICE", "GLACO   W210GRD"},
      {"Storage\\KALINI\\TESK2.INI", "Storage\\DATATESK2", "My Documents\\DataTesk2", "TESK2   W230GRD"}};
  for (int index = 0; index < kKindCount; ++index) {
    const auto kind = static_cast<Kind>(index);
    EXPECT_EQ(settingsPath(kind, false, 1), rows[index].settings);
    EXPECT_EQ(dataFolder(kind, 1), rows[index].data);
    EXPECT_EQ(dataFolder(kind, 2), rows[index].documents);
    EXPECT_EQ(dataFolder(kind, 3), rows[index].documents);
    EXPECT_EQ(headerTag(kind, false, false), rows[index].header);
    EXPECT_EQ(findInstrumentByHeader(std::string(rows[index].header) + "0000   3"), findInstrument(index));
  }
  EXPECT_EQ(settingsPath(Kind::tesk, false, 0), "C_DRIVE\\KALINI\\TESK.INI");
  EXPECT_EQ(settingsPath(Kind::tesk, false, 3), "\\KALINI\\TESK.INI");
  EXPECT_EQ(settingsPath(Kind::mirka, false, 3), "C_DRIVE\\KALINI\\MIRKA.INI");
  EXPECT_EQ(settingsPath(Kind::orla, true, 1), "Storage\\KALINI\\ORLICE.INI");
  EXPECT_EQ(settingsPath(Kind::glaco, true, 1), "Storage\\KALINI\\GLACO.INI");
}

// The three forms of a folder differ in their backslashes on purpose.
TEST(Catalogue, WritesDataFolderForTheProbe) { EXPECT_EQ(dataFolderPrefix(Kind::orla, 1), "Storage\\DATAORLA\\"); }

TEST(Catalogue, FindsKindsByNameIndexAndHeaderAlone) {
  EXPECT_EQ(findInstrumentByName("tesk2"), findInstrument(7));
  EXPECT_EQ(findInstrumentByName("3"), findInstrument(3));
  for (const auto* text : {"", "8", "03", "ORL", "ORLA "}) EXPECT_EQ(findInstrumentByName(text), nullptr);
  EXPECT_EQ(headerTag(Kind::orla, true, true), "ORLAS   W230GPS");
  EXPECT_EQ(headerTag(Kind::tesk2, true, true), "TESK2   W230GPS");
  EXPECT_EQ(findInstrumentByHeader("ORLAS   W230GPS"), findInstrument(0));
  EXPECT_EQ(findInstrumentByHeader("ORLA2  iW230GRD0010003"), findInstrument(0));
  for (const auto* text : {"", "ORLA2   W230GR", "ORLA2   W222GRD", "TESKD   W222GXX", "TESKX   W222GRD"}) {
    EXPECT_EQ(findInstrumentByHeader(text), nullptr) << text;
  }
}

}  // namespace
}  // namespace kalmira
