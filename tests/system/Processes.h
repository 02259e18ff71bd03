// What the tests that start processes share: a fixture that finds leftovers, a forked child for destructive
// tests, and waiting for a process that is not a child.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>

namespace usbinfo_test {

/// Fails a test that leaves a child process, a zombie or an open descriptor, or that waits for a command
/// which should have been killed.
class ProcessTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

 private:
  std::size_t fDescriptorsBefore = 0;
  std::chrono::steady_clock::time_point fStart;
};

/// The errno of the std::system_error that `operation` throws; 0 when it returns.
int ErrorOf(const std::function<void()>& operation);

/// How many descriptors this process has open.
std::size_t OpenDescriptors();

/// Whether the process ends, or has ended, within a few seconds. One that does not is killed.
bool Ends(pid_t process);

/// Runs `body` in a forked child; the exit status is what it returns, -1 for any other end.
int ExitOfChild(const std::function<int()>& body);

/// The exit status of a child that could not become an unprivileged user.
constexpr int kStillPrivileged = 77;

/// Runs `body` as a user without privileges, in a forked child where this process has some.
int ExitOfUnprivileged(const std::function<int()>& body);

/// Interrupts this process with a signal every millisecond, as long as it lives. `onTick` is called in the
/// signal handler with the number of signals so far.
class Interruptions {
 public:
  explicit Interruptions(void (*onTick)(int count));
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;
  ~Interruptions();
};

}  // namespace usbinfo_test
