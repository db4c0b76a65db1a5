#include "settings/display_options.h"

#include <gmock/gmock.h>

namespace kalmira {
namespace {

std::string namesOf(Kind kind, bool iceOption) {
  std::string text;
  for (const auto& row : channelsOf(instrumentOf(kind), iceOption)) {
    text += std::to_string(row.slot) + " " + std::string(row.name) + "\n";
  }
  return text;
}

TEST(DisplayOptions, TracesAreThoseOfTheKind) {
  const std::string dipoles = "0 Conductivity V\n1 Conductivity H\n2 Inphase V\n3 Inphase H\n";
  for (const auto kind : {Kind::orla, Kind::teskb, Kind::teskdd, Kind::tesk}) {
    EXPECT_EQ(namesOf(kind, false), dipoles);
  }
  EXPECT_EQ(namesOf(Kind::orla, true), dipoles + "4 Ice Thickness\n");
  EXPECT_EQ(namesOf(Kind::vardo, false),
            "0 Cond. V10\n1 Cond. V20\n2 Cond. V40\n3 Cond. H10\n4 Cond. H20\n5 Cond. H40\n");
  EXPECT_EQ(namesOf(Kind::mirka, false), "0 Conductivity\n2 Inphase\n");
  EXPECT_EQ(namesOf(Kind::glaco, false), "0 Thickness\n2 Inphase\n");
  EXPECT_EQ(channelsOf(instrumentOf(Kind::tesk2), false).size(), kTraces);
  EXPECT_EQ(channelsOf(instrumentOf(Kind::tesk2), false)[5].name, "Conductivity 2 H");
}

TEST(DisplayOptions, GridAndAxisAreOneNumber) {
  struct Case {
    Kind kind;
    bool ice;
    int stored;
    bool grid;
    std::string_view axis;
    int saved;
  };
  for (const auto& c :
       {Case{Kind::orla, false, 0, false, "Conductivity", 0},
        Case{Kind::orla, false, 1, true, "Conductivity", 1}, Case{Kind::orla, false, 2, true, "Inphase", 2},
        Case{Kind::orla, false, 3, true, "Conductivity", 1},
        Case{Kind::orla, true, 2, true, "Ice Thickness", 3}, Case{Kind::glaco, false, 2, true, "Inphase", 2},
        Case{Kind::glaco, false, 1, true, "Thickness", 1},
        Case{Kind::vardo, false, 2, true, "Conductivity", 1},
        Case{Kind::tesk2, false, -4, true, "Conductivity", 1}}) {
    Settings settings;
    settings.profileGrid = c.stored;
    const auto choices = axisChoices(c.kind, c.ice);
    const auto& axis = choices[axisPosition(choices, settings)];
    EXPECT_EQ(gridChosen(settings), c.grid);
    EXPECT_EQ(axis.name, c.axis) << static_cast<int>(c.kind) << c.stored;
    EXPECT_EQ(profileGridOf(c.grid, axis.group), c.saved) << static_cast<int>(c.kind) << c.stored;
  }
}

TEST(DisplayOptions, ColoursHaveNamesAndNumbers) {
  std::string names;
  for (const int colour : Settings{}.traceColour) names += std::string(colourName(colour)) + ",";
  EXPECT_EQ(names, "Blue,Vermilion,Green,Pink,Black,Light blue,Orange,Grey,");
  EXPECT_EQ(colourNumber(0x00B27200), "#0072B2");
  EXPECT_EQ(settingsColour(0x00, 0x72, 0xB2), 0x00B27200);
  EXPECT_EQ(colourNumber(-1), "#FFFFFF");
}

TEST(DisplayOptions, OutOfListChoicesAreTheDefaults) {
  Settings settings;
  settings.traceWidth = {0, 5, 4, -1, 1, 1, 1, 1};
  settings.traceShown = {2, -1, 0, 1, 1, 1, 1, 1};
  EXPECT_EQ(traceWidthOf(settings, 0), 1);
  EXPECT_EQ(traceWidthOf(settings, 1), 1);
  EXPECT_EQ(traceWidthOf(settings, 2), 4);
  EXPECT_TRUE(traceChosen(settings, 0));
  EXPECT_FALSE(traceChosen(settings, 2));
  EXPECT_EQ(traceWidthName(1), "1 pixel");
  EXPECT_EQ(traceWidthName(4), "4 pixels");
}

}  // namespace
}  // namespace kalmira
