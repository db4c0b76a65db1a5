#include "export/database.h"

#include <sqlite3.h>

#include <cerrno>
#include <system_error>

namespace kalmira {

Database::~Database() { sqlite3_close_v2(handle_); }

bool Database::take(int answer) {
  if (answer == SQLITE_OK || answer == SQLITE_DONE || answer == SQLITE_ROW) return good();
  if (good()) {
    const int error = handle_ == nullptr ? 0 : sqlite3_system_errno(handle_);
    const bool full = answer == SQLITE_FULL;
    problem_ = full || error != 0 ? std::generic_category().message(full ? ENOSPC : error) : sqlite3_errstr(answer);
  }
  return false;
}

bool Database::open(const std::filesystem::path& file) {
  // Nobody else sees the file before it is whole, and it is thrown away where that fails: no journal, no waiting.
  return take(sqlite3_open_v2(file.c_str(), &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr)) &&
         run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA locking_mode=EXCLUSIVE; BEGIN");
}

bool Database::run(const std::string& statements) {
  return good() && take(sqlite3_exec(handle_, statements.c_str(), nullptr, nullptr, nullptr));
}

bool Database::close() {
  const bool done = run("COMMIT");
  const bool closed = take(sqlite3_close(handle_));
  if (closed) handle_ = nullptr;
  return done && closed;
}

Statement::Statement(Database& database, std::string_view text) : database_(database) {
  if (database.good())
    database.take(sqlite3_prepare_v3(database.handle(), text.data(), static_cast<int>(text.size()),
                                     SQLITE_PREPARE_PERSISTENT, &handle_, nullptr));
}

Statement::~Statement() { sqlite3_finalize(handle_); }

void Statement::null() { database_.take(sqlite3_bind_null(handle_, next_++)); }

void Statement::integer(std::int64_t value) { database_.take(sqlite3_bind_int64(handle_, next_++, value)); }

void Statement::real(double value) { database_.take(sqlite3_bind_double(handle_, next_++, value)); }

void Statement::text(std::string_view value) {
  database_.take(sqlite3_bind_text64(handle_, next_++, value.data(), value.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::blob(std::string_view value) {
  database_.take(sqlite3_bind_blob64(handle_, next_++, value.data(), value.size(), SQLITE_STATIC));
}

void Statement::zeroes(std::uint64_t bytes) { database_.take(sqlite3_bind_zeroblob64(handle_, next_++, bytes)); }

bool Statement::run() {
  next_ = 1;
  if (!database_.good()) return false;
  const int answer = sqlite3_step(handle_);
  sqlite3_reset(handle_);
  return database_.take(answer);
}

}  // namespace kalmira
