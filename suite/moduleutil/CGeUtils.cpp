#include "suite/moduleutil/CGeUtils.h"

#include <limits>

#include "df/qvlibex/QVLog.h"
#include "suite/hostlink/QVSessaoSuite.h"

namespace {

// Currency has four implied decimals; a product of two currency amounts has
// eight, and cents two: the exact product is kept in 128 bits (the product
// of two 64-bit values always fits) so that rounding happens once, at the
// end, and never twice (0,00495 is 0,00 in cents, not 0,0050 and then 0,01).
using Int128 = __int128;

constexpr Int128 kMaiorMoeda = std::numeric_limits<QVMoeda>::max();
constexpr Int128 kMenorMoeda = std::numeric_limits<QVMoeda>::min();
constexpr Int128 kPotencias10[] = {1, 10, 100, 1000, 10000, 100000, 1000000};

// n / d rounded half away from zero; d > 0 and even.
constexpr Int128 DivideArredondando(Int128 n, Int128 d) { return (n >= 0 ? n + d / 2 : n - d / 2) / d; }

}  // namespace

HRESULT CGeUtils::GetDiretorioDados(const std::string& sEmpresa, std::uint32_t uiModulo, std::string* psDiretorio) {
  if (psDiretorio == nullptr) QV_RETURN(E_POINTER);
  psDiretorio->clear();
  QV_CHECK(QVSessaoSuite().GetDiretorioDadosModulo(uiModulo, sEmpresa, psDiretorio));
  return S_OK;
}

HRESULT CGeUtils::CalcularValorTotalServicoAtendimento(QVMoeda vTotalHoras, QVMoeda vValorUnitario,
                                                       int iCasasDecimais, QVMoeda* pvValorTotal) {
  if (pvValorTotal == nullptr) QV_RETURN(E_POINTER);
  if (iCasasDecimais < 0 || iCasasDecimais > 4) {
    QVLogaFalhaHr(QV_LOCAL, "iCasasDecimais < 0 || iCasasDecimais > 4", E_INVALIDARG,
                  {{"iCasasDecimais", std::to_string(iCasasDecimais)}});
    return E_INVALIDARG;
  }
  // The quantity to the unit's decimals, still in ten-thousandths (it may
  // pass the 64-bit range by less than one step here: kept in 128 bits).
  const Int128 passo = kPotencias10[4 - iCasasDecimais];
  const Int128 quantidade = passo == 1 ? Int128{vTotalHoras} : DivideArredondando(vTotalHoras, passo) * passo;
  // Ten-thousandths times ten-thousandths: 1e-8 units; to cents, then back
  // to currency's ten-thousandths.
  const Int128 centavos = DivideArredondando(quantidade * vValorUnitario, kPotencias10[6]);
  const Int128 valor = centavos * 100;
  if (valor > kMaiorMoeda || valor < kMenorMoeda) {
    QVLogaFalhaHr(QV_LOCAL, "valor > kMaiorMoeda || valor < kMenorMoeda", DISP_E_OVERFLOW,
                  {{"vTotalHoras", QVMoedaTexto(vTotalHoras, 4)},
                   {"vValorUnitario", QVMoedaTexto(vValorUnitario, 4)},
                   {"iCasasDecimais", std::to_string(iCasasDecimais)}});
    return DISP_E_OVERFLOW;
  }
  *pvValorTotal = static_cast<QVMoeda>(valor);
  return S_OK;
}

void CGeUtils::ConverteCurrencyToHM(QVMoeda vHoras, std::int32_t* piHoras, std::int32_t* piMinutos) {
  // The magnitude in 128 bits: the most negative amount has no positive
  // counterpart in 64.
  const bool bNegativo = vHoras < 0;
  const Int128 magnitude = bNegativo ? -Int128{vHoras} : Int128{vHoras};
  // Hours in ten-thousandths times 60: minutes in ten-thousandths, rounded
  // half up on the magnitude, so -0,025 h (-1,5 min) is -2 minutes.
  const Int128 minutos = (magnitude * 60 + kQVMoedaEscala / 2) / kQVMoedaEscala;
  // The currency's range holds 9e14 hours: beyond 32 bits the hours stop at
  // the largest count rather than wrap into a wrong one.
  const Int128 horas = minutos / 60;
  const Int128 kMaxHoras = std::numeric_limits<std::int32_t>::max();
  const auto iHoras = static_cast<std::int32_t>(horas > kMaxHoras ? kMaxHoras : horas);
  const auto iMinutos = static_cast<std::int32_t>(minutos % 60);
  if (piHoras != nullptr) *piHoras = bNegativo ? -iHoras : iHoras;
  if (piMinutos != nullptr) *piMinutos = bNegativo ? -iMinutos : iMinutos;
}
