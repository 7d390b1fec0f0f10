// The GE module's utilities (the module library's CGeUtils): where a
// company's data live, and the service-value arithmetic of reports.
#pragma once

#include <cstdint>
#include <string>

#include "df/qvlibex/QVMoeda.h"
#include "platform/QVHResult.h"

class CGeUtils {
 public:
  // The data folder of a company for a module (the session library's
  // GetDiretorioDadosModulo); "" for no company.
  [[nodiscard]] static HRESULT GetDiretorioDados(const std::string& sEmpresa, std::uint32_t uiModulo,
                                                 std::string* psDiretorio);

  // The value of a service of a call: the quantity (total hours, or units
  // of the service's unit of measure) rounded to that unit's decimal places
  // (0..4), times the unit value, rounded to cents; both roundings half away
  // from zero, all in currency's fixed point: no floating point.
  // E_INVALIDARG for decimals outside 0..4; DISP_E_OVERFLOW (nothing
  // written) when the product leaves the currency's range.
  [[nodiscard]] static HRESULT CalcularValorTotalServicoAtendimento(QVMoeda vTotalHoras, QVMoeda vValorUnitario,
                                                                    int iCasasDecimais, QVMoeda* pvValorTotal);

  // Decimal hours as hours and minutes: 1,5 is 1:30; the minutes are
  // rounded half up (1,9999 is 2:00). A negative amount gives negative
  // hours and minutes (-1,25 is -1 and -15).
  static void ConverteCurrencyToHM(QVMoeda vHoras, std::int32_t* piHoras, std::int32_t* piMinutos);
};
