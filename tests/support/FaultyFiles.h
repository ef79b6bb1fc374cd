// The machine's files with a fault put in: the n-th call of one kind returns an error, or
// pretends. Counting first and then failing at each call in turn covers every place where a
// save can break.
#pragma once

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include "embedded/os/FileSystem.h"

namespace quoin::test {

class FaultyFiles : public os::SystemFiles {
 public:
  /// The calls in order, by name: what a test fails at.
  std::vector<std::string> calls;
  /// The number of the call that fails, and with what; -1: none.
  int failAt = -1;
  int error = EIO;
  /// Write calls keep only this many bytes and say so; 0: all.
  std::size_t shortWrites = 0;
  /// Write calls from this one on say that they wrote everything and write nothing; -1: none.
  int loseWritesFrom = -1;
  bool hasHardLinks = true;
  /// How often a folder is locked by another run before this one gets it.
  int busyLocks = 0;
  /// Whether this is another user than the one who owns the files.
  bool isStranger = false;

  int openToRead(const std::string& path, Handle& handle) override {
    return failing("open") ? error : SystemFiles::openToRead(path, handle);
  }
  int create(const std::string& path, bool isPrivate, Handle& handle) override {
    return failing("create") ? error : SystemFiles::create(path, isPrivate, handle);
  }
  int read(Handle handle, char* to, std::size_t size, std::size_t& done) override {
    return failing("read") ? error : SystemFiles::read(handle, to, size, done);
  }
  int write(Handle handle, const char* from, std::size_t size, std::size_t& done) override {
    if (failing("write")) {
      return error;
    }
    if (loseWritesFrom >= 0 && static_cast<int>(calls.size()) > loseWritesFrom) {
      done = size;
      return 0;
    }
    return SystemFiles::write(handle, from, shortWrites == 0 ? size : std::min(size, shortWrites),
                              done);
  }
  int flush(Handle handle) override {
    return failing("flush") ? error : SystemFiles::flush(handle);
  }
  int close(Handle handle) override {
    const int result = SystemFiles::close(handle);
    return failing("close") ? error : result;
  }
  int facts(const std::string& path, bool followLink, os::FileFacts& facts) override {
    return failing("facts of path") ? error : SystemFiles::facts(path, followLink, facts);
  }
  int facts(Handle handle, os::FileFacts& facts) override {
    return failing("facts") ? error : SystemFiles::facts(handle, facts);
  }
  int linkTarget(const std::string& path, std::string& target) override {
    return failing("linkTarget") ? error : SystemFiles::linkTarget(path, target);
  }
  int mayWrite(const std::string& path) override {
    return failing("mayWrite") ? error : SystemFiles::mayWrite(path);
  }
  int setOwner(Handle handle, std::uint32_t owner, std::uint32_t group) override {
    return failing("setOwner") ? error : SystemFiles::setOwner(handle, owner, group);
  }
  int setMode(Handle handle, std::uint32_t mode) override {
    return failing("setMode") ? error : SystemFiles::setMode(handle, mode);
  }
  int rename(const std::string& from, const std::string& to) override {
    return failing("rename") ? error : SystemFiles::rename(from, to);
  }
  int link(const std::string& from, const std::string& to) override {
    return failing("link") || !hasHardLinks ? ENOTSUP : SystemFiles::link(from, to);
  }
  int renameNew(const std::string& from, const std::string& to) override {
    return failing("renameNew") ? error : SystemFiles::renameNew(from, to);
  }
  int names(const std::string& folder, std::vector<std::string>& names) override {
    return failing("names") ? error : SystemFiles::names(folder, names);
  }
  int lockFolder(const std::string& path, Handle& handle) override {
    if (failing("lockFolder")) {
      return error;
    }
    return busyLocks-- > 0 ? EWOULDBLOCK : SystemFiles::lockFolder(path, handle);
  }
  bool mayTakeNamesOf(std::uint32_t owner) override {
    return !isStranger && SystemFiles::mayTakeNamesOf(owner);
  }
  int flushFolder(const std::string& path) override {
    return failing("flushFolder") ? error : SystemFiles::flushFolder(path);
  }

 private:
  bool failing(const char* name) {
    calls.emplace_back(name);
    return static_cast<int>(calls.size()) - 1 == failAt;
  }
};

}  // namespace quoin::test
