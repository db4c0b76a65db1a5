#include "shell/catalogue.h"

#include <gtest/gtest.h>

#include <array>

namespace kalmira {
namespace {

// The bare names of every kind, as they stand in paths, titles and messages.
struct Names {
  std::string_view name, title, label, failure, ini, version, data, documents, extension, filter, pattern;
};
constexpr std::array<Names, kKindCount> kNames{{
    {"ORLA", "ORLA", "ORLA Port", "Cannot open ORLA port", "ORLA.INI", "CEVer2.30", "DATAORLA", "DataOrla",
     ".ROR", "ORLA Files (*.ROR)", "*.ROR"},
    {"TESKB", "TESKB", "TESKB Port", "Cannot open TESKB port", "TESKB.INI", "CEVer2.22", "DATATESKB",
     "DataTeskB", ".PTS", "TESKB Files (*.PTS)", "*.PTS"},
    {"TESKDD", "TESKDD", "TESK-DD Port", "Cannot open TESKD port", "TESKD.INI", "CEVer2.22", "DATATESKD",
     "DataTeskD", ".QTS", "TESKD Files (*.QTS)", "*.QTS"},
    {"TESK", "TESK", "TESK Port", "Cannot open TESK port", "TESK.INI", "CEVer2.22", "DATATESK", "DataTesk",
     ".RTS", "TESK Files (*.RTS)", "*.RTS"},
    {"VARDO", "VARDO", "VARDO Port", "Cannot open VARDO port", "VARDO.INI", "CEVer2.30", "DATAVARDO",
     "DataVardo", ".RVD", "VARDO Files (*.RVD)", "*.RVD"},
    {"MIRKA", "KALMIRA", "", "Cannot open MIRKA port", "MIRKA.INI", "CEVer2.10", "DATAMIRKA", "", ".RMI",
     "MIRKA Files (*.RMI)", "*.RMI"},
    {"GLACO", "GLACO", "GLACO Port", "Cannot open GLACO port", "GLACO.INI", "CEVer2.30", "DATAICE", "",
     ".IOR", "GLACO Files (*.IOR)", "*.IOR"},
    {"TESK2", "TESK2", "TESK-2 Port", "Cannot open TESK2 port", "TESK2.INI", "CEVer2.30", "DATATESK2",
     "DataTesk2", ".NTS", "TESK2 Files (*.NTS)", "*.NTS"},
}};

TEST(Catalogue, HasTheNamesOfEveryKind) {
  for (int index = 0; index < kKindCount; ++index) {
    const auto* row = findInstrument(index);
    const auto& names = kNames[static_cast<std::size_t>(index)];
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(static_cast<int>(row->kind), index);
    EXPECT_EQ(row->name, names.name);
    EXPECT_EQ(row->title, names.title);
    EXPECT_EQ(row->portLabel, names.label);
    EXPECT_EQ(row->portFailureText, names.failure);
    EXPECT_EQ(row->versionTag, names.version);
    EXPECT_EQ(row->filterText, names.filter);
    EXPECT_EQ(filterPattern(row->kind), names.pattern);
    EXPECT_EQ(row->extension, names.extension);
  }
}

TEST(Catalogue, GivesNoRowForAnyOtherIndexOrName) {
  EXPECT_EQ(findInstrument(-1), nullptr);
  EXPECT_EQ(findInstrument(8), nullptr);
  EXPECT_EQ(findInstrumentByName("tesk2"), findInstrument(7));
  EXPECT_EQ(findInstrumentByName("3"), findInstrument(3));
  for (const auto* text : {"", "8", "03", "TESK3", "ORL", "ORLA "})
    EXPECT_EQ(findInstrumentByName(text), nullptr);
}

std::string joined(std::string_view store, std::string_view name) {
  return std::string(store) + "\\" + std::string(name);
}

TEST(Catalogue, KeepsSettingsInTheStorageClassesFolder) {
  for (const auto& row : kNames) {
    const auto kind = findInstrumentByName(row.name)->kind;
    if (kind == Kind::mirka) continue;
    EXPECT_EQ(settingsPath(kind, false, 0), joined("C_DRIVE\\KALINI", row.ini));
    EXPECT_EQ(settingsPath(kind, false, 1), joined("Storage\\KALINI", row.ini));
    EXPECT_EQ(settingsPath(kind, false, 2), joined("\\KALINI", row.ini));
    EXPECT_EQ(settingsPath(kind, false, 3), joined("\\KALINI", row.ini));
  }
  EXPECT_EQ(settingsFolder(Kind::orla, 0), "C_DRIVE\\KALINI");
  EXPECT_EQ(settingsFolder(Kind::orla, 1), "Storage\\KALINI");
  EXPECT_EQ(settingsFolder(Kind::orla, 2), "\\KALINI");
}

TEST(Catalogue, KeepsIceSettingsOfAnOrlaApartAndOfNoOtherKind) {
  EXPECT_EQ(settingsPath(Kind::orla, true, 0), "C_DRIVE\\KALINI\\ORLICE.INI");
  EXPECT_EQ(settingsPath(Kind::orla, true, 1), "Storage\\KALINI\\ORLICE.INI");
  EXPECT_EQ(settingsPath(Kind::orla, true, 3), "\\KALINI\\ORLICE.INI");
  EXPECT_EQ(settingsPath(Kind::glaco, true, 1), "Storage\\KALINI\\GLACO.INI");
}

TEST(Catalogue, KeepsMirkaUnderOneFolderWhateverTheStorageClass) {
  for (const int storageClass : {0, 1, 2, 3}) {
    EXPECT_EQ(settingsPath(Kind::mirka, false, storageClass), "C_DRIVE\\KALINI\\MIRKA.INI");
    EXPECT_EQ(dataFolder(Kind::mirka, storageClass), "C_DRIVE\\DATAMIRKA");
    EXPECT_EQ(dataFolderForDialog(Kind::mirka, storageClass), "C_DRIVE\\DATAMIRKA\\");
  }
}

TEST(Catalogue, PutsDataFilesInTheStorageClassesFolder) {
  for (const auto& row : kNames) {
    const auto kind = findInstrumentByName(row.name)->kind;
    if (kind == Kind::mirka) continue;
    EXPECT_EQ(dataFolder(kind, 0), joined("C_DRIVE", row.data));
    EXPECT_EQ(dataFolder(kind, 1), joined("Storage", row.data));
    // Ice files have no folder among the documents.
    const auto third =
        kind == Kind::glaco ? std::string("Storage\\DATAICE") : joined("My Documents", row.documents);
    EXPECT_EQ(dataFolder(kind, 2), third);
    EXPECT_EQ(dataFolder(kind, 3), third);
  }
}

// The three forms of a folder differ in their backslashes on purpose.
TEST(Catalogue, WritesDataFoldersInThreeForms) {
  EXPECT_EQ(dataFolderPrefix(Kind::orla, 1), "Storage\\DATAORLA\\");
  EXPECT_EQ(dataFolderPrefix(Kind::tesk, 2), "My Documents\\DataTesk\\");
  EXPECT_EQ(dataFolderForDialog(Kind::orla, 0), "C_DRIVE\\DATAORLA\\");
  EXPECT_EQ(dataFolderForDialog(Kind::orla, 1), "\\Storage\\DATAORLA\\");
  EXPECT_EQ(dataFolderForDialog(Kind::orla, 3), "\\My Documents\\DataOrla\\");
  EXPECT_EQ(dataFolderForDialog(Kind::glaco, 2), "\\Storage\\DATAICE\\");
}

TEST(Catalogue, TagsHeadersAndFindsTheKindByThem) {
  constexpr std::array<std::string_view, kKindCount> kTags{"ORLA2   W230G", "TESKB   W222G", "TESKD   W222G",
                                                           "TESKS   W222G", "VARDO   W230G", "MIRKA   W210G",
                                                           "GLACO   W210G", "TESK2   W230G"};
  for (int index = 0; index < kKindCount; ++index) {
    const auto kind = static_cast<Kind>(index);
    const std::string tag(kTags[static_cast<std::size_t>(index)]);
    EXPECT_EQ(headerTag(kind, false, false), tag + "RD");
    EXPECT_EQ(headerTag(kind, false, true), tag + "PS");
    // Only an ORLA comes in two lengths.
    EXPECT_EQ(headerTag(kind, true, true), kind == Kind::orla ? "ORLAS   W230GPS" : tag + "PS");
    EXPECT_EQ(findInstrumentByHeader(tag + "RD0000   3"), findInstrument(index));
  }
  EXPECT_EQ(findInstrumentByHeader("ORLAS   W230GPS"), findInstrument(0));
  EXPECT_EQ(findInstrumentByHeader("ORLA2  iW230GRD0010003"), findInstrument(0));
  for (const auto* text : {"", "ORLA2   W230GR", "ORLA2   W222GRD", "TESKD   W222GXX", "TESKX   W222GRD"}) {
    EXPECT_EQ(findInstrumentByHeader(text), nullptr) << text;
  }
}

}  // namespace
}  // namespace kalmira
