#include "ge/zelkorin/ZelkorinArquivos.h"

#include <strings.h>

#include <cctype>

namespace {

constexpr QVArquivoGE kArquivos[] = {
    // The service calls, one file per month.
    {"GEATTEC2", EQVTipoConteudo::Registros, 512, true},
    {"GEATSRVV3", EQVTipoConteudo::Registros, 384, true},
    {"GeAtDsp", EQVTipoConteudo::Registros, 208, true},
    {"GEAtCla", EQVTipoConteudo::Registros, 64, true},
    {"GEAtGer", EQVTipoConteudo::Registros, 32, true},
    {"GEAtSes", EQVTipoConteudo::Registros, 8, true},
    {"GEATEFDV1", EQVTipoConteudo::Registros, 128, true},
    // The service calls, one file.
    {"GEAtRet", EQVTipoConteudo::Registros, 64, false},
    {"GEAtDedu", EQVTipoConteudo::Registros, 32, false},
    {"GEATPC", EQVTipoConteudo::Registros, 128, false},
    {"GEATRPS", EQVTipoConteudo::Registros, 4, false},
    {"GeProcJurEFDATTEC", EQVTipoConteudo::Registros, 16, false},
    {"GeAtDsDe", EQVTipoConteudo::Texto, 0, false},
    {"GeAtStrV1", EQVTipoConteudo::Texto, 0, false},
    // Settings and projects.
    {"GEATTPROP", EQVTipoConteudo::RegistroUnico, 640, false},
    {"GEATTPROPTXT", EQVTipoConteudo::Texto, 0, false},
    {"GEATPRJV2", EQVTipoConteudo::Registros, 32, false},
    {"GEATPRJTXT", EQVTipoConteudo::Texto, 0, false},
    // The file-creation control of the directory.
    {"QVDATABASE_FILE_CTRL", EQVTipoConteudo::Texto, 0, false},
};

bool IguaisSemCaixa(const std::string& a, const char* b) { return strcasecmp(a.c_str(), b) == 0; }

}  // namespace

const QVArquivoGE* QVProcuraArquivoGE(const std::string& sNomeArquivo) {
  const std::size_t ponto = sNomeArquivo.find_last_of('.');
  if (ponto == std::string::npos || !IguaisSemCaixa(sNomeArquivo.substr(ponto + 1), "dat")) return nullptr;
  const std::string sRaiz = sNomeArquivo.substr(0, ponto);
  for (const QVArquivoGE& a : kArquivos)
    if (IguaisSemCaixa(sRaiz, a.raiz)) return a.bPorMes ? nullptr : &a;
  // A month file: the root and six digits of year and month.
  if (sRaiz.size() > 6) {
    const std::string sPrefixo = sRaiz.substr(0, sRaiz.size() - 6);
    bool bDigitos = true;
    for (std::size_t i = sPrefixo.size(); i < sRaiz.size(); ++i)
      bDigitos &= std::isdigit(static_cast<unsigned char>(sRaiz[i])) != 0;
    if (bDigitos)
      for (const QVArquivoGE& a : kArquivos)
        if (a.bPorMes && IguaisSemCaixa(sPrefixo, a.raiz)) return &a;
  }
  return nullptr;
}

std::vector<const char*> QVRaizesPorMesGE() {
  std::vector<const char*> raizes;
  for (const QVArquivoGE& a : kArquivos)
    if (a.bPorMes) raizes.push_back(a.raiz);
  // Older layouts, renamed to the four-digit-year form by the conversion.
  for (const char* antiga : {"GeAtSrv", "GeAtCmt", "GeAtCmtSrv", "GeAtDec", "GEATEND"}) raizes.push_back(antiga);
  return raizes;
}
