// One error as the client receives it in _REG_DF_ERROPS.
#pragma once

#include <cstdint>
#include <string>

#include "df/qvlibex/QVRegistrosDF.h"

class CQVDadosDF_Erro {
 public:
  HRESULT hr = S_OK;
  std::int32_t nCodigoErro = 0;
  std::int32_t lCodigoMensagem = 0;
  std::int32_t iRegistro = 0;
  std::int32_t iItem = 0;
  std::int32_t lCodigoCampo = 0;
  std::uint16_t nModuloMensagem = 0;
  std::int16_t nTipoErro = 0;
  std::uint16_t usNumeroServidor = 0;
  std::string sMensagem;  // UTF-8
  std::string sEmpresa;  // UTF-8

  // Fills all 480 bytes: texts in the suite's code page, cut to their fields
  // with the terminator kept; fillers zero.
  void CopiarPara(_REG_DF_ERROPS* preg) const;
  void CopiarDe(const _REG_DF_ERROPS& reg);
  void Limpa() { *this = CQVDadosDF_Erro{}; }
};
