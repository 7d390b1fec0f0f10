#include "platform/QVFolders.h"

#include <dirent.h>
#include <sys/stat.h>

#include "platform/QVCodePage.h"

namespace {

bool EhPasta(const std::string& sCaminho) {
  struct stat info {};
  return ::stat(sCaminho.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

std::string QVResolveFolderCase(const std::string& sPai, const std::string& sNome) {
  if (sNome.empty() || sNome == "." || sNome == ".." || EhPasta(sPai + "/" + sNome)) return sNome;
  DIR* pasta = ::opendir(sPai.empty() ? "." : sPai.c_str());
  if (pasta == nullptr) return sNome;
  const std::string sChave = QVMaiusculasCodePage(sNome);
  std::string sMelhor;
  while (const dirent* entrada = ::readdir(pasta)) {
    const std::string s = entrada->d_name;
    if (s == "." || s == ".." || (!sMelhor.empty() && s >= sMelhor) || QVMaiusculasCodePage(s) != sChave) continue;
    if (EhPasta(sPai + "/" + s)) sMelhor = s;
  }
  ::closedir(pasta);
  return sMelhor.empty() ? sNome : sMelhor;
}
