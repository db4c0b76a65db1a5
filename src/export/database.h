#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

// An SQLite file in the making: one transaction, no journal beside it. Not bound to a thread.
namespace kalmira {

class Database {
 public:
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database();

  // Takes an empty file over.
  bool open(const std::filesystem::path& file);
  // Statements without rows; several in one text.
  bool run(const std::string& statements);
  // Commits and closes. False as all functions where something failed, now or before: problem() says what.
  bool close();

  bool good() const { return problem_.empty(); }
  const std::string& problem() const { return problem_; }
  sqlite3* handle() const { return handle_; }
  // What SQLite has just answered; true for success.
  bool take(int answer);

 private:
  sqlite3* handle_ = nullptr;
  std::string problem_;
};

// A statement that is run again and again, each time with all its values, bound from the first one on. The database's
// owner sees what fails.
class Statement {
 public:
  Statement(Database& database, std::string_view text);
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement();

  void null();
  void integer(std::int64_t value);
  void real(double value);
  // Bytes that stay where they are until run() has returned.
  void text(std::string_view value);
  void blob(std::string_view value);
  // That many bytes to be written later.
  void zeroes(std::uint64_t bytes);
  bool run();

 private:
  Database& database_;
  sqlite3_stmt* handle_ = nullptr;
  int next_ = 1;
};

}  // namespace kalmira
