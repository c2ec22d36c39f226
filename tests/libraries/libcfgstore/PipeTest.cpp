// A configuration that comes through a pipe.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <thread>

#include "Descriptor.h"
#include "PipeReader.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::TemporaryDirectory;
using namespace std::chrono_literals;

constexpr char kText[] = "dn: CN=A\na: 1\n";

// As the shell hands over a pipe: /dev/fd/N.
class ShellPipe {
 public:
  ShellPipe() {
    if (::pipe(m_ends.data()) != 0) throw std::runtime_error("no pipe");
  }
  ~ShellPipe() {
    ::close(m_ends[0]);
    closeWriter();
  }
  std::string path() const { return "/dev/fd/" + std::to_string(m_ends[0]); }
  void write(std::string_view text) const {
    EXPECT_EQ(::write(m_ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  void closeWriter() {
    if (m_ends[1] >= 0) ::close(m_ends[1]);
    m_ends[1] = -1;
  }

 private:
  std::array<int, 2> m_ends{};
};

TEST(Pipe, WithANameAndNoWriterIsToldAfterAMoment) {
  const TemporaryDirectory directory;
  const std::string path = directory.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const auto start = std::chrono::steady_clock::now();
  try {
    ConfigStore store(path);
    FAIL();
  } catch (const OpenError& error) {
    EXPECT_EQ(error.what(), path + ": is a pipe to which no program writes");
    EXPECT_EQ(error.path(), path);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

TEST(Pipe, WithANameIsReadWhenItsWriterComesLate) {
  const TemporaryDirectory directory;
  const std::string path = directory.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] {
    std::this_thread::sleep_for(500ms);
    test::writeFile(path, kText);
  });
  EXPECT_EQ(ConfigStore(path).text(), kText);
  writer.join();
}

TEST(Pipe, OfTheShellIsReadHoweverLongItsWriterTakes) {
  ShellPipe pipe;
  std::thread writer([&] {
    std::this_thread::sleep_for(4s);  // longer than the wait for a writer
    pipe.write("dn: CN=A\n");
    std::this_thread::sleep_for(200ms);
    pipe.write("a: 1\n");
    pipe.closeWriter();
  });
  EXPECT_EQ(ConfigStore(pipe.path()).text(), kText);
  writer.join();
}

TEST(Pipe, OfTheShellIsReadWhenItsWriterHasEnded) {
  ShellPipe pipe;
  pipe.write(kText);
  pipe.closeWriter();
  EXPECT_EQ(ConfigStore(pipe.path()).text(), kText);
}

TEST(Pipe, TellsAnErrorOfTheSystem) {
  const TemporaryDirectory directory;
  const Descriptor file(::open(directory.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  ASSERT_TRUE(file);
  PipeReader reader(file.get());
  std::array<char, 8> to{};
  EXPECT_EQ(reader.read(to.data(), to.size()), -1);
  EXPECT_EQ(errno, EISDIR);
}

}  // namespace
}  // namespace cfgstore
