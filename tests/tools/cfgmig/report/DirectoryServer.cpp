#include "DirectoryServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>
#include <thread>

#include "ConfigStore.h"
#include "Descriptor.h"

namespace {

constexpr char kRootDn[] = "cn=root,cn=configuration";
constexpr char kRootPassword[] = "for this test only";
constexpr auto kMostToStart = std::chrono::seconds(30);
constexpr auto kMostToStop = std::chrono::seconds(10);
constexpr int kAttributesInClass = 30;
constexpr int kMostPorts = 10;  // to be tried, since another program may take one that was free a moment ago

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
}

// What admits the contents. All object classes are in one line of descent, so that any of them go together; the one
// that merges add to entries that are there is nearest to the top, since a server does not let an entry change its
// kind.
std::string schemaFor(const std::vector<const DirectoryContent*>& contents) {
  std::map<std::string, std::size_t> attributes;  // with the most values that one has
  std::set<std::string> classes;
  for (const DirectoryContent* const content : contents) {
    for (const auto& [dn, entry] : *content) {
      for (const auto& [name, values] : entry) {
        if (name == "objectclass") {
          for (const std::string& value : values) classes.insert(lowerCase(value));
        } else if (name != "cn") {
          attributes[name] = std::max(attributes[name], values.size());
        }
      }
    }
  }
  std::string schema;
  std::string above = "top";
  int classNumber = 0;
  const auto addClass = [&](const std::string& name, const std::string& allowed) {
    schema += "objectclass ( 1.1.2.2." + std::to_string(++classNumber) + " NAME '" + name + "' SUP " + above +
              " STRUCTURAL MAY ( " + allowed + " ) )\n";
    above = name;
  };
  // The attributes are allowed by classes of their own, since the server takes no line of any length.
  std::string allowed = "cn";
  int number = 0;
  for (const auto& [name, most] : attributes) {
    schema += "attributetype ( 1.1.2.1." + std::to_string(++number) + " NAME '" + name +
              "' EQUALITY octetStringMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.40" + (most < 2 ? " SINGLE-VALUE" : "") +
              " )\n";
    allowed += " $ " + name;
    if (number % kAttributesInClass != 0) continue;
    addClass("allows" + std::to_string(number), allowed);
    allowed = "cn";
  }
  addClass("allows" + std::to_string(number + 1), allowed);
  classes.erase("top");
  for (const char* first : {"zor-slapdconfigentry", "zor-slapdpendingmigration"}) {
    if (classes.erase(first) > 0) addClass(first, "cn");
  }
  for (const std::string& name : classes) addClass(name, "cn");
  return schema;
}

int freePort() {
  const cfgstore::Descriptor probe(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (!probe || ::bind(probe.get(), generic, size) != 0 || ::getsockname(probe.get(), generic, &size) != 0) {
    throw std::runtime_error("there is no port to be had");
  }
  return ntohs(address.sin_port);
}

// Starts a program whose output goes to the file. It is killed when this process ends, in whatever way.
pid_t spawn(const std::vector<std::string>& arguments, const std::string& outputPath) {
  std::vector<char*> words;
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process can be started");
  if (child > 0) return child;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(127);
  const int output = ::open(outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int input = ::open("/dev/null", O_RDONLY);
  if (output < 0 || input < 0 || ::dup2(input, 0) < 0 || ::dup2(output, 1) < 0 || ::dup2(output, 2) < 0) ::_exit(127);
  // Neither the system's nor the user's settings of the client count.
  ::setenv("LDAPNOINIT", "1", 1);
  ::execv(words.front(), words.data());
  ::_exit(127);
}

int statusOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); }

}  // namespace

DirectoryServer::DirectoryServer(const DirectoryContent& content, const std::vector<const DirectoryContent*>& admitted)
    : m_config(m_workspace.path("slapd.conf")) {
  for (const char* program : {CFGMIG_SLAPD, CFGMIG_SLAPADD, CFGMIG_LDAPMODIFY, CFGMIG_LDAPSEARCH}) {
    if (::access(program, X_OK) == 0) continue;
    throw std::runtime_error(std::string(program) + " is not there: install slapd and ldap-utils");
  }
  std::filesystem::create_directory(m_workspace.path("database"));
  m_workspace.write("slapd.conf",
                    "modulepath /usr/lib/ldap\nmoduleload back_mdb\n" + schemaFor(admitted) +
                        "database mdb\nsuffix \"cn=configuration\"\nmaxsize 104857600\nrootdn \"" + kRootDn +
                        "\"\nrootpw \"" + kRootPassword + "\"\ndirectory \"" + m_workspace.path("database") + "\"\n",
                    0600);
  load(content);
  start();
}

DirectoryServer::~DirectoryServer() { stop(); }

ProgramRun DirectoryServer::run(const std::vector<std::string>& arguments) const {
  const pid_t process = spawn(arguments, m_workspace.path("output"));
  int status = 0;
  ::waitpid(process, &status, 0);
  return {statusOf(status), m_workspace.read("output")};
}

void DirectoryServer::load(const DirectoryContent& content) {
  const std::string file = m_workspace.write("content.ldif", ldifOf(content));
  const ProgramRun added = run({CFGMIG_SLAPADD, "-q", "-f", m_config, "-l", file});
  if (added.status != 0) throw std::runtime_error("the content cannot be loaded: " + added.output);
}

void DirectoryServer::start() {
  for (int attempt = 0; attempt < kMostPorts; ++attempt) {
    m_url = "ldap://127.0.0.1:" + std::to_string(freePort());
    // With a debug level, if only 0, it stays in the foreground.
    m_process = spawn({CFGMIG_SLAPD, "-d", "0", "-h", m_url, "-f", m_config}, m_workspace.path("server.log"));
    const auto end = std::chrono::steady_clock::now() + kMostToStart;
    while (std::chrono::steady_clock::now() < end) {
      if (answers()) return;
      int status = 0;
      if (::waitpid(m_process, &status, WNOHANG) == m_process) {
        m_process = -1;
        break;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    stop();
  }
  throw std::runtime_error("the server does not start: " + m_workspace.read("server.log"));
}

// That the server which answers is ours is seen from the password, which no other has.
bool DirectoryServer::answers() const {
  return run({CFGMIG_LDAPSEARCH, "-x", "-H", m_url, "-D", kRootDn, "-w", kRootPassword, "-o", "nettimeout=5", "-s",
              "base", "-b", "cn=configuration", "1.1"})
             .status == 0;
}

void DirectoryServer::stop() {
  if (m_process < 0) return;
  ::kill(m_process, SIGTERM);
  const auto end = std::chrono::steady_clock::now() + kMostToStop;
  while (::waitpid(m_process, nullptr, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > end) ::kill(m_process, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  m_process = -1;
}

ProgramRun DirectoryServer::modify(const std::string& changeRecords) {
  const std::string file = m_workspace.write("changes.ldif", changeRecords);
  return run({CFGMIG_LDAPMODIFY, "-x", "-H", m_url, "-D", kRootDn, "-w", kRootPassword, "-f", file});
}

DirectoryContent DirectoryServer::content() {
  const ProgramRun found = run({CFGMIG_LDAPSEARCH, "-x", "-H", m_url, "-D", kRootDn, "-w", kRootPassword, "-LLL", "-s",
                                "sub", "-b", "cn=configuration", "(objectClass=*)", "*"});
  if (found.status != 0) throw std::runtime_error("the server cannot be searched: " + found.output);
  cfgstore::ConfigStore store(m_workspace.write("found.ldif", found.output));
  return contentOf(cfgstore::Snapshot(store));
}
