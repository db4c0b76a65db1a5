// Standard input of the logger without a screen: any bytes, in blocks of any size, operate a session on fakes. The
// first byte chooses the kind, the second the size of the blocks and whether a reading comes between them.
#include <cstdlib>
#include <string>

#include "console/event_loop.h"
#include "console/operator_commands.h"
#include "platform/text.h"
#include "support/session_fixture.h"

using namespace kalmira;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void checkAnswer(const std::string& line, const CommandAnswer& answer) {
  require(answer.error.empty() || (answer.status.empty() && answer.kept.empty() && !answer.newLine));
  // What is printed stands on a line of its own. Only the list of commands has more than one.
  const bool list = line.find("help") != std::string::npos;
  require(answer.kept.find_first_of("\r\n") == std::string::npos);
  require(list || answer.status.find_first_of("\r\n") == std::string::npos);
}

// A file of whole records, none of which a command has broken in two.
void checkFile(TestSession& test) {
  const auto content = test.disk.content();
  const auto length = test.session.file.recordLength();
  require(content.size() % length == 0);
  for (std::size_t at = 0; at < content.size(); at += length) {
    require(content[at + length - 1] == '\n');
    require(!hasControlCharacters(std::string_view(content).substr(at, length - 2)));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const auto kind = static_cast<Kind>(data[0] % kKindCount);
  const std::size_t block = 1 + data[1] % 64U;
  const bool readings = data[1] >= 64 && kind == Kind::orla;
  std::string_view rest(reinterpret_cast<const char*>(data) + 2, size - 2);

  TestSession test(kind);
  test.begin();
  require(test.session.loggingState == kStandBy);
  InputLines lines;
  const InputLines::Handlers handlers{.onLine =
                                          [&](const std::string& line) {
                                            if (!test.session.sessionActive) return;
                                            checkAnswer(line, runOperatorCommand(test.session, line));
                                          },
                                      .onLongLine = [] {}};
  for (; !rest.empty(); rest.remove_prefix(std::min(block, rest.size()))) {
    lines.take(rest.substr(0, block), handlers);
    test.clock.advance(10);
    if (readings && test.session.sessionActive) test.record("T -0100-0400");
  }
  lines.end(handlers);
  if (test.session.sessionActive) leaveCleanly(test.session);
  checkFile(test);
  return 0;
}
