#include "core/qvdatabase/QVFileNameFormat.h"

#include <cctype>
#include <cstdio>

#include "df/qvlibex/QVDatas.h"

namespace {

constexpr std::string_view kExtensao = ".DAT";
constexpr std::size_t kTamanhoPeriodo = 6;

char Maiuscula(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

bool SoDigitos(std::string_view s) {
  for (char c : s)
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  return !s.empty();
}

int Numero(std::string_view s) {
  int n = 0;
  for (char c : s) n = n * 10 + (c - '0');
  return n;
}

}  // namespace

std::string CQVFileNameFormat::Nome(const std::string& sRaiz, std::uint16_t) { return sRaiz + ".DAT"; }

std::string CQVFileNameFormatMa<10>::Nome(const std::string& sRaiz, std::uint16_t iMA) {
  int ano = 0, mes = 0;
  if (!QVMesAnoDecompoe(iMA, &ano, &mes)) return sRaiz + ".DAT";
  char periodo[16];
  std::snprintf(periodo, sizeof periodo, "%04d%02d", ano, mes);
  return sRaiz + periodo + ".DAT";
}

std::uint16_t CQVFileNameFormatMa<10>::Periodo(const std::string& sNomeArquivo, const std::string& sRaiz) {
  if (sNomeArquivo.size() < sRaiz.size() + kTamanhoPeriodo) return 0;
  const std::string_view p = std::string_view(sNomeArquivo).substr(sRaiz.size(), kTamanhoPeriodo);
  if (!SoDigitos(p)) return 0;
  // Year, slash, month: "2020/07". Four digits are a year as written (the
  // two-digit reading of the month code helper does not apply).
  const int ano = Numero(p.substr(0, 4));
  return ano < 100 ? 0 : QVMesAno(ano, Numero(p.substr(4, 2)));
}

std::string QVPadraoGrupoMensal(std::string_view sRaiz) {
  return std::string(sRaiz) + std::string(kTamanhoPeriodo, '?') + std::string(kExtensao);
}

bool QVCorrespondeAoPadraoGrupo(std::string_view sPadrao, std::string_view sNome) {
  if (sNome.size() != sPadrao.size()) return false;
  for (std::size_t i = 0; i < sNome.size(); ++i)
    if (sPadrao[i] != '?' && Maiuscula(sPadrao[i]) != Maiuscula(sNome[i])) return false;
  return true;
}

std::uint16_t QVPeriodoMembroGrupo(std::string_view sPadrao, std::string_view sNome) {
  if (!QVCorrespondeAoPadraoGrupo(sPadrao, sNome)) return 0;
  const std::size_t iRaiz = sPadrao.find('?');
  if (iRaiz == std::string_view::npos) return 0;
  return CQVFileNameFormatMa<10>::Periodo(std::string(sNome), std::string(sPadrao.substr(0, iRaiz)));
}

bool QVNomeMensalAntigo(std::string_view sNome, std::string_view sRaiz, std::uint16_t* piMA) {
  *piMA = 0;
  if (sNome.size() != sRaiz.size() + 4 + kExtensao.size() || !QVNomesIguais(sNome.substr(0, sRaiz.size()), sRaiz) ||
      !QVNomesIguais(sNome.substr(sNome.size() - kExtensao.size()), kExtensao))
    return false;
  const std::string_view mmaa = sNome.substr(sRaiz.size(), 4);
  if (SoDigitos(mmaa)) *piMA = QVMesAno(Numero(mmaa.substr(2, 2)), Numero(mmaa.substr(0, 2)));
  return true;
}

bool QVNomesIguais(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (Maiuscula(a[i]) != Maiuscula(b[i])) return false;
  return true;
}
