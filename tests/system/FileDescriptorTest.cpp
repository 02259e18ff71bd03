// Owned descriptors: closed exactly once, and whole contents read and written through them whatever the
// pieces they come in.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

#include "system/FileDescriptor.h"
#include "tests/standin/StandinTest.h"
#include "tests/system/Processes.h"

namespace {

using sys::FileDescriptor;
using sys::ReadAll;
using sys::WriteAll;
using usbinfo_test::ErrorOf;

class FileDescriptorTest : public usbinfo_test::ProcessTest {};

FileDescriptor OpenNull() {
  return FileDescriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

bool IsOpenInProcess(int fd) {
  return ::fcntl(fd, F_GETFD) >= 0;
}

struct Pipe {
  FileDescriptor output;
  FileDescriptor input;
};

Pipe MakePipe() {
  std::array<int, 2> ends{};
  EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::string NumberedLines(int count) {
  std::string text;
  for (int line = 0; line < count; ++line) text += std::to_string(line) + "\n";
  return text;
}

TEST_F(FileDescriptorTest, IsClosedByDefault) {
  const FileDescriptor none;
  EXPECT_FALSE(none.IsOpen());
  EXPECT_EQ(none.Get(), -1);
}

TEST_F(FileDescriptorTest, ClosesAtItsEnd) {
  int fd = -1;
  {
    const FileDescriptor owner = OpenNull();
    fd = owner.Get();
    ASSERT_TRUE(owner.IsOpen());
    ASSERT_TRUE(IsOpenInProcess(fd));
  }
  EXPECT_FALSE(IsOpenInProcess(fd));
}

TEST_F(FileDescriptorTest, OwnsDescriptorZeroToo) {
  const int exitCode = usbinfo_test::ExitOfChild([] {
    ::close(STDIN_FILENO);
    { const FileDescriptor owner = OpenNull(); }
    return IsOpenInProcess(STDIN_FILENO) ? 1 : 0;
  });
  EXPECT_EQ(exitCode, 0);
}

TEST_F(FileDescriptorTest, MovesItsDescriptor) {
  static_assert(!std::is_copy_constructible_v<FileDescriptor> && !std::is_copy_assignable_v<FileDescriptor>);
  FileDescriptor source = OpenNull();
  const int fd = source.Get();
  const FileDescriptor target(std::move(source));
  EXPECT_EQ(source.Get(), -1);  // NOLINT(bugprone-use-after-move): that is the question
  EXPECT_EQ(target.Get(), fd);
  EXPECT_TRUE(IsOpenInProcess(fd));
}

TEST_F(FileDescriptorTest, ClosesItsOwnWhenItTakesAnother) {
  FileDescriptor target = OpenNull();
  const int old = target.Get();
  FileDescriptor source = OpenNull();
  const int fd = source.Get();
  target = std::move(source);
  EXPECT_FALSE(IsOpenInProcess(old));
  EXPECT_EQ(target.Get(), fd);
  EXPECT_TRUE(IsOpenInProcess(fd));
  EXPECT_FALSE(source.IsOpen());  // NOLINT(bugprone-use-after-move): that is the question
}

TEST_F(FileDescriptorTest, SurvivesAMoveToItself) {
  FileDescriptor owner = OpenNull();
  const int fd = owner.Get();
  FileDescriptor& alias = owner;
  owner = std::move(alias);
  EXPECT_EQ(owner.Get(), fd);
  EXPECT_TRUE(IsOpenInProcess(fd));
}

TEST_F(FileDescriptorTest, GivesItsDescriptorAway) {
  FileDescriptor owner = OpenNull();
  const int fd = owner.Take();
  EXPECT_FALSE(owner.IsOpen());
  EXPECT_TRUE(IsOpenInProcess(fd));
  EXPECT_EQ(::close(fd), 0);
}

TEST_F(FileDescriptorTest, ClosesOnlyOnce) {
  FileDescriptor owner = OpenNull();
  const int fd = owner.Get();
  owner.Close();
  EXPECT_FALSE(owner.IsOpen());
  const FileDescriptor heir = OpenNull();
  ASSERT_EQ(heir.Get(), fd);
  owner.Close();
  EXPECT_TRUE(IsOpenInProcess(fd));
}

TEST_F(FileDescriptorTest, OpensFilesThatNoCommandInherits) {
  const FileDescriptor file = sys::OpenFile("/dev/null", O_RDONLY);
  EXPECT_EQ(::fcntl(file.Get(), F_GETFD), FD_CLOEXEC);
}

TEST_F(FileDescriptorTest, CarriesWholeContentsThroughAPipe) {
  const std::string text = NumberedLines(100000) + std::string("\0\xFF", 2);
  Pipe pipe = MakePipe();
  std::thread writer([&] {
    WriteAll(pipe.input.Get(), text);
    pipe.input.Close();
  });
  EXPECT_EQ(ReadAll(pipe.output.Get()), text);
  writer.join();
}

TEST_F(FileDescriptorTest, ReadsNothingFromAnEmptyFile) {
  EXPECT_EQ(ReadAll(OpenNull().Get()), "");
}

TEST_F(FileDescriptorTest, ReadsUpToTheMostBytesAllowed) {
  const auto readOf = [](const std::string& text, std::size_t most) {
    Pipe pipe = MakePipe();
    WriteAll(pipe.input.Get(), text);
    pipe.input.Close();
    return ReadAll(pipe.output.Get(), most);
  };
  EXPECT_EQ(readOf("four", 4), "four");
  EXPECT_EQ(readOf("", 0), "");
  EXPECT_EQ(ErrorOf([&] { readOf("fours", 4); }), EFBIG);
}

TEST_F(FileDescriptorTest, StopsReadingWhatNeverEnds) {
  const FileDescriptor zeros = sys::OpenFile("/dev/zero", O_RDONLY);
  EXPECT_EQ(ErrorOf([&] { ReadAll(zeros.Get(), 1000000); }), EFBIG);
}

TEST_F(FileDescriptorTest, WritesNothingWithoutTouchingTheFile) {
  EXPECT_EQ(ErrorOf([] { WriteAll(-1, ""); }), 0);
}

/// The end of a pipe that a signal handler feeds and closes.
int lateInput = -1;

TEST_F(FileDescriptorTest, ReadsOnAfterSignals) {
  Pipe pipe = MakePipe();
  lateInput = pipe.input.Take();
  const usbinfo_test::Interruptions signals([](int count) {
    if (count == 3 && ::write(lateInput, "late", 4) == 4) ::close(lateInput);
  });
  EXPECT_EQ(ReadAll(pipe.output.Get()), "late");
}

/// The end of a full pipe that a signal handler empties, and what came out of it.
int slowOutput = -1;
std::array<char, 500000> slowText;
std::size_t slowSize = 0;

void TakeFromFullPipe(int count) {
  if (count % 3 != 0) return;
  const ssize_t got = ::read(slowOutput, slowText.data() + slowSize, 20000);
  if (got < 0) ::_exit(1);
  slowSize += static_cast<std::size_t>(got);
}

TEST_F(FileDescriptorTest, WritesOnAfterSignals) {
  const std::string text = NumberedLines(30000);
  Pipe pipe = MakePipe();
  slowOutput = pipe.output.Get();
  slowSize = 0;
  {
    const usbinfo_test::Interruptions signals(TakeFromFullPipe);
    WriteAll(pipe.input.Get(), text);
  }
  pipe.input.Close();
  EXPECT_EQ(std::string(slowText.data(), slowSize) + ReadAll(pipe.output.Get()), text);
}

TEST_F(FileDescriptorTest, SaysWhyItCannotRead) {
  const FileDescriptor directory(::open("/", O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(ErrorOf([&] { ReadAll(directory.Get()); }), EISDIR);
  EXPECT_EQ(ErrorOf([] { ReadAll(-1); }), EBADF);
}

TEST_F(FileDescriptorTest, SaysWhyItCannotWrite) {
  const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  EXPECT_EQ(ErrorOf([&] { WriteAll(full.Get(), "text"); }), ENOSPC);
  EXPECT_EQ(ErrorOf([] { WriteAll(-1, "text"); }), EBADF);
}

TEST_F(FileDescriptorTest, SaysThatNobodyReads) {
  const int exitCode = usbinfo_test::ExitOfChild([] {
    ::signal(SIGPIPE, SIG_IGN);
    Pipe pipe = MakePipe();
    pipe.output.Close();
    return ErrorOf([&pipe] { WriteAll(pipe.input.Get(), "text"); }) == EPIPE ? 0 : 1;
  });
  EXPECT_EQ(exitCode, 0);
}

}  // namespace
