#include "tests/store/support/PostgresServer.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <vector>

#include "store/SociDatabase.h"

namespace fs = std::filesystem;

namespace usbinfo_test {

namespace {

constexpr uid_t kNobody = 65534;

/// The folder of the newest installed server's programs; empty where there is none.
std::string FindPrograms() {
  std::string found;
  std::error_code error;
  for (const fs::directory_entry& version : fs::directory_iterator("/usr/lib/postgresql", error)) {
    const fs::path programs = version.path() / "bin";
    if (fs::exists(programs / "initdb") && fs::exists(programs / "postgres"))
      found = std::max(found, programs.string());
  }
  return found;
}

/// What is left of the child before it becomes the program: an ordinary user's process that ends with its
/// parent.
void BecomeServer(pid_t parent) {
  if (::geteuid() == 0 && (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
    ::_exit(1);
  ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
  if (::getppid() != parent) ::_exit(1);
  const int null = ::open("/dev/null", O_RDWR);
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(null, fd);
}

}  // namespace

PostgresServer* PostgresServer::Shared() {
  static const std::unique_ptr<PostgresServer> server = [] {
    const std::string programs = FindPrograms();
    return programs.empty() ? nullptr : std::unique_ptr<PostgresServer>(new PostgresServer(programs));
  }();
  return server.get();
}

PostgresServer::PostgresServer(std::string programs) : fPrograms(std::move(programs)) {
  fFolder.ShareWithAll();
  const std::string data = fFolder.File("data");
  int status = 0;
  ::waitpid(
      // The files of its log have 1 MiB.
      Start("initdb", {"-D", data, "-U", "tester", "-A", "trust", "-E", "UTF8", "--locale=C.UTF-8", "-N",
                       "--wal-segsize=1"}),
      &status, 0);
  if (status != 0) throw std::runtime_error("initdb failed");
  fProcess = Start("postgres", {"-D", data, "-k", fFolder.Path().string(), "-c", "listen_addresses=", "-c",
                                "fsync=off", "-c",
                                // A server may be set up like this, which makes no difference.
                                "default_transaction_isolation=serializable"});
  for (int attempt = 0; attempt < 600; ++attempt) {
    try {
      store::OpenPostgresql(Url(), "the test's server");
      return;
    } catch (const store::DatabaseError&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  }
  throw std::runtime_error("the PostgreSQL server does not start");
}

PostgresServer::~PostgresServer() {
  ::kill(fProcess, SIGINT);
  ::waitpid(fProcess, nullptr, 0);
}

std::string PostgresServer::NewUrl() {
  const std::string place = fmt::format("place{}", ++fPlaces);
  store::OpenPostgresql(Url(), "the test's server")->Execute("CREATE SCHEMA " + place, {});
  return fmt::format("{}&options=-csearch_path%3D{}", Url(), place);
}

std::string PostgresServer::Url() const {
  return fmt::format("postgresql:///postgres?host={}&user=tester", fFolder.Path().string());
}

pid_t PostgresServer::Start(std::string program, std::vector<std::string> arguments) const {
  program = fPrograms + "/" + program;
  std::vector<char*> words = {program.data()};
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child != 0) return child;
  BecomeServer(parent);
  ::execv(program.c_str(), words.data());
  ::_exit(1);
}

}  // namespace usbinfo_test
