#include "sim/options.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace kalmira::sim {
namespace {

ParsedOptions parse(const std::string& line) {
  std::istringstream words(line);
  std::vector<std::string> arguments;
  for (std::string word; words >> word;) arguments.push_back(word);
  std::vector<const char*> pointers;
  pointers.reserve(arguments.size());
  for (const auto& argument : arguments) pointers.push_back(argument.c_str());
  return parseOptions(pointers);
}

TEST(Options, WrongUsageNamesWhatIsWrong) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"", "--kind is missing"},
      {"--wat", "--wat: there is no such option"},
      {"--kind", "--kind wants"},
      {"--kind 8", "not \"8\""},
      {"--kind 0 --rate 0", "--rate wants"},
      {"--kind 0 --rate 11x", "not \"11x\""},
      {"--kind 0 --rate nan", "not \"nan\""},
      {"--kind 0 --noise 1.1", "a probability"},
      {"--kind 0 --seed -1", "--seed wants"},
      {"--kind 0 --silence 3", "two numbers of seconds"},
      {"--kind 0 --unplug 3,-1", "two numbers of seconds"},
      {"--kind 3 --tesk-length 9", "7 or 12"},
      {"--kind 0 --tesk-length 7", "--kind TESK only"},
      {"--kind 0 --speed 2", "--replay only"},
      {"--replay f --rate 3", "do not go with --replay"},
      {"--kind 0 --link a --gps-link a", "same path"},
      {"--help=me", "--help wants no value"},
  };
  for (const auto& [line, expected] : rows) {
    EXPECT_NE(parse(line).error.find(expected), std::string::npos) << line << ": " << parse(line).error;
  }
}

TEST(Options, AreTakenAsWritten) {
  const auto [options, error] = parse(
      "--kind tesk --tesk-length 7 --rate=20 --gps-rate 10 --seed 18446744073709551615 --silence 1,2 "
      "--silence 5,.5 "
      "--link /a=b");
  ASSERT_EQ(error, "");
  EXPECT_EQ(options.link, "/a=b");
  ASSERT_EQ(options.faults.silence.size(), 2U);
  EXPECT_EQ(options.faults.silence[1].for_s, 0.5);
  const auto plan = surveyPlan(options);
  EXPECT_EQ(plan.recordLength, 7);
  EXPECT_EQ(plan.recordPeriod_s, 0.05);
  EXPECT_EQ(plan.sentencePeriod_s, 0.1);
  EXPECT_EQ(plan.seed, 18446744073709551615U);
  // One of each sentence a second, the instrument's own rate.
  const auto natural = surveyPlan(parse("--kind 7").options);
  EXPECT_EQ(natural.recordPeriod_s, 0.05);
  EXPECT_EQ(natural.sentencePeriod_s, 1.0 / 3);
  EXPECT_EQ(surveyPlan(parse("--kind 7 --gps-rate 0").options).sentencePeriod_s, 0);
}

}  // namespace
}  // namespace kalmira::sim
