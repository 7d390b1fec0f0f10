#include "platform/QVSystemInfo.h"

#include <pwd.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

std::string QVComputerName() {
  char host[256] = {};
  if (gethostname(host, sizeof host - 1) != 0) return "LOCALHOST";
  std::string nome(host);
  nome = nome.substr(0, nome.find('.'));
  if (nome.size() > 15) nome.resize(15);
  std::transform(nome.begin(), nome.end(), nome.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return nome;
}

bool GetComputerNameA(char* buffer, std::uint32_t* pnSize) {
  const std::string nome = QVComputerName();
  if (buffer == nullptr || *pnSize < nome.size() + 1) {
    *pnSize = static_cast<std::uint32_t>(nome.size() + 1);
    return false;
  }
  std::memcpy(buffer, nome.c_str(), nome.size() + 1);
  *pnSize = static_cast<std::uint32_t>(nome.size());
  return true;
}

std::string QVProcessName() {
  char caminho[4096] = {};
  const ssize_t n = readlink("/proc/self/exe", caminho, sizeof caminho - 1);
  if (n <= 0) return "zelkorin";
  std::string s(caminho, static_cast<std::size_t>(n));
  return s.substr(s.find_last_of('/') + 1);
}

std::string QVLocalUserName() {
  passwd pw{};
  passwd* resultado = nullptr;
  char buf[1024];
  if (getpwuid_r(geteuid(), &pw, buf, sizeof buf, &resultado) == 0 && resultado != nullptr)
    return pw.pw_name;
  return std::to_string(geteuid());
}

std::string QVOsVersion() {
  utsname u{};
  if (uname(&u) != 0) return "Linux";
  return std::string(u.sysname) + " " + u.release;
}

std::uint32_t QVCurrentThreadId() { return static_cast<std::uint32_t>(syscall(SYS_gettid)); }

std::uint32_t QVCurrentProcessId() { return static_cast<std::uint32_t>(getpid()); }

namespace {
std::int64_t CampoKb(const std::string& texto, const char* nome) {
  const std::size_t p = texto.find(nome);
  if (p == std::string::npos) return 0;
  return std::atoll(texto.c_str() + p + std::strlen(nome)) * 1024;
}
std::string LeArquivo(const char* caminho) {
  std::ifstream in(caminho);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}
}  // namespace

QVMemoryCounters QVReadMemoryCounters() {
  const std::string status = LeArquivo("/proc/self/status");
  const std::string meminfo = LeArquivo("/proc/meminfo");
  return QVMemoryCounters{CampoKb(status, "RssAnon:"), CampoKb(meminfo, "MemAvailable:"),
                          CampoKb(meminfo, "MemTotal:")};
}

int MessageBoxA(void*, const char* texto, const char* titulo, unsigned) {
  std::fprintf(stderr, "[%s] %s\n", titulo != nullptr ? titulo : "", texto != nullptr ? texto : "");
  return IDOK;
}
